// The rules of Sys.h, run against every implementation: the real one in a fresh folder of each kind of volume that the
// machine offers, the in-memory one, and the in-memory one behind the fault injector.
#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/Sys.h"
#include "platform/fake/FaultSys.h"
#include "platform/fake/MemorySys.h"
#include "platform/linux/LinuxSys.h"

namespace kinsort {
namespace {

using ::testing::UnorderedElementsAre;

// One implementation and an empty folder in it.
class Place {
  public:
    virtual ~Place() = default;
    virtual Sys& sys() = 0;
    virtual std::string path() const = 0;
};

class RealPlace final : public Place {
  public:
    explicit RealPlace(const std::string& above) : sys_(MakeLinuxSys()) {
        path_ = above + "/kinsort-sys-" + std::to_string(std::random_device{}());
        EXPECT_TRUE(std::filesystem::create_directory(path_)) << path_;
    }
    // By open folders: the tests build paths that are too long for anything else.
    ~RealPlace() override {
        Empty(*sys_->OpenFolder(path_));
        std::filesystem::remove(path_);
    }
    Sys& sys() override { return *sys_; }
    std::string path() const override { return path_; }

  private:
    void Empty(const FileHandle& folder) {
        std::vector<FolderEntry> entries;
        (void)sys_->ReadFolder(folder, [&](const FolderEntry& entry) {
            entries.push_back(entry);
            return true;
        });
        for (const FolderEntry& entry : entries) {
            if (entry.kind == FileKind::kFolder) {
                Empty(*sys_->OpenFolderAt(folder, entry.name));
                EXPECT_TRUE(sys_->RemoveFolderAt(folder, entry.name).ok());
            } else {
                EXPECT_TRUE(sys_->RemoveFileAt(folder, entry.name).ok());
            }
        }
    }

    std::unique_ptr<Sys> sys_;
    std::string path_;
};

class MemoryPlace final : public Place {
  public:
    explicit MemoryPlace(bool behindFaults) : faults_(memory_), behindFaults_(behindFaults) {
        memory_.MakeFolders(path());
    }
    Sys& sys() override { return behindFaults_ ? static_cast<Sys&>(faults_) : memory_; }
    std::string path() const override { return "/home/test"; }

  private:
    MemorySys memory_;
    FaultSys faults_;
    bool behindFaults_;
};

struct Kind {
    const char* name;
    std::unique_ptr<Place> (*make)();
};

std::unique_ptr<Place> MakeInTemp() {
    return std::make_unique<RealPlace>(std::filesystem::temp_directory_path().string());
}
std::unique_ptr<Place> MakeInShm() {
    return std::make_unique<RealPlace>("/dev/shm");
}
std::unique_ptr<Place> MakeMemory() {
    return std::make_unique<MemoryPlace>(false);
}
std::unique_ptr<Place> MakeBehindFaults() {
    return std::make_unique<MemoryPlace>(true);
}

class SysContract : public ::testing::TestWithParam<Kind> {
  protected:
    void SetUp() override {
        if (std::string(GetParam().name) == "Shm" && !std::filesystem::is_directory("/dev/shm"))
            GTEST_SKIP() << "there is no /dev/shm on this machine";
        place_ = GetParam().make();
        Result<FileHandle> root = sys().OpenFolder(place_->path());
        ASSERT_TRUE(root.ok());
        root_ = std::move(*root);
    }
    void TearDown() override {
        root_.Reset();
        place_.reset();
    }

    Sys& sys() { return place_->sys(); }

