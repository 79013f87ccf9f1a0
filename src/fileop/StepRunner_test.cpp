// While one group of a batch is made safe the next one is prepared: what is prepared too early to have a name must
// neither be lost nor left over, whatever comes in between.
#include "fileop/StepRunner.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "fileop/BatchWorld_test.h"

namespace kinsort {
namespace {

constexpr size_t kGroup = RunnerSettings().groupSize;
constexpr size_t kItems = kGroup + 200;

class AheadTest : public testing::TestWithParam<bool> {
  protected:
    AheadTest() : disk_({.nameless = GetParam()}) {
        BatchWorld::Prepare(disk_);
        disk_.MakeFolders("/out/A");
        disk_.MakeFolders("/out/B");
        for (size_t i = 0; i < kItems; ++i) {
            const std::string path = "/in/" + std::to_string(i);
            disk_.WriteFile(path, path);
            jobs_.push_back({false, path, i % 2 == 0 ? "/out/A" : "/out/B"});
        }
        before_ = BatchWorld::Tree(disk_);
    }

    BatchResult Run(FaultSys& faults, Durability durability, const CancelToken* cancel = nullptr) {
        return world_.Run(faults, jobs_, {.conflicts = ConflictAnswer::kSkip, .durability = durability, .threads = 2},
                          nullptr, cancel);
    }
    // The first sync of a volume takes until something of the next group is made.
    void WaitForTheNextGroup(FaultSys& faults) {
        faults.AtKind(SysCall::kSyncVolume, 1, Fault::Hook([this, &faults] {
                          const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
                          while (!wasAhead_ && std::chrono::steady_clock::now() < deadline) {
                              wasAhead_ = faults.CountOf(MakingCall()) > kGroup + 9;
                              std::this_thread::yield();
                          }
                      }));
    }
    // Nothing is left of a batch whose visible part an undo has taken back.
    void ExpectUntouched(const FaultSys& faults) {
        EXPECT_EQ(faults.openHandles(), 0u);
        EXPECT_TRUE(BatchWorld::Tree(disk_) == before_);
        for (const TreeEntry& entry : disk_.ListTree("/out"))
            EXPECT_FALSE(entry.path.ends_with(".part")) << entry.path;
    }
    // The call that makes a file which has no name yet.
    static SysCall MakingCall() { return GetParam() ? SysCall::kCreateNameless : SysCall::kCreateFileAt; }

    BatchWorld world_;
    MemorySys disk_;
    std::vector<Job> jobs_;
    std::string before_;
    bool wasAhead_ = false;
};

INSTANTIATE_TEST_SUITE_P(Volumes, AheadTest, testing::Bool(),
                         [](const auto& is) { return is.param ? "Nameless" : "Temporary"; });

TEST_P(AheadTest, TheNextGroupIsPreparedWhileTheDiskIsBusy) {
    FaultSys faults(disk_);
    WaitForTheNextGroup(faults);
    EXPECT_EQ(Run(faults, Durability::kContent).done, kItems);
    EXPECT_TRUE(wasAhead_);
    for (const Job& job : {jobs_.front(), jobs_.back()})
        EXPECT_EQ(disk_.ReadFile(job.folder + job.source.substr(3)), job.source);
    EXPECT_EQ(world_.Undo(disk_).done, kItems);
    ExpectUntouched(faults);
}

// The system tells of a failed write once, and nobody knows whose it was.
TEST_P(AheadTest, AfterAFailedSyncTheNextGroupIsCopiedAnew) {
    FaultSys failing(disk_);
    failing.AtKind(SysCall::kSyncVolume, 1, Fault::Fail(StatusCode::kIo));
    FaultSys faults(static_cast<Sys&>(failing));
    WaitForTheNextGroup(faults);
    const BatchResult result = Run(faults, Durability::kContent);
    EXPECT_EQ(result.failed, kGroup);
    EXPECT_EQ(result.done, kItems - kGroup);
    EXPECT_GT(faults.CountOf(MakingCall()), kItems + 1);
    EXPECT_EQ(world_.Undo(disk_).done, kItems - kGroup);
    ExpectUntouched(faults);
}

TEST_P(AheadTest, WithoutDescriptorsTheNextGroupWaits) {
    FaultSys faults(disk_);
    for (uint64_t count = kGroup + 50; count < kGroup + 60; ++count)
        faults.AtKind(MakingCall(), count, Fault::Fail(StatusCode::kTooManyOpen));
    const BatchResult result = Run(faults, Durability::kContent);
    EXPECT_EQ(faults.strikes(), 10u);
    EXPECT_EQ(result.done, kItems);
    EXPECT_EQ(world_.Undo(disk_).done, kItems);
    ExpectUntouched(faults);
}

TEST_P(AheadTest, ABrokenJournalAndACancelLeaveNothingOfIt) {
    disk_.MakeFolders(BatchWorld::kJournals, 0700);
    disk_.SetOwnerOf(BatchWorld::kJournals, disk_.UserNumber());
    {
        FaultSys faults(disk_);
        faults.AtKind(SysCall::kSync, 3, Fault::Fail(StatusCode::kIo));  // behind the plan's and its name's
        const BatchResult result = Run(faults, Durability::kJournal);
        EXPECT_EQ(result.status.code(), StatusCode::kIo);
        EXPECT_EQ(result.done, 0u);
        EXPECT_GT(faults.CountOf(MakingCall()), kGroup);
        ExpectUntouched(faults);
        UndoHistory history(world_.ServicesOn(disk_));
        (void)history.Recover(world_.List(disk_).front().id, RecoverAction::kUndo, nullptr, nullptr);
        ExpectUntouched(faults);
    }
    CancelToken cancel;
    FaultSys faults(disk_);
    faults.AtKind(SysCall::kSyncVolume, 1, Fault::Hook([&cancel] { cancel.Cancel(); }));
    const BatchResult result = Run(faults, Durability::kContent, &cancel);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(result.done, kGroup) << "what is safe already gets its names";
    EXPECT_EQ(result.notReached, kItems - kGroup);
    EXPECT_EQ(world_.Undo(disk_).done, kGroup);
    ExpectUntouched(faults);
}

}  // namespace
}  // namespace kinsort
