// What FileSystem.h promises, asked of the real file system and of its stand-in alike; then what only the real one has.
#include "platform/FileSystem.h"

#include <fstream>
#include <span>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/fake/MemoryFileSystem.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/TemporaryFolder_test.h"

namespace kinsort {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::u16string> Names(FileSystem& files, const std::u16string& pattern) {
    std::vector<std::u16string> names;
    Result<std::unique_ptr<FolderSearch>> search = files.OpenSearch(pattern);
    if (!search.ok()) return names;
    for (FindData entry; (*search)->Next(entry);)
        names.push_back(entry.name);
    return names;
}

FindData First(FileSystem& files, const std::u16string& pattern) {
    FindData entry;
    Result<std::unique_ptr<FolderSearch>> search = files.OpenSearch(pattern);
    EXPECT_TRUE(search.ok() && (*search)->Next(entry)) << testing::PrintToString(pattern);
    return entry;
}

void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream(path) << content;
}

Status Put(OutputFile& file, std::string_view text) {
    return file.Write(std::as_bytes(std::span(text)));
}

// What an input file holds from where it stands, or "closed" with the reason's number.
std::string Take(const Result<std::unique_ptr<InputFile>>& file) {
    if (!file.ok()) return "closed " + std::to_string(static_cast<int>(file.code()));
    std::string text(1 << 20, '?');
    text.resize((*file)->Read(std::as_writable_bytes(std::span(text))).value());
    return text;
}

// One tree: files "b.txt" (5 bytes), "A.TXT", ".dot", "~x" and folders "a", "Sub" (with "inner" in it), ".cfg".
struct Tree {
    virtual ~Tree() = default;
    virtual FileSystem& files() = 0;
    virtual std::u16string base() = 0;  // without a separator at its end
};

struct LinuxTree final : Tree {
    LinuxTree() {
        for (const char* name : {"/Sub/inner", "/a", "/.cfg"})
            fs::create_directories(folder.path() + name);
        WriteFile(folder.path() + "/b.txt", "12345");
        for (const char* name : {"/A.TXT", "/.dot", "/~x"})
            WriteFile(folder.path() + name, "");
    }
    FileSystem& files() override { return *system; }
    std::u16string base() override { return codec->PathToInner(folder.path()); }

    TemporaryFolder folder;
    std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("");
    std::unique_ptr<FileSystem> system = MakeLinuxFileSystem(*codec);
};

struct MemoryTree final : Tree {
    MemoryTree() {
        for (const char16_t* name : {u"\\Sub\\inner", u"\\a", u"\\.cfg"})
            memory.AddFolder(base() + name);
        memory.AddFile(base() + u"\\b.txt", 5, 1);
        for (const char16_t* name : {u"\\A.TXT", u"\\.dot", u"\\~x"})
            memory.AddFile(base() + name, 0, 1);
    }
    FileSystem& files() override { return memory; }
    std::u16string base() override { return u"Z:\\base"; }

    MemoryFileSystem memory;
};

class FileSystemTest : public testing::TestWithParam<bool> {
  protected:
    FileSystemTest()
        : tree_(GetParam() ? std::unique_ptr<Tree>(new LinuxTree) : std::unique_ptr<Tree>(new MemoryTree)) {}
    FileSystem& files() { return tree_->files(); }
    std::u16string At(std::u16string_view below) { return tree_->base() + u"\\" + std::u16string(below); }

    std::unique_ptr<Tree> tree_;
};

INSTANTIATE_TEST_SUITE_P(Both, FileSystemTest, testing::Bool(),
                         [](const auto& which) { return which.param ? std::string("Linux") : std::string("Memory"); });

