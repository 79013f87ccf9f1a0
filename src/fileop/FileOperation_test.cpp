#include "fileop/FileOperation.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "fileop/Batch.h"
#include "fileop/BatchWorld_test.h"

namespace kinsort {
namespace {

constexpr OperationPolicy kSkip{.conflicts = ConflictAnswer::kSkip, .durability = Durability::kContent, .threads = 1};
constexpr OperationPolicy kReplace{
    .conflicts = ConflictAnswer::kReplace, .durability = Durability::kContent, .threads = 1};
constexpr OperationPolicy kAsk{.conflicts = ConflictAnswer::kAsk, .durability = Durability::kContent, .threads = 1};

class FileOperationTest : public testing::Test {
  protected:
    FileOperationTest() {
        BatchWorld::Prepare(disk);
        disk.WriteFile("/in/a.txt", "AAA", 0640);
        disk.WriteFile("/in/b.txt", "BBB");
        disk.WriteFile("/in/album/one.jpg", "1");
        disk.WriteFile("/in/album/deep/two.jpg", "22", 0600);
        disk.MakeLink("one.jpg", "/in/album/link");
        disk.MakeFolders("/out/A");
        disk.MakeFolders("/out/B");
        disk.AddVolume("/usb", {});
        disk.MakeFolders("/usb/U");
    }

    // Runs, undoes, redoes and undoes again, comparing the trees after each.
    void ExpectRoundTrip(const std::vector<Job>& jobs, const OperationPolicy& policy, const std::string& expected) {
        const auto before = BatchWorld::Snapshot(disk, false);
        const BatchResult result = world.Run(disk, jobs, policy);
        ASSERT_TRUE(result.status.ok());
        EXPECT_EQ(result.failed, 0u);
        EXPECT_EQ(BatchWorld::Tree(disk), expected);
        for (int round = 0; round < 2; ++round) {
            const BatchResult undone = world.Undo(disk);
            ASSERT_TRUE(undone.status.ok());
            EXPECT_EQ(undone.done, result.done) << undone.failed << " " << undone.skipped << " " << undone.notReached;
            EXPECT_EQ(BatchWorld::Snapshot(disk, false), before);
            if (round == 1) break;
            const BatchResult redone = world.Redo(disk);
            ASSERT_TRUE(redone.status.ok()) << static_cast<int>(redone.status.code());
            EXPECT_EQ(redone.failed, 0u);
            EXPECT_EQ(BatchWorld::Tree(disk), expected);
        }
        EXPECT_EQ(disk.openHandles(), 0u);
    }

