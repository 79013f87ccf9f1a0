// What the contract test cannot ask of a real disk: power cuts, volumes without features, room that runs out.
#include "platform/fake/MemorySys.h"

#include <functional>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kinsort {
namespace {

constexpr uint64_t kSeeds = 200;

std::span<const std::byte> Bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

class MemorySysTest : public ::testing::Test {
  protected:
    MemorySysTest() {
        sys_.MakeFolders("/home/a");
        sys_.MakeFolders("/home/b");
        home_ = Open("/home");
        a_ = Open("/home/a");
        b_ = Open("/home/b");
    }

    FileHandle Open(std::string_view path) {
        Result<FileHandle> folder = sys_.OpenFolder(path);
        EXPECT_TRUE(folder.ok()) << path;
        return std::move(*folder);
    }
    FileHandle Create(const FileHandle& folder, std::string_view name, std::string_view content) {
        Result<FileHandle> file = sys_.CreateFileAt(folder, name, 0644);
        EXPECT_TRUE(file.ok());
        EXPECT_EQ(*sys_.Write(*file, 0, Bytes(content)), content.size());
        return std::move(*file);
    }
    // What `describe` says of the disk after each of many cuts, each answer once.
    std::set<std::string> Outcomes(const std::function<std::string(const MemorySys&)>& describe) {
        std::set<std::string> seen;
        for (uint64_t seed = 0; seed < kSeeds; ++seed)
            seen.insert(describe(*sys_.AfterPowerCut(seed)));
        return seen;
    }
    // The paths that are there, and the content of files, in one text.
    static std::string Tree(const MemorySys& disk) {
        std::string text;
        for (const TreeEntry& entry : disk.ListTree("/home")) {
            if (entry.kind != FileKind::kFolder) text += entry.path + "=" + entry.content + " ";
        }
        return text;
    }
    std::set<std::string> Trees() { return Outcomes(Tree); }
    using Set = std::set<std::string>;