    void Write(const FileHandle& folder, std::string_view name, std::string_view content) {
        Result<FileHandle> file = sys().CreateFileAt(folder, name, 0644);
        ASSERT_TRUE(file.ok()) << name;
        ASSERT_EQ(*sys().Write(*file, 0, std::as_bytes(std::span(content))), content.size());
        ASSERT_TRUE(file->Close().ok());
    }
    std::string ReadOpen(const FileHandle& file) {
        std::string text(1 << 16, '\0');
        text.resize(*sys().Read(file, 0, std::as_writable_bytes(std::span(text))));
        return text;
    }
    std::string Read(const FileHandle& folder, std::string_view name) {
        Result<FileHandle> file = sys().OpenForRead(folder, name);
        return file.ok() ? ReadOpen(*file) : "cannot open";
    }
    FileHandle MakeFolder(const FileHandle& folder, std::string_view name) {
        EXPECT_TRUE(sys().MakeFolderAt(folder, name, 0755).ok()) << name;
        Result<FileHandle> made = sys().OpenFolderAt(folder, name);
        EXPECT_TRUE(made.ok());
        return std::move(*made);
    }
    std::vector<std::string> Names(const FileHandle& folder) {
        std::vector<std::string> names;
        const Status status = sys().ReadFolder(folder, [&](const FolderEntry& entry) {
            names.push_back(entry.name);
            return true;
        });
        EXPECT_TRUE(status.ok());
        return names;
    }
    uint64_t InodeOf(const FileHandle& folder, std::string_view name) { return sys().StatAt(folder, name)->inode; }

