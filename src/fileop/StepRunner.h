// Works off the pending steps of a batch in groups: contents are made, made durable together, written down in the
// journal, and only then named. After a crash at any point the journal tells of every step what can have happened.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

#include "fileop/Batch.h"
#include "fileop/BatchPlanner.h"
#include "fileop/ConflictResolver.h"
#include "fileop/FolderTable.h"
#include "fileop/Journal.h"
#include "fileop/ProgressMeter.h"
#include "fileop/StepActor.h"

namespace kinsort {

struct RunnerSettings {
    unsigned threads = OperationPolicy().threads;
    size_t groupSize = 4000;                  // steps that become durable and visible together,
    uint64_t groupBytes = uint64_t{1} << 30;  // and the bytes that they make, about
};

class StepRunner {
  public:
    // `planner` and `resolver` are null for an undo, a redo or a recovery: what is unforeseen then fails its step.
    StepRunner(const FileOperationServices& services, Batch& batch, FolderTable& folders, Journal& journal,
               BatchPlanner* planner, ConflictResolver* resolver, ProgressMeter& meter, const CancelToken& cancel,
               RunnerSettings settings);

    // Runs every pending step. A failure is the journal's or the disk's as a whole; steps fail in their states.
    Status Run();
    bool wasCancelled() const { return isCancelled_ || cancel_.isCancelled(); }
    bool lostAttributes() const { return actor_.lostAttributes(); }

  private:
    struct Slot {
        uint32_t index = 0;
        PreparedContent content;
        StepResult result;
        bool isCounted = false;  // in the progress that people see
        bool isSettled = false;  // nothing further is to be done in this group
    };
    using Group = std::vector<Slot>;

    Group TakeGroup();
    Group TakeNextPlanned();
    Group TakeOwed();
    // Adds the step when it is pending; returns whether it is.
    bool TakePending(uint32_t index, Group& group) const;
    Status RunGroup(Group& group);
    void MakeFolders(Group& group);
    void PrepareAll(Group& group);
    // What the next group can have ready while the disk is busy with this one, that is until `isSafe`.
    void PrepareAhead(const std::atomic<bool>& isSafe);
    // Gives back what that holds open; the steps stay pending.
    void DropAhead();
    // The same, and holds nothing open for a later group from now on.
    void StopPreparingAhead();
    void AskAboutFullVolume(Group& group);
    void DropWhenCancelled(Group& group);
    void SyncContents(Group& group, bool onlyTransfers);
    void SyncVolumeOf(uint32_t folder, const std::vector<Slot*>& slots);
    Status RecordPrepared(const Group& group);
    // Both of the above; meanwhile the next group is prepared.
    Status MakeSafe(Group& group);
    void PublishAll(Group& group);
    Status FinishTransfers(Group& group);
    void FinishFolders(Group& group);
    Status RecordOutcome(Group& group);
    void Settle(Slot& slot);
    void Count(Slot& slot);
    // Decides what becomes of a step that did not work out.
    void SettleFailure(Slot& slot);
    // Whether descriptors or room have run out.
    static bool RanShort(const Group& group);
    static bool HoldsOpen(const Group& group);
    // Writes a changed or new step, with folders that only it uses, into the journal.
    void Rejournal(uint32_t index);
    bool TryWithFewerOpen(Slot& slot);
    bool TryReplan(Slot& slot);
    void ForEach(Group& group, const std::function<void(Slot&)>& work);
    void Tick(const Group& group);
    std::u16string NameOf(uint32_t index) const;

    const FileOperationServices& services_;
    Batch& batch_;
    FolderTable& folders_;
    Journal& journal_;
    BatchPlanner* planner_;
    ConflictResolver* resolver_;
    ProgressMeter& meter_;
    const CancelToken& cancel_;
    const RunnerSettings settings_;
    StepActor actor_;
    size_t journaledFolders_;
    const size_t plannedSteps_;         // before anything had to be planned anew
    uint32_t next_ = 0;                 // first step that was in no group yet
    Group ahead_;                       // the group after the one that is run; what it has prepared has no name yet
    bool isAheadDoubtful_ = false;      // a failed sync may have been about what that has written
    bool preparesAhead_;                // not with one thread, and not once descriptors have run out
    std::deque<uint32_t> again_;        // steps that are to be tried once more
    std::vector<uint32_t> finishLast_;  // ends of folders that still get something
    bool mustSyncJournal_ = false;      // the plan was changed since the last sync
    bool isPreparedDurable_ = false;    // the last group's identities of prepared contents
    bool isCancelled_ = false;
    std::unordered_map<uint32_t, uint32_t> replans_;  // how often each step was planned anew
};

}  // namespace kinsort