    MemorySys sys_;
    FileHandle home_, a_, b_;
};

TEST_F(MemorySysTest, ACutCanTakeNamesAndContentThatWereNotSynced) {
    const std::string content(20'000, 'x');
    FileHandle file = Create(a_, "f", content);
    const Set before = Outcomes([](const MemorySys& disk) {
        const std::optional<std::string> text = disk.ReadFile("/home/a/f");
        if (!text) return "no name";
        if (text->empty()) return "empty";
        if (*text == std::string(20'000, 'x')) return "whole";
        if (text->size() < 20'000) return "short";
        return text->find('x') == std::string::npos ? "zeros" : "torn";
    });
    EXPECT_EQ(before, (Set{"no name", "empty", "whole", "short", "zeros", "torn"}));

    ASSERT_TRUE(sys_.Sync(file).ok());
    const auto state = [&](const MemorySys& disk) {
        return disk.Has("/home/a/f") ? disk.ReadFile("/home/a/f") == content ? "whole" : "damaged" : "no name";
    };
    EXPECT_EQ(Outcomes(state), (Set{"no name", "whole"})) << "a file's sync does not make its name safe";
    ASSERT_TRUE(sys_.Sync(b_).ok());
    EXPECT_EQ(Outcomes(state), (Set{"no name", "whole"})) << "nor does another folder's";
    ASSERT_TRUE(sys_.Sync(a_).ok());
    EXPECT_EQ(Outcomes(state), (Set{"whole"}));
    EXPECT_EQ(sys_.unsafeOperations(), 0u);
}

TEST_F(MemorySysTest, WhatWasSyncedStaysWhenMoreIsAppended) {
    FileHandle file = Create(a_, "journal", "first ");
    ASSERT_TRUE(sys_.Sync(file).ok());
    ASSERT_TRUE(sys_.Sync(a_).ok());
    ASSERT_TRUE(sys_.Write(file, 6, Bytes("second")).ok());
    size_t shortened = 0;
    for (uint64_t seed = 0; seed < kSeeds; ++seed) {
        const std::string text = *sys_.AfterPowerCut(seed)->ReadFile("/home/a/journal");
        EXPECT_TRUE(text.starts_with("first ")) << text;
        EXPECT_LE(text.size(), 12u);
        shortened += text.size() > 6 && text.size() < 12;
    }
    EXPECT_GT(shortened, 0u) << "an append can be torn";
    ASSERT_TRUE(sys_.SyncVolume(b_).ok());
    EXPECT_EQ(Trees(), (Set{"a/journal=first second "}));
}

TEST_F(MemorySysTest, ARenameSurvivesWholeOrNotAtAll) {
    sys_.WriteFile("/home/a/f", "F");
    sys_.WriteFile("/home/b/g", "G");
    ASSERT_TRUE(sys_.RenameNoReplace(a_, "f", b_, "f").ok());
    EXPECT_EQ(Trees(), (Set{"a/f=F b/g=G ", "b/f=F b/g=G "}));
    ASSERT_TRUE(sys_.Exchange(b_, "f", b_, "g").ok());
    EXPECT_EQ(Trees(), (Set{"a/f=F b/g=G ", "b/f=F b/g=G ", "b/f=G b/g=F "})) << "the exchange needs the rename";
    ASSERT_TRUE(sys_.Sync(a_).ok());
    EXPECT_EQ(Trees(), (Set{"b/f=F b/g=G ", "b/f=G b/g=F "}));
    ASSERT_TRUE(sys_.Sync(b_).ok());
    EXPECT_EQ(Trees(), (Set{"b/f=G b/g=F "}));
}

TEST_F(MemorySysTest, OperationsOnDifferentNamesSurviveOnTheirOwn) {
    sys_.WriteFile("/home/a/f", "F");
    ASSERT_TRUE(sys_.LinkAt(a_, "f", b_, "f").ok());
    ASSERT_TRUE(sys_.RemoveFileAt(a_, "f").ok());
    EXPECT_EQ(Trees(), (Set{"", "a/f=F ", "b/f=F ", "a/f=F b/f=F "})) << "link and unlink are no rename";
    ASSERT_TRUE(sys_.Sync(b_).ok());
    EXPECT_EQ(Trees(), (Set{"b/f=F ", "a/f=F b/f=F "}));
    const std::unique_ptr<MemorySys> after = sys_.AfterPowerCut(1);
    EXPECT_EQ(after->Look("/home/b/f")->links, after->Has("/home/a/f") ? 2u : 1u);
}

TEST_F(MemorySysTest, AnOperationNeedsThoseItBuildsOn) {
    // A file is moved into a new folder, which is then moved itself.
    sys_.WriteFile("/home/a/f", "F");
    ASSERT_TRUE(sys_.MakeFolderAt(b_, "new", 0755).ok());
    FileHandle made = Open("/home/b/new");
    ASSERT_TRUE(sys_.RenameNoReplace(a_, "f", made, "f").ok());
    ASSERT_TRUE(sys_.RenameNoReplace(b_, "new", a_, "moved").ok());
    EXPECT_EQ(Trees(), (Set{"a/f=F ", "b/new/f=F ", "a/moved/f=F "})) << "never lost with a folder that was not made";
    ASSERT_TRUE(sys_.Sync(made).ok());
    EXPECT_EQ(Trees(), (Set{"b/new/f=F ", "a/moved/f=F "}));

    // A folder is emptied by moving out what it holds, and removed; its name is used again.
    FileHandle moved = Open("/home/a/moved");
    ASSERT_TRUE(sys_.SyncVolume(home_).ok());
    ASSERT_TRUE(sys_.RenameNoReplace(moved, "f", b_, "f").ok());
    ASSERT_TRUE(sys_.RemoveFolderAt(a_, "moved").ok());
    ASSERT_TRUE(sys_.Sync(Create(a_, "moved", "file")).ok());
    EXPECT_EQ(Trees(), (Set{"a/moved/f=F ", "b/f=F ", "a/moved=file b/f=F "}));
    ASSERT_TRUE(sys_.Sync(a_).ok());
    EXPECT_EQ(Trees(), (Set{"a/moved=file b/f=F "}));
}

TEST_F(MemorySysTest, FoldersNeverEndUpInsideThemselves) {
    sys_.WriteFile("/home/a/p/f", "F");
    sys_.MakeFolders("/home/a/q");
    FileHandle p = Open("/home/a/p");
    FileHandle q = Open("/home/a/q");
    ASSERT_TRUE(sys_.RenameNoReplace(a_, "q", p, "q").ok());
    ASSERT_TRUE(sys_.RenameNoReplace(p, "q", b_, "q").ok());
    ASSERT_TRUE(sys_.RenameNoReplace(a_, "p", q, "p").ok());
    EXPECT_EQ(Trees(), (Set{"a/p/f=F ", "b/q/p/f=F "}));
}

TEST_F(MemorySysTest, ACutEndsHandlesLocksAndNamelessFiles) {
    sys_.WriteFile("/home/a/lock", "");
    FileHandle lock = std::move(*sys_.OpenForWrite(a_, "lock"));
    ASSERT_TRUE(sys_.TryLock(lock).ok());
    FileHandle nameless = std::move(*sys_.CreateNameless(a_, 0600));
    ASSERT_TRUE(sys_.Write(nameless, 0, Bytes("lost")).ok());
    ASSERT_TRUE(sys_.Sync(nameless).ok());
    const uint64_t files = sys_.UsedFiles("/");
    const std::string boot = sys_.BootId();
    const FileInfo before = *sys_.Look("/home/a/lock");

    const std::string same = Tree(*sys_.AfterPowerCut(7));
    sys_.PowerCut(7);
    EXPECT_EQ(Tree(sys_), same);
    EXPECT_EQ(sys_.UsedFiles("/"), files - 1);
    EXPECT_EQ(sys_.Stat(lock).code(), StatusCode::kStale);
    EXPECT_EQ(sys_.StatAt(a_, "lock").code(), StatusCode::kStale);
    EXPECT_EQ(nameless.Close().code(), StatusCode::kStale);
    EXPECT_NE(sys_.BootId(), boot);
    EXPECT_NE(sys_.Look("/home/a/lock")->device, before.device);
    EXPECT_EQ(sys_.Look("/home/a/lock")->inode, before.inode);
    FileHandle again = std::move(*sys_.OpenForWrite(Open("/home/a"), "lock"));
    EXPECT_TRUE(sys_.TryLock(again).ok());
}

TEST_F(MemorySysTest, RoomRunsOutWhereItWould) {
    const uint64_t usedFiles = sys_.UsedFiles("/");
    sys_.ChangeVolume("/", {.bytes = sys_.UsedBytes("/") + 3 * 4096, .files = usedFiles + 2});
    FileHandle file = Create(a_, "f", "x");
    const std::string big(20'000, 'y');
    EXPECT_EQ(*sys_.Write(file, 0, Bytes(big)), 3 * 4096u) << "as much as fits";
    EXPECT_EQ(sys_.Write(file, 3 * 4096, Bytes(big)).code(), StatusCode::kNoSpace);
    EXPECT_EQ(*sys_.Write(file, 0, Bytes("over")), 4u) << "what is there can be written again";
    EXPECT_EQ(sys_.MakeFolderAt(a_, "folder", 0755).code(), StatusCode::kNoSpace);
    EXPECT_EQ(sys_.DescribeVolume(file)->freeBytes, 0u);
    ASSERT_TRUE(sys_.MakeLinkAt("x", a_, "link").ok());
    EXPECT_EQ(sys_.CreateFileAt(a_, "g", 0644).code(), StatusCode::kNoSpace);
    EXPECT_EQ(sys_.CreateNameless(a_, 0644).code(), StatusCode::kNoSpace);
    EXPECT_TRUE(sys_.LinkAt(a_, "f", a_, "h").ok()) << "a second name needs no file";

    ASSERT_TRUE(sys_.SetSize(file, 4096).ok());
    EXPECT_EQ(sys_.Reserve(file, 4 * 4096).code(), StatusCode::kNoSpace);
    ASSERT_TRUE(sys_.Reserve(file, 3 * 4096).ok());
    FileHandle other = std::move(*sys_.OpenForWrite(a_, "h"));
    EXPECT_EQ(*sys_.Write(other, 4096, Bytes(std::string(8192, 'z'))), 8192u) << "into what was reserved";
    ASSERT_TRUE(sys_.RemoveFileAt(a_, "f").ok());
    ASSERT_TRUE(sys_.RemoveFileAt(a_, "h").ok());
    EXPECT_EQ(sys_.DescribeVolume(home_)->freeBytes, 0u) << "still open";
    file.Reset();
    other.Reset();
    EXPECT_EQ(sys_.DescribeVolume(home_)->freeBytes, 3 * 4096u);
    EXPECT_EQ(sys_.UsedFiles("/"), usedFiles + 1);
}

TEST_F(MemorySysTest, VolumesAreApartAndCanLackFeatures) {
    sys_.AddVolume("/home/usb", {.nameless = false,
                                 .noReplace = false,
                                 .exchange = false,
                                 .hardLinks = false,
                                 .clone = false,
                                 .copyRange = false,
                                 .holes = false,
                                 .reserve = false,
                                 .userAttributes = false,
                                 .createdTimes = false,
                                 .kindsInListing = false,
                                 .stableIdentity = false,
                                 .foldsCase = true});
    sys_.WriteFile("/home/usb/Name.txt", "usb");
    sys_.WriteFile("/home/a/f", "F");
    sys_.SetUserAttribute("/home/a/f", "user.tag", "red");
    FileHandle usb = Open("/home/usb");
    FileHandle source = std::move(*sys_.OpenForRead(a_, "f"));
    FileHandle target = std::move(*sys_.OpenForWrite(usb, "NAME.TXT"));

    const Status crossing[] = {sys_.RenameNoReplace(a_, "f", usb, "f"), sys_.Exchange(a_, "f", usb, "name.txt"),
                               sys_.LinkAt(a_, "f", usb, "f"), sys_.Clone(source, target),
                               sys_.CopyRange(source, target, 0, 10).status()};
    for (const Status& status : crossing)
        EXPECT_EQ(status.code(), StatusCode::kCrossVolume);
    const Status lacking[] = {
        sys_.CreateNameless(usb, 0644).status(),         sys_.RenameNoReplace(usb, "name.txt", usb, "x"),
        sys_.Exchange(usb, "name.txt", usb, "name.txt"), sys_.Clone(target, target),
        sys_.CopyRange(target, target, 0, 10).status(),  sys_.Reserve(target, 10),
        sys_.CopyUserAttributes(source, target)};
    for (const Status& status : lacking)
        EXPECT_EQ(status.code(), StatusCode::kUnsupported);
    EXPECT_EQ(sys_.RenameNoReplace(usb, "Name.txt", usb, "nAME.txt").code(), StatusCode::kExists);
    EXPECT_EQ(sys_.CreateFileAt(usb, "name.TXT", 0644).code(), StatusCode::kExists);
    EXPECT_EQ(sys_.LinkAt(usb, "name.txt", usb, "second").code(), StatusCode::kAccessDenied);
    EXPECT_EQ(sys_.DescribeVolume(usb)->volumeId, 0u);
    EXPECT_EQ(sys_.Stat(target)->createdNs, 0);
    EXPECT_EQ(sys_.RemoveFolderAt(home_, "usb").code(), StatusCode::kBusy);
    EXPECT_EQ(sys_.RenameNoReplace(home_, "usb", home_, "stick").code(), StatusCode::kBusy);
    EXPECT_EQ(*sys_.PathOf(usb), "/home/usb");
    EXPECT_TRUE(sys_.Stat(*sys_.OpenParent(usb))->SameFile(*sys_.Stat(home_)));
    ASSERT_TRUE(sys_.ReadFolder(usb,
                                [](const FolderEntry& entry) {
                                    EXPECT_EQ(entry.kind, FileKind::kOther);
                                    return true;
                                })
                    .ok());
    EXPECT_EQ(Tree(*sys_.AfterPowerCut(3)), "a/f=F usb/Name.txt=usb ") << "a mount is there after the cut";
}

TEST_F(MemorySysTest, PermissionsAreThoseOfFoldersAndFiles) {
    sys_.WriteFile("/home/a/f", "F", 0000);
    sys_.WriteFile("/home/a/g", "G", 0444);
    EXPECT_EQ(sys_.OpenForRead(a_, "f").code(), StatusCode::kAccessDenied);
    EXPECT_EQ(sys_.OpenForWrite(a_, "g").code(), StatusCode::kAccessDenied);
    sys_.SetModeOf("/home/a", 0500);
    const auto changes = [&] {
        return std::vector<StatusCode>{
            sys_.CreateFileAt(a_, "new", 0644).code(), sys_.MakeFolderAt(a_, "new", 0755).code(),
            sys_.RemoveFileAt(a_, "f").code(),         sys_.RenameNoReplace(a_, "f", b_, "f").code(),
            sys_.LinkAt(b_, "h", a_, "h").code(),      sys_.CreateNameless(a_, 0644).code()};
    };
    sys_.WriteFile("/home/b/h", "H");
    EXPECT_THAT(changes(), ::testing::Each(StatusCode::kAccessDenied));
    sys_.SetModeOf("/home/a", 0600);
    EXPECT_EQ(sys_.StatAt(a_, "f").code(), StatusCode::kAccessDenied);
    EXPECT_EQ(sys_.OpenFolder("/home/a/x").code(), StatusCode::kAccessDenied);
    sys_.SetModeOf("/home/a", 0755);

    // A sticky folder of somebody else, in which everyone may write.
    sys_.SetOwnerOf("/home/a", 7);
    sys_.SetModeOf("/home/a", 01777);
    sys_.SetOwnerOf("/home/a/g", 7);
    EXPECT_EQ(sys_.RemoveFileAt(a_, "g").code(), StatusCode::kAccessDenied);
    EXPECT_EQ(sys_.Exchange(a_, "g", b_, "h").code(), StatusCode::kAccessDenied);
    EXPECT_TRUE(sys_.RemoveFileAt(a_, "f").ok()) << "its own";
    EXPECT_EQ(sys_.SetTimesAt(a_, "g", 1, 1).code(), StatusCode::kAccessDenied);

    sys_.SetImmutable("/home/b/h", true);
    EXPECT_EQ(sys_.RenameNoReplace(b_, "h", b_, "i").code(), StatusCode::kAccessDenied);
    EXPECT_EQ(sys_.OpenForWrite(b_, "h").code(), StatusCode::kAccessDenied);
    sys_.ChangeVolume("/", {.readOnly = true});
    EXPECT_EQ(sys_.RemoveFileAt(b_, "h").code(), StatusCode::kReadOnly);
    EXPECT_EQ(sys_.CreateFileAt(b_, "i", 0644).code(), StatusCode::kReadOnly);
    EXPECT_EQ(Tree(sys_), "a/g=G b/h=H ");
}

TEST_F(MemorySysTest, NumbersAndTimesAreTheSameInEveryRun) {
    const auto run = [] {
        MemorySys sys;
        sys.WriteFile("/x/a", "1");
        sys.WriteFile("/x/b", "2");
        const uint64_t inode = sys.Look("/x/a")->inode;
        sys.Remove("/x/a");
        sys.WriteFile("/x/c", "3");
        EXPECT_EQ(sys.Look("/x/c")->inode, inode) << "a freed number is used again";
        EXPECT_FALSE(sys.Look("/x/c")->createdNs == sys.Look("/x/b")->createdNs);
        return sys.ListTree("/");
    };
    EXPECT_EQ(run(), run());
    sys_.SetClockStep(0);
    sys_.WriteFile("/home/a/x", "1");
    const FileInfo before = *sys_.Look("/home/a/x");
    sys_.WriteFile("/home/a/x", "2");
    EXPECT_EQ(sys_.Look("/home/a/x")->modifiedNs, before.modifiedNs) << "two changes within one tick";
    sys_.Move("/home/a/x", "/home/b/x");
    EXPECT_EQ(sys_.ReadFile("/home/b/x"), "2");
    EXPECT_FALSE(sys_.Has("/home/a/x"));
}

}  // namespace
}  // namespace kinsort
