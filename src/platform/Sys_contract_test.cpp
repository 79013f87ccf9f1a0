// The rules of Sys.h, run against every implementation: the real one in a fresh folder of each kind of volume that the
// machine offers, the in-memory one, and the in-memory one behind the fault injector. Here: folders and names.
#include "platform/Sys_contract_test.h"

#include <map>
#include <set>

#include "platform/fake/FaultSys.h"
#include "platform/fake/MemorySys.h"
#include "platform/linux/LinuxSys.h"
#include "platform/linux/TemporaryFolder_test.h"

namespace kinsort {
namespace {

using ::testing::UnorderedElementsAre;

class RealPlace final : public Place {
  public:
    explicit RealPlace(const std::filesystem::path& above) : folder_(above) {}
    Sys& sys() override { return *sys_; }
    std::string path() const override { return folder_.path(); }

  private:
    const TemporaryFolder folder_;
    const std::unique_ptr<Sys> sys_ = MakeLinuxSys();
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

std::unique_ptr<Place> MakeInTemp() {
    return std::make_unique<RealPlace>(std::filesystem::temp_directory_path());
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
    for (const size_t separators : {2, 4090, 5000}) {  // they count once, wherever a long path is cut
        const std::string spelled = std::string(path).insert(place_->path().size(), separators, '/') + "//";
        ASSERT_TRUE(sys().OpenFolder(spelled).ok()) << separators;
        EXPECT_EQ(*sys().PathOf(*sys().OpenFolder(spelled)), path);
    }
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

}  // namespace
}  // namespace kinsort