TEST_P(FileSystemTest, ListsInTheOrderOfUpperCasedNames) {
    EXPECT_THAT(Names(files(), At(u"*")),
                ElementsAre(u".", u"..", u".cfg", u".dot", u"a", u"A.TXT", u"b.txt", u"Sub", u"~x"));
    EXPECT_EQ(Names(files(), At(u"*.*")), Names(files(), At(u"*")));
    EXPECT_THAT(Names(files(), At(u"*.txt")), ElementsAre(u"A.TXT", u"b.txt"));
    EXPECT_THAT(Names(files(), At(u"?")), ElementsAre(u".", u"a"));
    EXPECT_THAT(Names(files(), u"\\\\?\\" + At(u"\\/s*")), ElementsAre(u"Sub"));
    EXPECT_THAT(Names(files(), At(u"a\\*")), ElementsAre(u".", u".."));
    EXPECT_THAT(Names(files(), u"Z:\\.*"), testing::Not(testing::Contains(u"..")));
}

TEST_P(FileSystemTest, EntriesCarryWhatIsKnown) {
    const FindData file = First(files(), At(u"b.*"));
    EXPECT_EQ(file.attributes, kAttributeArchive);
    EXPECT_EQ(file.size, 5u);
    EXPECT_NE(file.modifiedNs, 0);
    EXPECT_EQ(First(files(), At(u"s?b")).attributes, kAttributeDirectory);
    EXPECT_EQ(First(files(), At(u".c*")).attributes, kAttributeDirectory | kAttributeHidden);
    EXPECT_EQ(First(files(), At(u".d*")).attributes, kAttributeArchive | kAttributeHidden);

    const FindData one = First(files(), At(u"b.txt"));
    EXPECT_EQ(one.name, u"b.txt");
    EXPECT_EQ(one.size, 5u);
    EXPECT_EQ(First(files(), At(u"Sub")).attributes, kAttributeDirectory);
}

TEST_P(FileSystemTest, WhatIsNotThereIsNotFound) {
    for (const std::u16string& pattern : {At(u"*.none"), At(u"none"), At(u"none\\*"), At(u"b.txt\\*"), At(u"Sub\\"),
                                          std::u16string(u"Z:\\"), std::u16string(u""), std::u16string(u"Q:\\*")}) {
        EXPECT_EQ(files().OpenSearch(pattern).code(), StatusCode::kNotFound) << testing::PrintToString(pattern);
    }
    for (const std::u16string& path : {At(u"none"), At(u"none\\x"), std::u16string(u"Q:\\")}) {
        EXPECT_EQ(files().GetAttributes(path), kInvalidAttributes) << testing::PrintToString(path);
    }
    EXPECT_EQ(files().GetAttributes(At(u"sub\\..\\a")), kAttributeDirectory);  // dots are text
    EXPECT_EQ(files().GetAttributes(At(u".dot")), kAttributeArchive | kAttributeHidden);
    EXPECT_EQ(files().GetAttributes(u"Z:\\"), kAttributeDirectory);
}

TEST_P(FileSystemTest, FoldersAreCreatedOneAtATime) {
    EXPECT_TRUE(files().CreateFolder(At(u"new\\")).ok());
    EXPECT_EQ(files().GetAttributes(At(u"new")), kAttributeDirectory);
    EXPECT_EQ(files().CreateFolder(At(u"new")).code(), StatusCode::kExists);
    EXPECT_EQ(files().CreateFolder(At(u"b.txt")).code(), StatusCode::kExists);
    EXPECT_EQ(files().CreateFolder(At(u"none\\x")).code(), StatusCode::kNotFound);
    EXPECT_EQ(files().CreateFolder(At(u"none\\x")).path(), At(u"none\\x"));
    EXPECT_EQ(files().CreateFolder(At(u"b.txt\\x")).code(), StatusCode::kNotFolder);
    EXPECT_EQ(files().CreateFolder(u"Z:\\").code(), StatusCode::kExists);
}