    std::unique_ptr<Place> place_;
    FileHandle root_;
};

INSTANTIATE_TEST_SUITE_P(All, SysContract,
                         ::testing::Values(Kind{"Temp", MakeInTemp}, Kind{"Shm", MakeInShm}, Kind{"Memory", MakeMemory},
                                           Kind{"Faults", MakeBehindFaults}),
                         [](const auto& kind) { return kind.param.name; });

TEST_P(SysContract, NamesAreOneComponentAndAnyBytes) {
    using namespace std::string_view_literals;
    for (const std::string_view name : {""sv, "."sv, ".."sv, "a/b"sv, "/"sv, "a\0b"sv}) {
        EXPECT_EQ(sys().StatAt(root_, name).code(), StatusCode::kInvalid) << name;
        EXPECT_EQ(sys().CreateFileAt(root_, name, 0644).code(), StatusCode::kInvalid) << name;
        EXPECT_EQ(sys().RemoveFolderAt(root_, name).code(), StatusCode::kInvalid) << name;
        EXPECT_EQ(sys().OpenFolderAt(root_, name).code(), StatusCode::kInvalid) << name;
        EXPECT_EQ(sys().RenameNoReplace(root_, "x", root_, name).code(), StatusCode::kInvalid) << name;
    }
    EXPECT_EQ(sys().CreateFileAt(root_, std::string(256, 'n'), 0644).code(), StatusCode::kNameTooLong);
    EXPECT_EQ(sys().CreateFileAt(root_, std::string(5000, 'n'), 0644).code(), StatusCode::kNameTooLong);

    const std::vector<std::string> names = {
        std::string(255, 'n'), "\xff\xfe\x80", "new\nline",        "tab\there", "back\\slash", "-rf", " ",
        "trailing ",           "\x01\x1f\x7f", "\xe3\x81\x82.txt", "..."};
    for (const std::string& name : names)
        Write(root_, name, name);
    EXPECT_THAT(Names(root_), ::testing::UnorderedElementsAreArray(names));
    for (const std::string& name : names)
        EXPECT_EQ(Read(root_, name), name);
}

TEST_P(SysContract, ARenameNeverReplaces) {
    Write(root_, "a", "A");
    Write(root_, "b", "B");
    const FileHandle folder = MakeFolder(root_, "folder");
    const FileHandle below = MakeFolder(folder, "below");

    EXPECT_EQ(sys().RenameNoReplace(root_, "a", root_, "b").code(), StatusCode::kExists);
    EXPECT_EQ(sys().RenameNoReplace(root_, "a", root_, "a").code(), StatusCode::kExists);
    EXPECT_EQ(sys().RenameNoReplace(root_, "a", root_, "folder").code(), StatusCode::kExists);
    EXPECT_EQ(sys().RenameNoReplace(root_, "none", root_, "c").code(), StatusCode::kNotFound);
    EXPECT_EQ(sys().RenameNoReplace(root_, "folder", below, "inside").code(), StatusCode::kInvalid);
    ASSERT_TRUE(sys().LinkAt(root_, "a", root_, "same").ok());
    EXPECT_EQ(sys().RenameNoReplace(root_, "a", root_, "same").code(), StatusCode::kExists);
    EXPECT_THAT(Names(root_), UnorderedElementsAre("a", "b", "folder", "same"));
    EXPECT_EQ(Read(root_, "a") + Read(root_, "b"), "AB");

    const FileInfo before = *sys().StatAt(root_, "a");
    ASSERT_TRUE(sys().RenameNoReplace(root_, "a", below, "moved").ok());
    EXPECT_TRUE(before.SameFile(*sys().StatAt(below, "moved")));
    EXPECT_EQ(sys().StatAt(root_, "a").code(), StatusCode::kNotFound);
    ASSERT_TRUE(sys().RenameNoReplace(folder, "below", root_, "above").ok());
    EXPECT_EQ(Read(below, "moved"), "A") << "an open folder stays the same folder when it is moved";
    EXPECT_EQ(*sys().PathOf(below), place_->path() + "/above");
}

TEST_P(SysContract, AnExchangeSwapsTwoNames) {
    Write(root_, "a", "A");
    const FileHandle folder = MakeFolder(root_, "folder");
    Write(folder, "b", "B");
    const uint64_t a = InodeOf(root_, "a");
    const uint64_t b = InodeOf(folder, "b");
    ASSERT_TRUE(sys().Exchange(root_, "a", folder, "b").ok());
    EXPECT_EQ(InodeOf(root_, "a"), b);
    EXPECT_EQ(InodeOf(folder, "b"), a);
    EXPECT_EQ(Read(root_, "a") + Read(folder, "b"), "BA");

    EXPECT_EQ(sys().Exchange(root_, "a", folder, "none").code(), StatusCode::kNotFound);
    EXPECT_EQ(sys().Exchange(root_, "folder", folder, "b").code(), StatusCode::kInvalid);
    EXPECT_EQ(sys().Exchange(folder, "b", root_, "folder").code(), StatusCode::kInvalid);
    EXPECT_TRUE(sys().Exchange(root_, "a", root_, "a").ok());

    MakeFolder(root_, "other");
    ASSERT_TRUE(sys().Exchange(root_, "a", root_, "other").ok()) << "a file with a folder";
    EXPECT_EQ(sys().StatAt(root_, "a")->kind, FileKind::kFolder);
    EXPECT_EQ(Read(root_, "other"), "B");
}

TEST_P(SysContract, LinksAreNeverFollowed) {
    Write(root_, "file", "text");
    const FileHandle folder = MakeFolder(root_, "folder");
    Write(folder, "inside", "inner");
    ASSERT_TRUE(sys().MakeLinkAt("file", root_, "toFile").ok());
    ASSERT_TRUE(sys().MakeLinkAt("folder", root_, "toFolder").ok());
    ASSERT_TRUE(sys().MakeLinkAt("nowhere", root_, "dangling").ok());
    const FileInfo target = *sys().StatAt(root_, "file");

    for (const char* name : {"toFile", "toFolder", "dangling"}) {
        EXPECT_EQ(sys().StatAt(root_, name)->kind, FileKind::kLink) << name;
        EXPECT_EQ(sys().OpenForRead(root_, name).code(), StatusCode::kIsLink) << name;
        EXPECT_EQ(sys().OpenForWrite(root_, name).code(), StatusCode::kIsLink) << name;
        EXPECT_EQ(sys().OpenFolderAt(root_, name).code(), StatusCode::kIsLink) << name;
        EXPECT_EQ(sys().CreateFileAt(root_, name, 0644).code(), StatusCode::kExists) << name;
        EXPECT_EQ(sys().MakeFolderAt(root_, name, 0755).code(), StatusCode::kExists) << name;
        EXPECT_EQ(sys().RemoveFolderAt(root_, name).code(), StatusCode::kNotFolder) << name;
        EXPECT_TRUE(sys().SetTimesAt(root_, name, 1, 2).ok()) << name;
        EXPECT_EQ(sys().StatAt(root_, name)->modifiedNs, 2) << name;
    }
    EXPECT_EQ(sys().StatAt(root_, "nowhere").code(), StatusCode::kNotFound);
    EXPECT_EQ(sys().StatAt(root_, "file")->modifiedNs, target.modifiedNs);

    EXPECT_EQ(*sys().ReadLinkAt(root_, "dangling"), "nowhere");
    EXPECT_EQ(sys().ReadLinkAt(root_, "file").code(), StatusCode::kInvalid);
    ASSERT_TRUE(sys().LinkAt(root_, "toFile", root_, "second").ok());
    EXPECT_EQ(*sys().ReadLinkAt(root_, "second"), "file");
    ASSERT_TRUE(sys().RenameNoReplace(root_, "toFolder", root_, "renamed").ok());
    EXPECT_EQ(*sys().ReadLinkAt(root_, "renamed"), "folder");
    ASSERT_TRUE(sys().RemoveFileAt(root_, "renamed").ok());
    ASSERT_TRUE(sys().RemoveFileAt(root_, "toFile").ok());
    EXPECT_EQ(Read(root_, "file"), "text");
    EXPECT_EQ(Read(folder, "inside"), "inner");

    // A whole path is the user's own choice: links in it count.
    ASSERT_TRUE(
        sys()
            .MakeLinkAt("../" + place_->path().substr(place_->path().rfind('/') + 1) + "/folder", root_, "relative")
            .ok());
    Result<FileHandle> followed = sys().OpenFolder(place_->path() + "/relative/");
    ASSERT_TRUE(followed.ok());
    EXPECT_EQ(*sys().PathOf(*followed), place_->path() + "/folder");
    ASSERT_TRUE(sys().MakeLinkAt("loop", root_, "loop").ok());
    EXPECT_EQ(sys().OpenFolder(place_->path() + "/loop").code(), StatusCode::kIsLink);
}

TEST_P(SysContract, ANamelessFileShowsOnlyOnceItIsNamed) {
    Write(root_, "taken", "old");
    Result<FileHandle> file = sys().CreateNameless(root_, 0666);
    ASSERT_TRUE(file.ok());
    const std::string text = "content";
    ASSERT_TRUE(sys().Write(*file, 0, std::as_bytes(std::span(text))).ok());
    EXPECT_EQ(sys().Stat(*file)->links, 0u);
    EXPECT_EQ(sys().Stat(*file)->mode, 0666u) << "the mask does not count";
    EXPECT_THAT(Names(root_), UnorderedElementsAre("taken"));

    EXPECT_EQ(sys().NameFile(*file, root_, "taken").code(), StatusCode::kExists);
    EXPECT_EQ(Read(root_, "taken"), "old");
    ASSERT_TRUE(sys().NameFile(*file, root_, "named").ok());
    EXPECT_TRUE(sys().Stat(*file)->SameFile(*sys().StatAt(root_, "named")));
    EXPECT_EQ(sys().Stat(*file)->links, 1u);
    ASSERT_TRUE(file->Close().ok());
    EXPECT_EQ(Read(root_, "named"), text);

    ASSERT_TRUE(sys().CreateNameless(root_, 0600)->Close().ok());
    EXPECT_THAT(Names(root_), UnorderedElementsAre("taken", "named"));
}

TEST_P(SysContract, NoPathIsTooLong) {
    const std::string name(250, 'd');
    std::string path = place_->path();
    std::vector<FileHandle> chain;
    for (int depth = 0; depth < 40; ++depth) {
        chain.push_back(MakeFolder(depth == 0 ? root_ : chain.back(), name));
        path += "/" + name;
    }
    ASSERT_GT(path.size(), 2 * 4096u);
    Write(chain.back(), "leaf", "deep");
    Result<FileHandle> deep = sys().OpenFolder(path);
    ASSERT_TRUE(deep.ok());
    EXPECT_EQ(Read(*deep, "leaf"), "deep");
    EXPECT_EQ(*sys().PathOf(*deep), path);
    EXPECT_TRUE(sys().Stat(*sys().OpenParent(*deep))->SameFile(*sys().Stat(chain[38])));
    EXPECT_EQ(sys().OpenFolder(path + "/none").code(), StatusCode::kNotFound);
    EXPECT_EQ(sys().OpenFolder("/" + std::string(9000, 'x')).code(), StatusCode::kNameTooLong);
    ASSERT_TRUE(sys().RenameNoReplace(*deep, "leaf", root_, "leaf").ok());
    EXPECT_EQ(Read(root_, "leaf"), "deep");
}

TEST_P(SysContract, FoldersAreFoundAndTheirFailuresTold) {
    Write(root_, "file", "");
    FileHandle folder = MakeFolder(root_, "folder");
    Write(folder, "inside", "");
    const auto fails = [](const Status& status, StatusCode code) {
        return status.code() == code && status.systemCode() != 0;
    };
    EXPECT_TRUE(fails(sys().OpenFolder(place_->path() + "/none").status(), StatusCode::kNotFound));
    EXPECT_TRUE(fails(sys().OpenFolder(place_->path() + "/file").status(), StatusCode::kNotFolder));
    EXPECT_TRUE(fails(sys().OpenFolder(place_->path() + "/file/x").status(), StatusCode::kNotFolder));
    EXPECT_EQ(sys().OpenFolder("relative").code(), StatusCode::kInvalid);
    EXPECT_EQ(sys().OpenFolder("").code(), StatusCode::kInvalid);
    EXPECT_TRUE(fails(sys().OpenFolderAt(root_, "file").status(), StatusCode::kNotFolder));
    EXPECT_TRUE(fails(sys().OpenFolderAt(root_, "none").status(), StatusCode::kNotFound));
    EXPECT_TRUE(fails(sys().MakeFolderAt(root_, "file", 0755), StatusCode::kExists));
    EXPECT_TRUE(fails(sys().RemoveFolderAt(root_, "folder"), StatusCode::kNotEmpty));
    EXPECT_TRUE(fails(sys().RemoveFolderAt(root_, "file"), StatusCode::kNotFolder));
    EXPECT_TRUE(fails(sys().RemoveFileAt(root_, "folder"), StatusCode::kIsFolder));
    EXPECT_TRUE(fails(sys().RemoveFileAt(root_, "none"), StatusCode::kNotFound));
    EXPECT_TRUE(fails(sys().OpenForRead(root_, "folder").status(), StatusCode::kIsFolder));
    EXPECT_TRUE(fails(sys().OpenForWrite(root_, "folder").status(), StatusCode::kIsFolder));
    EXPECT_TRUE(fails(sys().CreateFileAt(root_, "file", 0644).status(), StatusCode::kExists));
    EXPECT_TRUE(fails(sys().LinkAt(root_, "folder", root_, "second"), StatusCode::kAccessDenied));
    EXPECT_TRUE(fails(sys().LinkAt(root_, "file", folder, "inside"), StatusCode::kExists));

    ASSERT_TRUE(sys().RemoveFileAt(folder, "inside").ok());
    ASSERT_TRUE(sys().RemoveFolderAt(root_, "folder").ok());
    EXPECT_EQ(sys().CreateFileAt(folder, "late", 0644).code(), StatusCode::kNotFound);
    EXPECT_EQ(sys().NameFile(*sys().CreateNameless(root_, 0644), folder, "late").code(), StatusCode::kNotFound);
    EXPECT_EQ(sys().PathOf(folder).code(), StatusCode::kNotFound);
    MakeFolder(root_, "looks removed (deleted)");
    EXPECT_EQ(*sys().PathOf(*sys().OpenFolderAt(root_, "looks removed (deleted)")),
              place_->path() + "/looks removed (deleted)");
    EXPECT_EQ(*sys().PathOf(*sys().OpenParent(*sys().OpenFolder("/"))), "/");
}

TEST_P(SysContract, AListingIsWholeAndCanBeStopped) {
    const FileHandle big = MakeFolder(root_, "big");
    std::set<std::string> expected;
    for (int i = 0; i < 10'000; ++i) {
        const std::string name = "entry-" + std::to_string(i);
        ASSERT_TRUE(sys().CreateFileAt(big, name, 0644).ok());
        expected.insert(name);
    }
    const std::vector<std::string> names = Names(big);
    EXPECT_EQ(names.size(), expected.size());
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()), expected);