    MemorySys disk;
    BatchWorld world;
};

constexpr const char* kUntouched =
    "in/ in/a.txt=AAA in/album/ in/album/deep/ in/album/deep/two.jpg=22 in/album/link->one.jpg in/album/one.jpg=1 "
    "in/b.txt=BBB out/ out/A/ out/B/ usb/ usb/U/";

TEST_F(FileOperationTest, MovesCopiesAndTransfersGoThereAndBack) {
    ASSERT_EQ(BatchWorld::Tree(disk), kUntouched);
    ExpectRoundTrip(
        {{true, "/in/a.txt", "/out/A"}, {false, "/in/b.txt", "/out/B"}, {true, "/in/album", "/out/A"}}, kSkip,
        "in/ in/b.txt=BBB out/ out/A/ out/A/a.txt=AAA out/A/album/ out/A/album/deep/ "
        "out/A/album/deep/two.jpg=22 out/A/album/link->one.jpg out/A/album/one.jpg=1 out/B/ out/B/b.txt=BBB "
        "usb/ usb/U/");
    ExpectRoundTrip({{true, "/in/a.txt", "/usb/U"}, {true, "/in/album", "/usb/U"}}, kSkip,
                    "in/ in/b.txt=BBB out/ out/A/ out/B/ usb/ usb/U/ usb/U/a.txt=AAA usb/U/album/ usb/U/album/deep/ "
                    "usb/U/album/deep/two.jpg=22 usb/U/album/link->one.jpg usb/U/album/one.jpg=1");
    ExpectRoundTrip({{false, "/in/album", "/out/B"}}, kSkip,
                    "in/ in/a.txt=AAA in/album/ in/album/deep/ in/album/deep/two.jpg=22 in/album/link->one.jpg "
                    "in/album/one.jpg=1 in/b.txt=BBB out/ out/A/ out/B/ out/B/album/ out/B/album/deep/ "
                    "out/B/album/deep/two.jpg=22 out/B/album/link->one.jpg out/B/album/one.jpg=1 usb/ usb/U/");
}

TEST_F(FileOperationTest, ReplacedFilesComeBackAsTheyWere) {
    disk.WriteFile("/out/A/a.txt", "old", 0600);
    disk.WriteFile("/usb/U/b.txt", "older");
    const uint64_t oldInode = disk.Look("/out/A/a.txt")->inode;
    for (const bool isMove : {true, false}) {
        const std::string left = isMove ? "in/ " : "in/ in/a.txt=AAA ";
        const std::string left2 = isMove ? "" : "in/b.txt=BBB ";
        ExpectRoundTrip(
            {{isMove, "/in/a.txt", "/out/A"}, {isMove, "/in/b.txt", "/usb/U"}}, kReplace,
            left + "in/album/ in/album/deep/ in/album/deep/two.jpg=22 in/album/link->one.jpg in/album/one.jpg=1 " +
                left2 + "out/ out/A/ out/A/a.txt=AAA out/B/ usb/ usb/U/ usb/U/b.txt=BBB");
        EXPECT_EQ(disk.Look("/out/A/a.txt")->inode, oldInode);
        EXPECT_EQ(disk.ReadFile("/usb/U/b.txt"), "older");
        EXPECT_EQ(disk.ListTree("/usb/U").size(), 1u) << "the folder for kept files goes when it is empty";
    }
}

TEST_F(FileOperationTest, ConflictsFollowThePolicyOrTheAnswers) {
    disk.WriteFile("/out/A/a.txt", "old");
    disk.WriteFile("/out/A/a (2).txt", "second");
    disk.WriteFile("/out/A/b.txt", "other");
    const std::vector<Job> jobs{{false, "/in/a.txt", "/out/A"}, {false, "/in/b.txt", "/out/A"}};

    BatchResult result = world.Run(disk, jobs, kSkip);
    EXPECT_EQ(result.skipped, 2u);
    ASSERT_EQ(result.reports.size(), 2u);
    EXPECT_EQ(result.reports[0].reason, ItemReason::kConflictSkipped);
    EXPECT_EQ(result.id, 0u) << "nothing was begun";
    EXPECT_TRUE(world.List(disk).empty());

    ScriptedAsker once(
        {{ConflictAnswer::kKeepBoth, AnswerScope::kThisOne}, {ConflictAnswer::kSkip, AnswerScope::kThisOne}});
    result = world.Run(disk, jobs, kAsk, &once);
    EXPECT_EQ(once.asked.size(), 2u);
    EXPECT_EQ(once.asked[0].target.path, uR"(Z:\out\A\a.txt)");
    EXPECT_EQ(disk.ReadFile("/out/A/a (3).txt"), "AAA");
    EXPECT_EQ(disk.ReadFile("/out/A/b.txt"), "other");

    ScriptedAsker forAll({{ConflictAnswer::kReplace, AnswerScope::kAllInBatch}});
    result = world.Run(disk, jobs, kAsk, &forAll);
    EXPECT_EQ(forAll.asked.size(), 1u);
    EXPECT_EQ(result.done, 2u);
    EXPECT_EQ(disk.ReadFile("/out/A/b.txt"), "BBB");

    ScriptedAsker cancel({{ConflictAnswer::kCancel, AnswerScope::kThisOne}});
    const std::string before = BatchWorld::Tree(disk);
    result = world.Run(disk, jobs, kAsk, &cancel);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(result.notReached, 2u);
    EXPECT_EQ(BatchWorld::Tree(disk), before);
}

TEST_F(FileOperationTest, ACopyOntoItselfIsRefusedWithoutAQuestion) {
    ScriptedAsker asker({{ConflictAnswer::kReplace, AnswerScope::kThisOne}});
    const BatchResult refused = world.Run(disk, {{false, "/in/a.txt", "/in"}}, kAsk, &asker);
    EXPECT_EQ(refused.reports.at(0).reason, ItemReason::kSameFile);
    EXPECT_TRUE(asker.asked.empty());
    const OperationPolicy keepBoth{
        .conflicts = ConflictAnswer::kKeepBoth, .durability = Durability::kContent, .threads = 1};
    EXPECT_EQ(world.Run(disk, {{false, "/in/a.txt", "/in"}}, keepBoth).done, 1u);
    EXPECT_EQ(disk.ReadFile("/in/a (2).txt"), "AAA");
}

TEST_F(FileOperationTest, TwoItemsOfOneNameNeverMeet) {
    disk.WriteFile("/other/a.txt", "another");
    const BatchResult result =
        world.Run(disk, {{true, "/in/a.txt", "/out/A"}, {true, "/other/a.txt", "/out/A"}}, kReplace);
    EXPECT_EQ(result.done, 2u);
    EXPECT_EQ(BatchWorld::Tree(disk, "/out"), "A/ A/a (2).txt=another A/a.txt=AAA B/");
}

TEST_F(FileOperationTest, FoldersMergeAndTheLeftoversStay) {
    disk.WriteFile("/out/A/album/one.jpg", "uno");
    disk.WriteFile("/out/A/album/own.jpg", "own");
    ExpectRoundTrip(
        {{true, "/in/album", "/out/A"}}, kReplace,
        "in/ in/a.txt=AAA in/b.txt=BBB out/ out/A/ out/A/album/ out/A/album/deep/ out/A/album/deep/two.jpg=22 "
        "out/A/album/link->one.jpg out/A/album/one.jpg=1 out/A/album/own.jpg=own out/B/ usb/ usb/U/");
    ScriptedAsker asker(
        {{ConflictAnswer::kReplace, AnswerScope::kThisOne}, {ConflictAnswer::kSkip, AnswerScope::kThisOne}});
    const BatchResult result = world.Run(disk, {{true, "/in/album", "/out/A"}}, kAsk, &asker);
    ASSERT_EQ(asker.asked.size(), 2u);
    EXPECT_TRUE(asker.asked[0].isMerge);
    EXPECT_FALSE(asker.asked[1].isMerge);
    EXPECT_EQ(result.skipped, 1u);
    EXPECT_EQ(BatchWorld::Tree(disk, "/in"), "a.txt=AAA album/ album/one.jpg=1 b.txt=BBB");
    EXPECT_EQ(disk.ReadFile("/out/A/album/one.jpg"), "uno");
}

TEST_F(FileOperationTest, RefusesWhatMakesNoSense) {
    disk.MakeOther("/in/pipe");
    disk.MakeFolders("/in/album/inner");
    disk.MakeLink("/in/album/inner", "/out/shortcut");
    struct Case {
        Job job;
        ItemReason reason;
    };
    const Case cases[] = {
        {{true, "/in/nothing", "/out/A"}, ItemReason::kSourceGone},
        {{true, "/in/a.txt", "/in"}, ItemReason::kSameFile},
        {{true, "/in/album", "/in/album/deep"}, ItemReason::kIntoItself},
        {{false, "/in/album", "/in/album"}, ItemReason::kIntoItself},
        {{true, "/in/album", "/out/shortcut"}, ItemReason::kIntoItself},
        {{false, "/in/pipe", "/out/A"}, ItemReason::kSpecialFile},
        {{true, "/in/pipe", "/usb/U"}, ItemReason::kSpecialFile},
        {{true, "/in/a.txt", "/out/missing"}, ItemReason::kSystem},
        {{true, "/in/a.txt", "/in/b.txt"}, ItemReason::kSystem},
    };
    const std::string before = BatchWorld::Tree(disk);
    for (const Case& test : cases) {
        const BatchResult result = world.Run(disk, {test.job}, kReplace);
        ASSERT_EQ(result.reports.size(), 1u) << test.job.source << " to " << test.job.folder;
        EXPECT_EQ(result.reports[0].reason, test.reason) << test.job.source << " to " << test.job.folder;
        EXPECT_EQ(result.done, 0u);
    }
    EXPECT_EQ(BatchWorld::Tree(disk), before);
    const BatchResult twice = world.Run(disk, {{true, "/in/pipe", "/out/A"}, {true, "/in/pipe", "/out/B"}}, kSkip);
    EXPECT_EQ(twice.done, 1u);
    EXPECT_EQ(twice.reports.at(0).reason, ItemReason::kDuplicate);
    EXPECT_TRUE(disk.Has("/out/A/pipe"));
}

TEST_F(FileOperationTest, OneFailureDoesNotStopTheOthers) {
    disk.SetModeOf("/out/A", 0500);
    const BatchResult result = world.Run(disk, {{true, "/in/a.txt", "/out/A"}, {true, "/in/b.txt", "/out/B"}}, kSkip);
    EXPECT_EQ(result.done, 1u);
    EXPECT_EQ(result.failed, 1u);
    ASSERT_EQ(result.reports.size(), 1u);
    EXPECT_EQ(result.reports[0].status.code(), StatusCode::kAccessDenied);
    EXPECT_EQ(result.reports[0].source, uR"(Z:\in\a.txt)");
    EXPECT_EQ(disk.ReadFile("/in/a.txt"), "AAA");
    EXPECT_EQ(disk.ReadFile("/out/B/b.txt"), "BBB");
}

TEST_F(FileOperationTest, AFullVolumeLosesNothingAndLeavesNothing) {
    disk.AddVolume("/small", {.bytes = 3 * 4096});
    disk.MakeFolders("/small/S");
    disk.WriteFile("/small/S/a.txt", "old");
    disk.WriteFile("/in/a.txt", std::string(100'000, 'x'));
    const std::string before = BatchWorld::Tree(disk);
    for (const bool isMove : {true, false}) {
        const BatchResult result = world.Run(disk, {{isMove, "/in/a.txt", "/small/S"}}, kReplace);
        EXPECT_EQ(result.failed, 1u);
        EXPECT_EQ(result.reports.at(0).status.code(), StatusCode::kNoSpace);
        EXPECT_EQ(BatchWorld::Tree(disk), before);
    }
}

TEST_F(FileOperationTest, UndoRefusesWhatWouldLoseSomething) {
    struct Case {
        const char* name;
        bool isMove;
        void (*meddle)(MemorySys& disk);
        ItemReason reason;
    };
    const Case cases[] = {
        {"copy edited", false, [](MemorySys& d) { d.WriteFile("/out/A/a.txt", "mine"); },
         ItemReason::kFileChangedSince},
        {"original gone", false, [](MemorySys& d) { d.Remove("/in/a.txt"); }, ItemReason::kLastCopy},
        {"original edited", false, [](MemorySys& d) { d.WriteFile("/in/a.txt", "mine"); }, ItemReason::kLastCopy},
        {"copy gone", false, [](MemorySys& d) { d.Remove("/out/A/a.txt"); }, ItemReason::kNotThereAnyMore},
        {"moved file edited", true, [](MemorySys& d) { d.WriteFile("/out/A/a.txt", "mine"); },
         ItemReason::kFileChangedSince},
        {"place taken", true, [](MemorySys& d) { d.WriteFile("/in/a.txt", "new"); }, ItemReason::kTargetTaken},
        {"moved on", true, [](MemorySys& d) { d.Move("/out/A/a.txt", "/out/B/a.txt"); }, ItemReason::kNotThereAnyMore},
        {"another file", true,
         [](MemorySys& d) {
             d.Remove("/out/A/a.txt");
             d.WriteFile("/out/A/a.txt", "AAA");
         },
         ItemReason::kFileChangedSince},
    };
    for (const Case& test : cases) {
        MemorySys fresh;
        BatchWorld::Prepare(fresh);
        fresh.WriteFile("/in/a.txt", "AAA");
        fresh.WriteFile("/in/b.txt", "BBB");
        fresh.MakeFolders("/out/A");
        fresh.MakeFolders("/out/B");
        world.Run(fresh, {{test.isMove, "/in/a.txt", "/out/A"}, {test.isMove, "/in/b.txt", "/out/A"}}, kSkip);
        test.meddle(fresh);
        const auto before = BatchWorld::Snapshot(fresh, true);
        const BatchResult undone = world.Undo(fresh);
        EXPECT_EQ(undone.done, 1u) << test.name;
        ASSERT_EQ(undone.reports.size(), 1u) << test.name;
        EXPECT_EQ(undone.reports[0].reason, test.reason) << test.name;
        EXPECT_TRUE(fresh.Has("/in/b.txt") && !fresh.Has("/out/A/b.txt")) << test.name;
        const BatchSummary summary = world.List(fresh).at(0);
        EXPECT_EQ(summary.undone, 1u) << test.name;
        EXPECT_TRUE(summary.canUndo) << test.name << ": what was refused can be tried again";
        EXPECT_EQ(world.Undo(fresh, 1).done, 0u) << "what was refused stays so, what was undone is not undone twice";
    }
}

TEST_F(FileOperationTest, ATargetThatAppearsLateIsAskedAbout) {
    for (const bool isMove : {true, false}) {
        MemorySys inner;
        BatchWorld::Prepare(inner);
        inner.WriteFile("/in/a.txt", "AAA");
        inner.MakeFolders("/out/A");
        FaultSys sys(inner);
        const SysCall visible = isMove ? SysCall::kRenameNoReplace : SysCall::kNameFile;
        sys.AtKind(visible, 1, Fault::Hook([&inner] { inner.WriteFile("/out/A/a.txt", "late"); }));
        ScriptedAsker asker({{ConflictAnswer::kReplace, AnswerScope::kThisOne}});
        const BatchResult result = world.Run(sys, {{isMove, "/in/a.txt", "/out/A"}}, kAsk, &asker);
        EXPECT_EQ(sys.strikes(), 1u);
        EXPECT_EQ(asker.asked.size(), 1u);
        EXPECT_EQ(result.done, 1u);
        EXPECT_EQ(inner.ReadFile("/out/A/a.txt"), "AAA");
        EXPECT_EQ(world.Undo(inner).done, 1u);
        EXPECT_EQ(inner.ReadFile("/out/A/a.txt"), "late");
        EXPECT_EQ(inner.ReadFile("/in/a.txt"), "AAA");
    }
}

TEST_F(FileOperationTest, AFolderSwappedForALinkIsNotFollowed) {
    MemorySys inner;
    BatchWorld::Prepare(inner);
    inner.WriteFile("/in/a.txt", "AAA");
    inner.WriteFile("/in/b.txt", "BBB");
    inner.MakeFolders("/out/A");
    inner.MakeFolders("/out/B");
    inner.MakeFolders("/elsewhere");
    FaultSys sys(inner);
    // The journal's sync comes between the plan and the first change.
    sys.AtKind(SysCall::kSync, 2, Fault::Hook([&inner] {
                   inner.Remove("/out/A");
                   inner.MakeLink("/elsewhere", "/out/A");
               }));
    const BatchResult result = world.Run(sys, {{true, "/in/a.txt", "/out/A"}, {true, "/in/b.txt", "/out/B"}}, kSkip);
    EXPECT_EQ(result.done, 1u);
    EXPECT_EQ(result.reports.at(0).reason, ItemReason::kTargetFolderChanged);
    EXPECT_EQ(BatchWorld::Tree(inner, "/elsewhere"), "");
    EXPECT_EQ(inner.ReadFile("/in/a.txt"), "AAA");
}

TEST_F(FileOperationTest, ARenameThatCrossesVolumesBecomesATransfer) {
    for (const char* item : {"/in/a.txt", "/in/album"}) {
        MemorySys inner;
        BatchWorld::Prepare(inner);
        inner.WriteFile("/in/a.txt", "AAA");
        inner.WriteFile("/in/album/one.jpg", "1");
        inner.WriteFile("/in/album/deep/two.jpg", "22");
        inner.MakeFolders("/out/A");
        const auto before = BatchWorld::Snapshot(inner, false);
        FaultSys sys(inner);
        sys.FromKind(SysCall::kRenameNoReplace, 1, Fault::Fail(StatusCode::kCrossVolume));
        const BatchResult result = world.Run(sys, {{true, item, "/out/A"}}, kSkip);
        EXPECT_EQ(result.done, 1u) << item << " " << BatchWorld::Tree(inner);
        EXPECT_FALSE(inner.Has(item));
        EXPECT_EQ(world.Undo(inner).failed, 0u);
        EXPECT_EQ(BatchWorld::Snapshot(inner, false), before) << item;
    }
}

TEST_F(FileOperationTest, JournalSyncsStayFew) {
    std::vector<Job> moves;
    std::vector<Job> copies;
    for (int i = 0; i < 2500; ++i) {
        const std::string path = "/many/" + std::to_string(i);
        disk.WriteFile(path, "x");
        (i % 2 == 0 ? moves : copies).push_back({i % 2 == 0, path, "/out/A"});
    }
    const BatchResult moved = world.Run(disk, moves, kSkip);
    EXPECT_EQ(moved.done, moves.size());
    EXPECT_LE(moved.journalSyncs, 2 + moves.size() / 1000);
    const BatchResult copied = world.Run(disk, copies, kSkip);
    EXPECT_EQ(copied.done, copies.size());
    EXPECT_LE(copied.journalSyncs, 2 + copies.size() / 1000);
}

// Many items for one folder: it is listed once, and no look asks for a name that is not there.
TEST_F(FileOperationTest, AListedFolderIsNotAskedForEachName) {
    std::vector<Job> jobs;
    for (int i = 0; i < 100; ++i) {
        const std::string name = std::to_string(i);
        disk.WriteFile("/many/" + name, "new");
        if (i % 10 == 0) disk.WriteFile("/out/A/" + name, "old");
        jobs.push_back({true, "/many/" + name, "/out/A"});
    }
    FaultSys counting(disk);
    const BatchResult result = world.Run(counting, jobs, kSkip);
    EXPECT_EQ(result.done, 90u);
    EXPECT_EQ(result.skipped, 10u);
    EXPECT_EQ(disk.ReadFile("/out/A/10"), "old");
    EXPECT_EQ(disk.ReadFile("/many/10"), "new");
    // Each source when it is planned, each move once more, and the ten names that are taken.
    EXPECT_EQ(counting.CountOf(SysCall::kStatAt), 100u + 90u + 10u);
}

TEST_F(FileOperationTest, WithoutUndoNothingIsKeptAndNothingRecorded) {
    disk.WriteFile("/out/A/a.txt", "old");
    for (int round = 0; round < 2; ++round) {
        FileOperation operation(world.ServicesOn(disk));
        operation.SetPolicy(kAsk);
        operation.SetOperationFlags(kFofNoConfirmation | kFofNoCopySecurityAttribs);
        operation.CopyItems(uR"(Z:\in\a.txt)", uR"(Z:\out\A)");
        ScriptedAsker asker({});
        EXPECT_EQ(operation.PerformOperations(&asker, nullptr, nullptr).done, 1u);
        EXPECT_TRUE(asker.asked.empty());
        EXPECT_EQ(disk.ListTree(BatchWorld::kJournals).size(), 0u);
    }
    EXPECT_EQ(disk.ReadFile("/out/A/a.txt"), "AAA");
}

TEST_F(FileOperationTest, AKeepFolderThatOthersCanReachIsNotUsed) {
    disk.WriteFile("/usb/U/a.txt", "old");
    BatchHeader header;
    header.id = 1;
    header.user = 1000;
    header.startedNs = ManualClock().WallNanoseconds();
    const std::string planted = "/usb/U/.kinsort-" + KeptFolderName(header);
    disk.MakeFolders(planted, 0777);
    disk.SetOwnerOf(planted, 1001);
    const BatchResult result = world.Run(disk, {{false, "/in/a.txt", "/usb/U"}}, kReplace);
    EXPECT_EQ(result.failed, 1u);
    EXPECT_EQ(result.reports.at(0).status.code(), StatusCode::kAccessDenied);
    EXPECT_EQ(disk.ReadFile("/usb/U/a.txt"), "old");
    EXPECT_TRUE(disk.ListTree(planted).empty());
}

TEST_F(FileOperationTest, PruningForgetsTheOldestAndWhatWasKeptForThem) {
    disk.WriteFile("/out/A/a.txt", "first");
    for (const char* content : {"second", "third", "fourth"}) {
        disk.WriteFile("/in/a.txt", content);
        EXPECT_EQ(world.Run(disk, {{false, "/in/a.txt", "/out/A"}}, kReplace).done, 1u);
    }
    ASSERT_EQ(world.List(disk).size(), 3u);
    EXPECT_TRUE(UndoHistory(world.ServicesOn(disk)).Prune(1).ok());
    ASSERT_EQ(world.List(disk).size(), 1u);
    EXPECT_EQ(disk.ListTree(BatchWorld::kJournals).size(), 3u) << "one journal, one kept folder, one kept file";
    EXPECT_EQ(world.Undo(disk).done, 1u);
    EXPECT_EQ(disk.ReadFile("/out/A/a.txt"), "third");
}

TEST_F(FileOperationTest, ACancelLeavesWholeItemsThatCanBeUndone) {
    MemorySys inner;
    BatchWorld::Prepare(inner);
    std::vector<Job> jobs;
    for (int i = 0; i < 3000; ++i) {
        const std::string path = "/in/" + std::to_string(i);
        inner.WriteFile(path, "content " + std::to_string(i));
        jobs.push_back({i % 2 == 0, path, "/out/A"});
    }
    inner.MakeFolders("/out/A");
    const std::string before = BatchWorld::Snapshot(inner, false);
    for (const uint64_t at : {1u, 700u, 1400u}) {
        CancelToken cancel;
        FaultSys sys(inner);
        sys.AtKind(SysCall::kRead, at, Fault::Hook([&cancel] { cancel.Cancel(); }));
        const BatchResult result = world.Run(sys, jobs, kSkip, nullptr, &cancel);
        EXPECT_TRUE(result.cancelled);
        EXPECT_EQ(result.failed, 0u);
        EXPECT_EQ(result.done + result.notReached, jobs.size());
        EXPECT_LT(result.done, jobs.size());
        EXPECT_EQ(world.Undo(inner).failed, 0u);
        EXPECT_EQ(BatchWorld::Snapshot(inner, false), before) << at;
    }
}

// One item leaves the name that the next one takes, whatever order their folders have.
TEST_F(FileOperationTest, ItemsThatFollowEachOtherGoInTheirOrder) {
    for (const char* first : {"/out/A", "/out/B"}) {
        const std::string second = first == std::string("/out/A") ? "/out/B" : "/out/A";
        for (const unsigned threads : {1u, 3u}) {
            disk.WriteFile(std::string(first) + "/a.txt", "old");
            const std::string before = BatchWorld::Tree(disk);
            const OperationPolicy policy{.conflicts = ConflictAnswer::kReplace, .threads = threads};
            const std::vector<Job> jobs{
                {true, "/in/b.txt", first}, {true, std::string(first) + "/a.txt", second}, {true, "/in/a.txt", first}};
            EXPECT_EQ(world.Run(disk, jobs, policy).done, 3u);
            EXPECT_EQ(disk.ReadFile(second + "/a.txt"), "old");
            EXPECT_EQ(disk.ReadFile(std::string(first) + "/a.txt"), "AAA");
            EXPECT_EQ(world.Undo(disk).failed, 0u);
            EXPECT_EQ(BatchWorld::Tree(disk), before);
            disk.Remove(std::string(first) + "/a.txt");
        }
    }
}

TEST_F(FileOperationTest, ClosedFoldersAndTheirAttributesGoThereAndBack) {
    disk.SetUserAttribute("/in/album", "user.tag", "blue");
    disk.SetModeOf("/in/album/deep", 0555);
    ExpectRoundTrip({{false, "/in/album", "/out/B"}}, kSkip,
                    "in/ in/a.txt=AAA in/album/ in/album/deep/ in/album/deep/two.jpg=22 in/album/link->one.jpg "
                    "in/album/one.jpg=1 in/b.txt=BBB out/ out/A/ out/B/ out/B/album/ out/B/album/deep/ "
                    "out/B/album/deep/two.jpg=22 out/B/album/link->one.jpg out/B/album/one.jpg=1 usb/ usb/U/");
    disk.SetModeOf("/in/album/deep", 0755);
    const std::string before = BatchWorld::Snapshot(disk, false);
    EXPECT_EQ(world.Run(disk, {{true, "/in/album", "/usb/U"}}, kSkip).done, 1u);
    EXPECT_EQ(disk.ListTree("/usb/U").at(0).userAttributes.at("user.tag"), "blue");
    EXPECT_EQ(world.Undo(disk).done, 1u);
    EXPECT_EQ(BatchWorld::Snapshot(disk, false), before);
}

TEST_F(FileOperationTest, FewDescriptorsOnlyMakeItSlower) {
    std::vector<Job> jobs;
    for (int i = 0; i < 60; ++i) {
        const std::string folder = "/out/F" + std::to_string(i % 20);
        disk.MakeFolders(folder);
        disk.WriteFile("/in/n" + std::to_string(i), "content");
        jobs.push_back({i % 3 == 0, "/in/n" + std::to_string(i), folder});
    }
    const std::string before = BatchWorld::Snapshot(disk, false);
    for (const bool isUndo : {false, true}) {
        FaultSys sys(disk);
        // Now and then there is no descriptor, whoever asks.
        for (const SysCall call : {SysCall::kOpenFolder, SysCall::kOpenForRead, SysCall::kCreateNameless}) {
            for (uint64_t count = 60; count < 200; count += 9)
                sys.AtKind(call, count, Fault::Fail(StatusCode::kTooManyOpen));
        }
        const BatchResult result = isUndo ? world.Undo(sys) : world.Run(sys, jobs, kSkip);
        EXPECT_GT(sys.strikes(), 0u);
        EXPECT_EQ(result.done, jobs.size()) << isUndo;
    }
    EXPECT_EQ(BatchWorld::Snapshot(disk, false), before);
}

}  // namespace
}  // namespace kinsort
