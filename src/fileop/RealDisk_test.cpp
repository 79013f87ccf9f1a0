// Batches on real folders: whatever a name or a file can be goes there and comes back as it was.
#include "fileop/RealDisk_test.h"

#include <gmock/gmock.h>

namespace kinsort {
namespace {

using ::testing::HasSubstr;

constexpr OperationPolicy kSkip = RealPolicy(ConflictAnswer::kSkip);
constexpr OperationPolicy kReplace = RealPolicy(ConflictAnswer::kReplace);
constexpr OperationPolicy kKeepBoth = RealPolicy(ConflictAnswer::kKeepBoth);

class RealNamesAndKinds : public RealDiskTest {
  protected:
    void SetAttribute(std::string_view name, const char* key, const std::string& value) {
        EXPECT_EQ(setxattr(P(name).c_str(), key, value.data(), value.size(), 0), 0) << name;
    }
    // Makes files for every way of placing something.
    void MakeCollection() {
        for (const char* folder : {"in/album/deep", "in/album/empty", "out/A/album"})
            std::filesystem::create_directories(P(folder));
        WriteFile("in/a.txt", "AAA", 0640);
        WriteFile("in/b.bin", std::string(300'000, 'b'), 0444);
        WriteFile("in/album/one.jpg", "1");
        WriteFile("in/album/deep/two.jpg", "22", 0600);
        EXPECT_EQ(symlink("one.jpg", P("in/album/link").c_str()), 0);
        EXPECT_EQ(symlink("/nowhere/at all", P("in/album/dangling").c_str()), 0);
        EXPECT_EQ(chmod(P("in/album/deep").c_str(), 0750), 0);
        WriteFile("out/A/a.txt", "old", 0600);
        WriteFile("out/A/album/one.jpg", "uno");
        WriteFile("out/A/album/own.jpg", "own");
        SetAttribute("in/a.txt", "user.note", "mine");
        SetAttribute("in/album/deep/two.jpg", "user.note", "deep");
        SetAttribute("out/A/a.txt", "user.note", "old one");
        if (!hasOtherVolume()) return;
        std::filesystem::create_directories(P("usb/U"));
        WriteFile("usb/U/b.bin", "old on usb", 0604);
    }
};

TEST_F(RealNamesAndKinds, EveryWayOfPlacingGoesThereAndBack) {
    MakeCollection();
    Age();
    const std::string album = "album/ album/dangling->/nowhere/at all album/deep/ album/deep/two.jpg=22 album/empty/ ";
    const std::string keptBoth =
        "a (2).txt=AAA a.txt=old album/ album/one.jpg=uno album/own.jpg=own album (2)/ album (2)/dangling->";
    struct Case {
        const char* name;
        std::vector<Job> jobs;
        OperationPolicy policy;
        const char* folder;
        std::string expected;  // begins with
    };
    const Case cases[] = {
        {"move", {{true, "in/a.txt", "out/B"}, {true, "in/album", "out/B"}}, kSkip, "out/B", "a.txt=AAA " + album},
        {"copy", {{false, "in/a.txt", "out/B"}, {false, "in/album", "out/B"}}, kSkip, "out/B", "a.txt=AAA " + album},
        {"replace by move", {{true, "in/a.txt", "out/A"}}, kReplace, "out/A", "a.txt=AAA album/"},
        {"replace by copy", {{false, "in/a.txt", "out/A"}}, kReplace, "out/A", "a.txt=AAA album/"},
        {"merge by move",
         {{true, "in/album", "out/A"}},
         kReplace,
         "out/A",
         "a.txt=old " + album + "album/link->one.jpg album/one.jpg=1 album/own.jpg=own"},
        {"merge by copy",
         {{false, "in/album", "out/A"}},
         kReplace,
         "out/A",
         "a.txt=old " + album + "album/link->one.jpg album/one.jpg=1 album/own.jpg=own"},
        {"keep both by move", {{true, "in/a.txt", "out/A"}, {true, "in/album", "out/A"}}, kKeepBoth, "out/A", keptBoth},
        {"keep both by copy",
         {{false, "in/a.txt", "out/A"}, {false, "in/album", "out/A"}},
         kKeepBoth,
         "out/A",
         keptBoth},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        ExpectThereAndBack(test.jobs, test.policy,
                           [&] { EXPECT_TRUE(Tree(test.folder).starts_with(test.expected)) << Tree(test.folder); });
        if (HasFatalFailure()) return;
    }
}

TEST_F(RealNamesAndKinds, AMoveToAnotherVolumeGoesThereAndBack) {
    if (!hasOtherVolume()) GTEST_SKIP() << "/dev/shm is missing or on the volume of the temporary files";
    MakeCollection();
    Age();
    ExpectThereAndBack(
        {{true, "in/a.txt", "usb/U"}, {true, "in/album", "usb/U"}, {true, "in/b.bin", "usb/U"}}, kReplace, [this] {
            EXPECT_THAT(Tree("usb/U"),
                        HasSubstr("a.txt=AAA album/ album/dangling->/nowhere/at all album/deep/ "
                                  "album/deep/two.jpg=22 album/empty/ album/link->one.jpg album/one.jpg=1"));
            EXPECT_EQ(Tree("in"), "");
            EXPECT_EQ(ReadFile("usb/U/b.bin"), std::string(300'000, 'b'));
        });
    EXPECT_EQ(ReadFile("usb/U/b.bin"), "old on usb");
}

TEST_F(RealNamesAndKinds, AnyNameIsKeptByteForByte) {
    const std::vector<std::string> names = {
        "new\nline",
        "tab\there",
        "back\\slash",
        "\x01\x1f\x7f",
        "-rf",
        " both ends ",
        "\xff\xfe not text",
        "half \xc3",
        "C:",
        "con.",
        "\xee\x80\x80 private use",
        std::string(255, 'x'),
        "...",
        "*?<>|\"",
        "%s%n",
        "~",
    };
    std::vector<Job> jobs;
    for (size_t i = 0; i < names.size(); ++i) {
        WriteFile("in/" + names[i], std::to_string(i));
        std::filesystem::create_directories(P("out/" + names[i]));
        jobs.push_back({i % 2 == 0, "in/" + names[i], "out/" + names[i]});
    }
    Age();
    ExpectThereAndBack(jobs, kSkip, [&] {
        for (size_t i = 0; i < names.size(); ++i)
            EXPECT_EQ(Tree("out/" + names[i]), names[i] + "=" + std::to_string(i));
    });
}

TEST_F(RealNamesAndKinds, LongestNamesAreShortenedAtACharacter) {
    std::string umlauts;
    for (int i = 0; i < 125; ++i)
        umlauts += "\xc3\xa4";
    const std::vector<std::string> names = {umlauts + "x.txt", "x" + umlauts + ".txt", std::string(251, 'n') + ".txt"};
    std::vector<Job> jobs;
    for (const std::string& name : names) {
        ASSERT_EQ(name.size(), 255u);
        WriteFile("in/" + name, "new");
        WriteFile("out/A/" + name, "old");
        jobs.push_back({jobs.size() != 1, "in/" + name, "out/A"});
    }
    Age();
    // " (2)" takes four bytes: two letters of two bytes from the one, and one byte more than needed from the other.
    const std::vector<std::string> expected = {umlauts.substr(0, 246) + " (2).txt",
                                               "x" + umlauts.substr(0, 246) + " (2).txt",
                                               std::string(247, 'n') + " (2).txt"};
    ExpectThereAndBack(jobs, kKeepBoth, [&] {
        for (size_t i = 0; i < names.size(); ++i) {
            EXPECT_EQ(ReadFile("out/A/" + expected[i]), "new") << i;
            EXPECT_EQ(ReadFile("out/A/" + names[i]), "old") << i;
        }
    });
}

TEST_F(RealNamesAndKinds, PathsMayBeLongerThanTheSystemTakes) {
    constexpr int kLevels = 24;
    const std::string step(200, 'd');
    std::string deep;
    // One chain as an item, another as the way to an item, a third as the way to a target folder.
    for (const char* top : {"in/item", "in/way", "out/B/way"}) {
        std::filesystem::create_directories(P(top));
        int folder = open(P(top).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        deep.clear();
        for (int level = 0; level < kLevels; ++level) {
            ASSERT_EQ(mkdirat(folder, step.c_str(), 0755), 0);
            const int inner = openat(folder, step.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            close(folder);
            folder = inner;
            deep += "/" + step;
        }
        for (const char* name : {"leaf", "other"}) {
            const int file = openat(folder, name, O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
            EXPECT_EQ(write(file, top, 3), 3);
            close(file);
        }
        close(folder);
    }
    Age();
    ExpectThereAndBack({{true, "in/item", "out/B"},
                        {true, "in/way" + deep + "/leaf", "out/A"},
                        {false, "in/way" + deep + "/other", "out/A"}},
                       kSkip, [&] {
                           EXPECT_EQ(Tree("out/A"), "leaf=in/ other=in/");
                           EXPECT_THAT(Tree("out/B"), HasSubstr("item" + deep + "/other=in/"));
                           EXPECT_EQ(Tree("in").find("leaf"), std::string::npos);
                       });
    ExpectThereAndBack({{false, "in/item", "out/A"},
                        {false, "in/way" + deep + "/leaf", "out/B/way" + deep},
                        {true, "in/way" + deep + "/other", "out/B/way" + deep}},
                       kKeepBoth, [&] {
                           EXPECT_THAT(Tree("out/A"), HasSubstr("item" + deep + "/leaf=in/"));
                           EXPECT_THAT(Tree("out/B"),
                                       HasSubstr("way" + deep + "/leaf=out way" + deep + "/leaf (2)=in/"));
                           EXPECT_THAT(Tree("out/B"), HasSubstr("way" + deep + "/other (2)=in/"));
                       });
}

TEST_F(RealNamesAndKinds, LinksAreTakenAsLinks) {
    WriteFile("out/precious", "untouched");
    std::filesystem::create_directories(P("out/folder"));
    const std::pair<const char*, std::string> links[] = {{"dangling", "no such file"},
                                                         {"relative", "../out/precious"},
                                                         {"absolute", P("out/precious")},
                                                         {"to folder", P("out/folder")},
                                                         {"loop", "loop"},
                                                         {"long", std::string(3000, 'l')}};
    std::vector<Job> moves;
    std::vector<Job> copies;
    std::string expected;
    for (const auto& [name, text] : links) {
        ASSERT_EQ(symlink(text.c_str(), P("in/" + std::string(name)).c_str()), 0);
        moves.push_back({true, "in/" + std::string(name), "out/A"});
        copies.push_back({false, "in/" + std::string(name), "out/A"});
    }
    Age();
    const std::string before = Tree("in");
    ExpectThereAndBack(copies, kSkip, [&] { EXPECT_EQ(Tree("out/A"), before); });
    ExpectThereAndBack(moves, kSkip, [&] { EXPECT_EQ(Tree("out/A"), before); });
    // A link at the target is what is replaced, never what it leads to; dangling or not.
    WriteFile("in/file", "new");
    ASSERT_EQ(symlink("/no/such/file", P("out/A/file").c_str()), 0);
    ASSERT_EQ(symlink(P("out/precious").c_str(), P("out/B/file").c_str()), 0);
    ExpectThereAndBack({{false, "in/file", "out/A"}}, kReplace, [&] { EXPECT_EQ(Tree("out/A"), "file=new"); });
    ExpectThereAndBack({{true, "in/file", "out/B"}}, kReplace, [&] { EXPECT_EQ(Tree("out/B"), "file=new"); });
    EXPECT_EQ(ReadFile("out/precious"), "untouched");
    if (!hasOtherVolume()) return;
    ExpectThereAndBack({{true, "in/loop", "usb"}, {true, "in/absolute", "usb"}}, kSkip,
                       [&] { EXPECT_EQ(Tree("usb"), "absolute->" + P("out/precious") + " loop->loop"); });
}

TEST_F(RealNamesAndKinds, APipeIsMovedButNeverCopied) {
    ASSERT_EQ(mkfifo(P("in/pipe").c_str(), 0600), 0);
    std::filesystem::create_directories(P("in/folder"));
    ASSERT_EQ(mkfifo(P("in/folder/pipe").c_str(), 0600), 0);
    WriteFile("in/folder/file", "f");
    Age();
    ExpectThereAndBack({{true, "in/pipe", "out/A"}, {true, "in/folder", "out/A"}}, kSkip,
                       [&] { EXPECT_EQ(Tree("out/A"), "folder/ folder/file=f folder/pipe| pipe|"); });
    const std::string before = Snapshot(Times::kAll);
    BatchResult result = Run({{false, "in/pipe", "out/A"}, {false, "in/folder", "out/A"}}, kSkip);
    EXPECT_EQ(result.skipped, 2u) << Explain(result);
    for (const ItemReport& report : result.reports)
        EXPECT_EQ(report.reason, ItemReason::kSpecialFile);
    EXPECT_EQ(Tree("out/A"), "folder/ folder/file=f") << "what can be copied is";
    (void)Undo();
    EXPECT_EQ(Snapshot(Times::kAll), before);
    if (!hasOtherVolume()) return;
    result = Run({{true, "in/pipe", "usb"}, {true, "in/folder", "usb"}}, kSkip);
    EXPECT_EQ(result.skipped, 2u) << Explain(result);
    EXPECT_EQ(Tree("in"), "folder/ folder/pipe| pipe|") << "what cannot go stays";
    EXPECT_EQ(Tree("usb"), "folder/ folder/file=f");
    (void)Undo();
    EXPECT_EQ(Tree("in"), "folder/ folder/file=f folder/pipe| pipe|");
    EXPECT_EQ(Tree("usb"), "");
}

TEST_F(RealNamesAndKinds, HolesStayHoles) {
    constexpr off_t kSize = off_t{1} << 40;
    const int file = open(P("in/sparse").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
    if (ftruncate(file, kSize) != 0) {
        close(file);
        GTEST_SKIP() << "the volume of the temporary files has no files of 1 TiB";
    }
    for (const off_t at : {off_t{0}, off_t{1} << 30, kSize - 10})
        ASSERT_EQ(pwrite(file, "some data", 10, at), 10);
    close(file);
    struct stat original {};
    ASSERT_EQ(stat(P("in/sparse").c_str(), &original), 0);
    for (const char* folder : {"out/A", "usb"}) {
        if (!hasOtherVolume() && std::string_view(folder) == "usb") continue;
        const BatchResult result = Run({{false, "in/sparse", folder}}, kSkip);
        ASSERT_EQ(result.done, 1u) << Explain(result);
        struct stat copy {};
        ASSERT_EQ(stat(P(std::string(folder) + "/sparse").c_str(), &copy), 0);
        EXPECT_EQ(copy.st_size, kSize);
        EXPECT_LE(copy.st_blocks, original.st_blocks + original.st_blocks / 20) << folder;
        EXPECT_EQ(Tree(folder), Tree("in")) << folder;
    }
}

// The system gives this file out as empty: an empty copy must not count as one.
TEST_F(RealNamesAndKinds, AFileThatHidesItsSizeIsNotCopiedShort) {
    FileOperation operation(ServicesOn(*sys_));
    operation.SetPolicy(kSkip);
    operation.CopyItems(codec_->PathToInner("/proc/version"), codec_->PathToInner(P("out/A")));
    EXPECT_EQ(operation.PerformOperations(nullptr, nullptr, nullptr).failed, 1u);
    EXPECT_EQ(Tree("out"), "A/ B/");
}

TEST_F(RealNamesAndKinds, HardLinksAreSeenAsWhatTheyAre) {
    WriteFile("in/one", "shared");
    ASSERT_EQ(link(P("in/one").c_str(), P("in/two").c_str()), 0);
    Age();
    const auto inodeOf = [this](const char* name) {
        struct stat status {};
        return lstat(P(name).c_str(), &status) == 0 ? status.st_ino : 0;
    };
    // A pair that moves inside its volume stays one file; copies are two.
    ExpectThereAndBack({{true, "in/one", "out/A"}, {true, "in/two", "out/A"}}, kSkip,
                       [&] { EXPECT_EQ(inodeOf("out/A/one"), inodeOf("out/A/two")); });
    ExpectThereAndBack({{false, "in/one", "out/A"}, {false, "in/two", "out/A"}}, kSkip, [&] {
        EXPECT_NE(inodeOf("out/A/one"), inodeOf("out/A/two"));
        EXPECT_EQ(Tree("out/A"), "one=shared two=shared");
    });
    // The file is at its target already: a move drops the source's name, whatever the policy.
    ASSERT_EQ(link(P("in/one").c_str(), P("out/B/one").c_str()), 0);
    Age();
    for (const OperationPolicy& policy : {kSkip, kReplace, kKeepBoth}) {
        ExpectThereAndBack({{true, "in/one", "out/B"}}, policy, [&] {
            EXPECT_EQ(Tree("in"), "two=shared");
            EXPECT_EQ(Tree("out/B"), "one=shared");
        });
    }
    // A copy onto itself is refused, or gets a name of its own.
    const BatchResult refused = Run({{false, "in/one", "out/B"}}, kSkip);
    ASSERT_EQ(refused.reports.size(), 1u);
    EXPECT_EQ(refused.reports[0].reason, ItemReason::kSameFile);
    ExpectThereAndBack({{false, "in/one", "out/B"}}, kKeepBoth,
                       [&] { EXPECT_EQ(Tree("out/B"), "one=shared one (2)=shared"); });
}

}  // namespace
}  // namespace kinsort