    size_t seen = 0;
    size_t seenWithin = 0;
    ASSERT_TRUE(sys()
                    .ReadFolder(big,
                                [&](const FolderEntry&) {
                                    // A second listing of the same open folder does not disturb the first.
                                    if (++seen == 2) seenWithin = Names(big).size();
                                    return seen < 5000;
                                })
                    .ok());
    EXPECT_EQ(seen, 5000u);
    EXPECT_EQ(seenWithin, 10'000u);

    MakeFolder(root_, "folder");
    Write(root_, "file", "");
    ASSERT_TRUE(sys().MakeLinkAt("x", root_, "link").ok());
    std::map<std::string, FileKind> kinds;
    ASSERT_TRUE(
        sys()
            .ReadFolder(root_, [&](const FolderEntry& entry) { return kinds.emplace(entry.name, entry.kind).second; })
            .ok());
    EXPECT_EQ(kinds, (std::map<std::string, FileKind>{{"big", FileKind::kFolder},
                                                      {"folder", FileKind::kFolder},
                                                      {"file", FileKind::kFile},
                                                      {"link", FileKind::kLink}}));
}

TEST_P(SysContract, ContentIsReadAndWrittenAtOffsets) {
    FileHandle file = std::move(*sys().CreateFileAt(root_, "f", 0644));
    const std::string text = "0123456789";
    EXPECT_EQ(*sys().Write(file, 5, std::as_bytes(std::span(text))), 10u);
    EXPECT_EQ(ReadOpen(file), std::string(5, '\0') + text);
    std::string buffer(4, 'x');
    EXPECT_EQ(*sys().Read(file, 13, std::as_writable_bytes(std::span(buffer))), 2u);
    EXPECT_EQ(buffer, "89xx");
    EXPECT_EQ(*sys().Read(file, 15, std::as_writable_bytes(std::span(buffer))), 0u);
    EXPECT_EQ(*sys().Read(file, 1000, std::as_writable_bytes(std::span(buffer))), 0u);

    ASSERT_TRUE(sys().SetSize(file, 7).ok());
    ASSERT_TRUE(sys().SetSize(file, 9).ok());
    EXPECT_EQ(ReadOpen(file), std::string(5, '\0') + "01" + std::string(2, '\0'));
    ASSERT_TRUE(sys().Reserve(file, 100'000).ok());
    EXPECT_TRUE(sys().Reserve(file, 0).ok());
    EXPECT_EQ(sys().Stat(file)->size, 9u) << "reserving does not change the size";
    EXPECT_GE(sys().Stat(file)->allocated, 100'000u);

    FileHandle reader = std::move(*sys().OpenForRead(root_, "f"));
    EXPECT_EQ(sys().Write(reader, 0, std::as_bytes(std::span(text))).code(), StatusCode::kInvalid);
    FileHandle writer = std::move(*sys().OpenForWrite(root_, "f"));
    EXPECT_EQ(*sys().Write(writer, 0, std::as_bytes(std::span(text))), 10u);
    EXPECT_EQ(ReadOpen(reader), text) << "all handles see one content";
    ASSERT_TRUE(sys().RemoveFileAt(root_, "f").ok());
    EXPECT_EQ(ReadOpen(reader), text) << "an open file outlives its name";
    for (Status status : {sys().Sync(file), sys().Sync(root_), sys().SyncVolume(root_)})
        EXPECT_TRUE(status.ok());
    sys().StartWriteback(file, 0, 10);
}

TEST_P(SysContract, HolesAreFoundAndKept) {
    constexpr uint64_t kMiB = 1 << 20;
    FileHandle file = std::move(*sys().CreateFileAt(root_, "sparse", 0644));
    const std::string block(65536, 'x');
    ASSERT_TRUE(sys().Write(file, kMiB, std::as_bytes(std::span(block))).ok());
    ASSERT_TRUE(sys().Write(file, 3 * kMiB, std::as_bytes(std::span(block))).ok());
    ASSERT_TRUE(sys().SetSize(file, 1024 * kMiB).ok());
    EXPECT_LT(sys().Stat(file)->allocated, kMiB);

    EXPECT_EQ(*sys().NextData(file, 0), kMiB);
    EXPECT_EQ(*sys().NextData(file, kMiB + 5), kMiB + 5);
    EXPECT_EQ(*sys().NextHole(file, kMiB), kMiB + block.size());
    EXPECT_EQ(*sys().NextData(file, kMiB + block.size()), 3 * kMiB);
    EXPECT_EQ(*sys().NextData(file, 4 * kMiB), 1024 * kMiB) << "only a hole follows";
    EXPECT_EQ(*sys().NextHole(file, 5 * kMiB), 5 * kMiB);
    EXPECT_EQ(*sys().NextData(file, 2000 * kMiB), 1024 * kMiB) << "beyond the end";
    EXPECT_EQ(*sys().NextHole(file, 2000 * kMiB), 1024 * kMiB);

    FileHandle empty = std::move(*sys().CreateFileAt(root_, "empty", 0644));
    EXPECT_EQ(*sys().NextData(empty, 0), 0u);
    EXPECT_EQ(*sys().NextHole(empty, 0), 0u);
}

TEST_P(SysContract, CopiesInsideTheKernel) {
    std::string text(300'000, '\0');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(i * 31 >> 3);
    FileHandle from = std::move(*sys().CreateFileAt(root_, "from", 0644));
    ASSERT_EQ(*sys().Write(from, 0, std::as_bytes(std::span(text))), text.size());
    FileHandle to = std::move(*sys().CreateFileAt(root_, "to", 0644));
    uint64_t done = 0;
    while (true) {
        Result<size_t> count = sys().CopyRange(from, to, done, 1 << 20);
        ASSERT_TRUE(count.ok());
        if (*count == 0) break;
        done += *count;
    }
    EXPECT_EQ(done, text.size());
    std::string copied(text.size(), '\0');
    ASSERT_EQ(*sys().Read(to, 0, std::as_writable_bytes(std::span(copied))), text.size());
    EXPECT_EQ(copied, text);

    FileHandle clone = std::move(*sys().CreateFileAt(root_, "clone", 0644));
    const Status status = sys().Clone(from, clone);
    if (status.ok()) {
        ASSERT_EQ(*sys().Read(clone, 0, std::as_writable_bytes(std::span(copied))), text.size());
        EXPECT_EQ(copied, text);
        const std::string other = "other";
        ASSERT_TRUE(sys().Write(from, 0, std::as_bytes(std::span(other))).ok());
        EXPECT_EQ(ReadOpen(clone).substr(0, 5), text.substr(0, 5)) << "a clone does not follow its original";
    } else {
        EXPECT_EQ(status.code(), StatusCode::kUnsupported);
        EXPECT_EQ(sys().Stat(clone)->size, 0u);
    }
    EXPECT_TRUE(sys().CopyUserAttributes(from, to).ok()) << "none is no failure";
}

TEST_P(SysContract, AttributesAndIdentity) {
    FileHandle file = std::move(*sys().CreateFileAt(root_, "f", 0666));
    FileInfo info = *sys().Stat(file);
    EXPECT_EQ(info.mode, 0666u) << "the mask does not count";
    EXPECT_EQ(info.owner, sys().UserNumber());
    EXPECT_EQ(info.links, 1u);
    ASSERT_TRUE(sys().SetMode(file, 0440).ok());
    for (const int64_t ns : {int64_t{1'234'567'890'123'456'789}, int64_t{0}, int64_t{-1}, int64_t{-1'500'000'000}}) {
        ASSERT_TRUE(sys().SetTimes(file, ns + 5, ns).ok());
        info = *sys().StatAt(root_, "f");
        EXPECT_EQ(info.modifiedNs, ns);
        EXPECT_EQ(info.accessedNs, ns + 5);
    }
    EXPECT_EQ(info.mode, 0440u);
    ASSERT_TRUE(sys().LinkAt(root_, "f", root_, "g").ok());
    EXPECT_EQ(sys().Stat(file)->links, 2u);
    EXPECT_TRUE(sys().StatAt(root_, "g")->SameFile(*sys().StatAt(root_, "f")));

    Write(root_, "other", "");
    EXPECT_FALSE(sys().StatAt(root_, "other")->SameFile(info));
    EXPECT_EQ(sys().StatAt(root_, "other")->device, info.device);
    Result<VolumeInfo> volume = sys().DescribeVolume(root_);
    ASSERT_TRUE(volume.ok());
    EXPECT_EQ(sys().DescribeVolume(file)->volumeId, volume->volumeId);
    EXPECT_GT(volume->freeBytes, 0u);
    EXPECT_FALSE(sys().BootId().empty());
    EXPECT_EQ(sys().BootId(), sys().BootId());
}

TEST_P(SysContract, ALockHasOneHolderAndEndsWithItsHandle) {
    Write(root_, "lock", "");
    FileHandle first = std::move(*sys().OpenForWrite(root_, "lock"));
    FileHandle second = std::move(*sys().OpenForWrite(root_, "lock"));
    ASSERT_TRUE(sys().TryLock(first).ok());
    EXPECT_TRUE(sys().TryLock(first).ok()) << "its own again";
    EXPECT_EQ(sys().TryLock(second).code(), StatusCode::kLocked);
    // Other handles of the file come and go without taking the lock along.
    ASSERT_TRUE(sys().OpenForRead(root_, "lock")->Close().ok());
    EXPECT_EQ(sys().TryLock(second).code(), StatusCode::kLocked);
    first.Reset();
    EXPECT_TRUE(sys().TryLock(second).ok());
}

TEST_P(SysContract, HandlesMoveAndCloseOnce) {
    Write(root_, "f", "text");
    FileHandle a = std::move(*sys().OpenForRead(root_, "f"));
    const int number = a.number();
    FileHandle b = std::move(a);
    EXPECT_FALSE(a.isOpen());  // NOLINT(bugprone-use-after-move): that is the question
    EXPECT_EQ(b.number(), number);
    b = std::move(*sys().OpenForRead(root_, "f"));
    EXPECT_NE(b.number(), -1);
    EXPECT_EQ(ReadOpen(b), "text");
    EXPECT_TRUE(b.Close().ok());
    EXPECT_FALSE(b.isOpen());
    EXPECT_TRUE(b.Close().ok()) << "nothing left to close";
    EXPECT_EQ(sys().Stat(b).code(), StatusCode::kInvalid);
}

}  // namespace
}  // namespace kinsort
