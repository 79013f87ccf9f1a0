// The batches that were carried out, newest first, and what can be done with them: undo, redo, and, for one that was
// torn by a crash, finish or take back. Undo and redo are batches themselves.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fileop/FileOperation.h"

namespace kinsort {

class JournalStore;

enum class BatchState : uint8_t {
    kDone,        // ended, can be undone
    kUndone,      // an undo of it ended, can be redone
    kUnfinished,  // torn: recover it
    kRunning,     // some process is at it right now
    kDamaged,     // its journal does not check out: shown, never acted on
    kForeign,     // written by a later version: shown, never acted on
};

struct BatchSummary {
    BatchId id = 0;
    BatchState state = BatchState::kDone;
    bool isMove = false;  // copy otherwise; of a batch with both: true
    bool cancelled = false;
    bool isUndoTorn = false;  // kUnfinished: it is an undo of the batch that was torn, not the batch itself
    int64_t startedNs = 0;    // wall clock, since 1970 UTC, to be shown only
    uint64_t done = 0;        // items
    uint64_t failed = 0;
    uint64_t skipped = 0;
    uint64_t undone = 0;          // of the items done, those that are taken back at the moment
    std::u16string searchFolder;  // the folder above the target folders, inner form
    std::u16string firstItem;     // name of the first item
    bool canUndo = false;         // something of it stands
    bool canRedo = false;         // something of it was undone and can be done again
};

enum class RecoverAction : uint8_t {
    kFinish,  // do what was planned and not yet done
    kUndo,    // take back what was done
};

class UndoHistory {
  public:
    explicit UndoHistory(FileOperationServices services);

    // All batches that are kept, newest first; undo and redo batches are folded into the batch they belong to.
    Result<std::vector<BatchSummary>> List();
    // Those of them that are unfinished or running. Quick where there is none, however much was sorted: for the start
    // of a program.
    Result<std::vector<BatchSummary>> ListUnfinished();
    // The newest batch that can be undone / redone; 0 when there is none.
    BatchId NewestUndoable();
    BatchId NewestRedoable();

    // Each returns the outcome item by item; `status` holds kLocked while another process works on that batch,
    // kNotFound for an unknown number, kInvalid when the batch is not in a state for it, kCorrupt or kTooNew when its
    // journal cannot be trusted.
    BatchResult Undo(BatchId id, ProgressSink* progress, const CancelToken* cancel);
    BatchResult Redo(BatchId id, ProgressSink* progress, const CancelToken* cancel);
    BatchResult Recover(BatchId id, RecoverAction action, ProgressSink* progress, const CancelToken* cancel);

    // Forgets the oldest batches beyond the newest `keep`, together with the replaced files kept for them.
    Status Prune(size_t keep);

  private:
    // Removes journals that a crash left before their plan was complete: nothing was done by them.
    Status RemoveNeverBegun(JournalStore& store);

    FileOperationServices services_;
};

}  // namespace kinsort