TEST_P(FileSystemTest, WrittenFilesAreReadBack) {
    const std::u16string path = At(u"Sub\\new.txt");
    const std::string large(300'000, 'x');
    {
        Result<std::unique_ptr<OutputFile>> file = files().OpenOutput(path, OutputStart::kAppend);
        ASSERT_TRUE(file.ok());
        EXPECT_TRUE(Put(**file, "one").ok() && Put(**file, "").ok() && Put(**file, large).ok());
        EXPECT_TRUE((*file)->Close().ok() && (*file)->Close().ok());
        EXPECT_EQ(Put(**file, "late").code(), StatusCode::kInvalid);
    }
    EXPECT_EQ(Take(files().OpenInput(path)), "one" + large);
    { EXPECT_TRUE(Put(**files().OpenOutput(path, OutputStart::kAppend), "two").ok()); }
    EXPECT_EQ(Take(files().OpenInput(path)), "one" + large + "two");
    { EXPECT_TRUE(Put(**files().OpenOutput(path, OutputStart::kEmpty), "three").ok()); }
    Result<std::unique_ptr<InputFile>> file = files().OpenInput(path);
    EXPECT_EQ(Take(file), "three");
    EXPECT_EQ(Take(file), "");

    for (const OutputStart start : {OutputStart::kAppend, OutputStart::kEmpty}) {
        EXPECT_EQ(files().OpenOutput(At(u"Sub"), start).code(), StatusCode::kIsFolder);
        EXPECT_EQ(files().OpenOutput(At(u"none\\x"), start).code(), StatusCode::kNotFound);
        EXPECT_EQ(files().OpenOutput(At(u"none\\x"), start).status().path(), At(u"none\\x"));
    }
    EXPECT_EQ(files().OpenInput(At(u"Sub")).code(), StatusCode::kIsFolder);
    EXPECT_EQ(files().OpenInput(At(u"none")).code(), StatusCode::kNotFound);
    EXPECT_EQ(files().OpenInput(At(u"none")).status().path(), At(u"none"));
}

TEST_P(FileSystemTest, AFileIsReadByManyOrWrittenByOne) {
    const std::u16string path = At(u"b.txt");
    {
        const auto first = files().OpenInput(path);
        const auto second = files().OpenInput(path);
        EXPECT_TRUE(first.ok() && second.ok());
        EXPECT_EQ(files().OpenOutput(path, OutputStart::kEmpty).code(), StatusCode::kLocked);
    }
    const std::string before = Take(files().OpenInput(path));
    EXPECT_EQ(before.size(), 5u) << "emptied though it was locked";
    const auto writer = files().OpenOutput(path, OutputStart::kAppend);
    ASSERT_TRUE(writer.ok());
    EXPECT_EQ(files().OpenInput(path).code(), StatusCode::kLocked);
    EXPECT_EQ(files().OpenOutput(path, OutputStart::kEmpty).code(), StatusCode::kLocked);
    EXPECT_TRUE((*writer)->Close().ok());
    EXPECT_EQ(Take(files().OpenInput(path)), before);
}

TEST(MemoryFileSystemTest, CanBeMadeToRefuse) {
    MemoryFileSystem memory;
    memory.AddFolder(u"\\\\nas\\share\\private");
    memory.DenyFolder(u"\\\\nas\\share\\private");
    EXPECT_EQ(memory.OpenSearch(u"\\\\nas\\share\\private\\*").code(), StatusCode::kAccessDenied);
    EXPECT_EQ(memory.CreateFolder(u"\\\\nas\\share\\private\\x").code(), StatusCode::kAccessDenied);
    EXPECT_THAT(Names(memory, u"\\\\nas\\share\\*"), ElementsAre(u"private"));
    memory.Remove(u"\\\\nas\\share");
    EXPECT_THAT(Names(memory, u"\\\\nas\\share\\*"), IsEmpty());
}

class LinuxFileSystemTest : public testing::Test {
  protected:
    std::u16string At(std::string_view below) { return codec_->PathToInner(folder_.path() + "/" + std::string(below)); }

    TemporaryFolder folder_;
    std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec(folder_.path() + "/drives");
    std::unique_ptr<FileSystem> files_ = MakeLinuxFileSystem(*codec_);
};

TEST_F(LinuxFileSystemTest, LinksShowWhatTheyLeadTo) {
    fs::create_directory(folder_.path() + "/real");
    WriteFile(folder_.path() + "/file", "123");
    fs::create_symlink("real", folder_.path() + "/toFolder");
    fs::create_symlink("file", folder_.path() + "/toFile");
    fs::create_symlink("nowhere", folder_.path() + "/toNowhere");
    fs::create_symlink("toItself", folder_.path() + "/toItself");
    ASSERT_EQ(mkfifo((folder_.path() + "/pipe").c_str(), 0600), 0);
    ASSERT_EQ(chmod((folder_.path() + "/file").c_str(), 0444), 0);

    struct Case {
        std::string_view name;
        uint32_t attributes;
    };
    const Case cases[] = {
        {"toFolder", kAttributeDirectory | kAttributeReparsePoint},
        {"toFile", kAttributeArchive | kAttributeReadOnly | kAttributeReparsePoint},
        {"toNowhere", kAttributeArchive | kAttributeReparsePoint},
        {"toItself", kAttributeArchive | kAttributeReparsePoint},
        {"pipe", kAttributeSystem},
        {"file", kAttributeArchive | kAttributeReadOnly},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(files_->GetAttributes(At(c.name)), c.attributes) << c.name;
        EXPECT_EQ(First(*files_, At(c.name)).attributes, c.attributes) << c.name;
        EXPECT_EQ(First(*files_, At(std::string(c.name) + "*")).attributes, c.attributes) << c.name;
    }
    EXPECT_EQ(First(*files_, At("toFile")).size, 3u);
}

TEST_F(LinuxFileSystemTest, NamesThatAreNoTextCanBeListedAndReached) {
    WriteFile(folder_.path() + "/a\\b\n\xFF", "x");
    const std::vector<std::u16string> names = Names(*files_, At("a*"));
    ASSERT_EQ(names.size(), 1u);
    EXPECT_EQ(files_->GetAttributes(At("") + names[0]), kAttributeArchive);
}

TEST_F(LinuxFileSystemTest, OrderUpperCasesBeyondAscii) {
    for (const char* name : {"\xC3\xA9", "\xC3\x89z", "\xC3\xA8", "z", "_", "\xEF\xBD\x81"}) {
        WriteFile(folder_.path() + "/" + name, "");
    }
    EXPECT_THAT(Names(*files_, At("?")), ElementsAre(u".", u"z", u"_", u"\u00E8", u"\u00E9", u"\uFF41"));
    EXPECT_THAT(Names(*files_, At("*z")), ElementsAre(u"z", u"\u00C9z"));
}

TEST_F(LinuxFileSystemTest, PathsOfAnyLengthWork) {
    std::u16string path = At("");
    for (int i = 0; i < 60; ++i) {
        path += std::u16string(200, u'n') + u"\\";
        ASSERT_TRUE(files_->CreateFolder(path).ok()) << i;
    }
    ASSERT_GT(path.size(), 12'000u);
    ASSERT_TRUE(files_->CreateFolder(path + u"leaf").ok());
    EXPECT_EQ(files_->GetAttributes(path + u"leaf"), kAttributeDirectory);
    EXPECT_THAT(Names(*files_, path + u"l*"), ElementsAre(u"leaf"));
    EXPECT_THAT(Names(*files_, path + u"leaf"), ElementsAre(u"leaf"));
    EXPECT_EQ(files_->CreateFolder(At(std::string(300, 'x'))).code(), StatusCode::kNameTooLong);
    EXPECT_EQ(files_->CreateFolder(At(std::string(5000, 'x'))).code(), StatusCode::kNameTooLong);
}

TEST_F(LinuxFileSystemTest, AFolderThatMayOnlyBeCrossedCanBeCrossed) {
    fs::create_directories(folder_.path() + "/closed/in");
    ASSERT_EQ(chmod(folder_.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod((folder_.path() + "/closed").c_str(), 0311), 0);
    const uid_t user = geteuid();
    ASSERT_TRUE(user != 0 || seteuid(65534) == 0);  // root may read everything
    EXPECT_EQ(files_->GetAttributes(At("closed/in")), kAttributeDirectory);
    EXPECT_EQ(files_->OpenSearch(At("closed/*")).code(), StatusCode::kAccessDenied);
    EXPECT_EQ(files_->CreateFolder(At("closed/new")).ok(), user != 0);
    ASSERT_EQ(seteuid(user), 0);
    ASSERT_EQ(chmod((folder_.path() + "/closed").c_str(), 0700), 0);
}

TEST_F(LinuxFileSystemTest, RelativePathsCountFromTheCurrentFolder) {
    const int before = open(".", O_PATH | O_DIRECTORY | O_CLOEXEC);
    fs::create_directories(folder_.path() + "/here/below");
    fs::current_path(folder_.path() + "/here");
    EXPECT_EQ(files_->CurrentFolder(), At("here"));
    EXPECT_THAT(Names(*files_, u"b*"), ElementsAre(u"below"));
    EXPECT_THAT(Names(*files_, u"z:b*"), ElementsAre(u"below"));
    EXPECT_THAT(Names(*files_, u"below"), ElementsAre(u"below"));
    EXPECT_EQ(*files_->ResolveFullPath(u"below/../x"), At("here/x"));
    EXPECT_TRUE(files_->CreateFolder(u"below\\new").ok());
    EXPECT_FALSE(Names(*files_, u"\\*").empty());

    fs::remove_all(folder_.path() + "/here");
    EXPECT_EQ(files_->CurrentFolder(), u"");
    EXPECT_EQ(files_->ResolveFullPath(u"x").code(), StatusCode::kNotFound);
    EXPECT_EQ(files_->ResolveFullPath(u"D:\\x\\..").value(), u"D:\\");
    ASSERT_EQ(fchdir(before), 0);
    close(before);
}

TEST_F(LinuxFileSystemTest, AFullVolumeIsSaidAtTheLatestWhenTheFileIsClosed) {
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "this system has no /dev/full";
    Result<std::unique_ptr<OutputFile>> file = files_->OpenOutput(u"Z:\\dev\\full", OutputStart::kAppend);
    ASSERT_TRUE(file.ok());
    EXPECT_TRUE(Put(**file, "fits the buffer").ok());
    EXPECT_EQ(Put(**file, std::string(100'000, 'x')).code(), StatusCode::kNoSpace);
    EXPECT_EQ(Put(**file, "x").code(), StatusCode::kNoSpace);
    EXPECT_EQ((*file)->Close().code(), StatusCode::kNoSpace);
    EXPECT_EQ((*file)->Close().path(), u"Z:\\dev\\full");
    file = files_->OpenOutput(u"Z:\\dev\\full", OutputStart::kEmpty);
    EXPECT_TRUE(Put(**file, "x").ok());
    EXPECT_EQ((*file)->Close().code(), StatusCode::kNoSpace);
}

TEST_F(LinuxFileSystemTest, AFileThatShrinksAndAPipeNobodyWritesToJustEnd) {
    WriteFile(folder_.path() + "/file", std::string(100'000, 'x'));
    Result<std::unique_ptr<InputFile>> file = files_->OpenInput(At("file"));
    fs::resize_file(folder_.path() + "/file", 10);
    EXPECT_EQ(Take(file), std::string(10, 'x'));
    ASSERT_EQ(mkfifo((folder_.path() + "/pipe").c_str(), 0600), 0);
    EXPECT_EQ(Take(files_->OpenInput(At("pipe"))), "");
    EXPECT_FALSE(files_->OpenOutput(At("pipe"), OutputStart::kEmpty).ok()) << "nobody reads";
}

TEST_F(LinuxFileSystemTest, EntriesThatVanishAreLeftOut) {
    for (const char* name : {"/a", "/b", "/c"})
        WriteFile(folder_.path() + name, "");
    Result<std::unique_ptr<FolderSearch>> search = files_->OpenSearch(At("?"));
    ASSERT_TRUE(search.ok());
    fs::remove(folder_.path() + "/b");
    std::vector<std::u16string> names;
    for (FindData entry; (*search)->Next(entry);)
        names.push_back(entry.name);
    EXPECT_THAT(names, ElementsAre(u".", u"a", u"c"));
}

}  // namespace
}  // namespace kinsort
