// The life of one batch from its finished plan to its end: the plan is stored, the steps are run, the end is stored.
// Sorting, undoing, redoing and finishing a torn batch all go through here.
#pragma once

#include <optional>

#include "fileop/Batch.h"
#include "fileop/BatchPlanner.h"
#include "fileop/ConflictResolver.h"
#include "fileop/FolderTable.h"
#include "fileop/JournalStore.h"
#include "fileop/ProgressMeter.h"
#include "fileop/StepRunner.h"

namespace kinsort {

class BatchSession {
  public:
    BatchSession(const FileOperationServices& services, JournalStore& store, Batch& batch, FolderTable& folders,
                 Journal& journal, ProgressMeter& meter);

    // Makes the whole plan durable. Nothing was changed anywhere before, and on failure nothing is.
    Status StorePlan();
    // Runs the pending steps and stores the end. `planner` and `resolver` may be null.
    Status Run(BatchPlanner* planner, ConflictResolver* resolver, const CancelToken& cancel, unsigned threads);
    bool lostAttributes() const { return lostAttributes_; }

  private:
    void NoteFolderTimes();
    void RemoveEmptyKeepFolders();
    Status SyncTargets();

    const FileOperationServices& services_;
    JournalStore& store_;
    Batch& batch_;
    FolderTable& folders_;
    Journal& journal_;
    ProgressMeter& meter_;
    bool lostAttributes_ = false;
};

// Counts the outcome of every item of `batch` into `result` and lists what was not plainly done. `planner` is null
// where no item can have been refused while planning.
void SummarizeItems(const Batch& batch, const PathCodec& codec, const BatchPlanner* planner, BatchResult& result);

}  // namespace kinsort
