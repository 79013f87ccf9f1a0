// A sort with all its undos and redos: which of its steps stand at the moment, and the batch that would turn them back.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "fileop/Batch.h"
#include "fileop/JournalStore.h"

namespace kinsort {

class BatchChain {
  public:
    // `batches`: at least one, oldest first.
    explicit BatchChain(std::vector<LoadedBatch> batches) : batches_(std::move(batches)) {}
    // Loads the sort `root` and everything that was done to it later. kNotFound when there is no such sort.
    static Result<BatchChain> Load(JournalStore& store, BatchId root, const std::string& bootId);

    // Oldest first; the sort itself is the front.
    const std::vector<LoadedBatch>& batches() const { return batches_; }
    const Batch& sort() const { return batches_.front().batch; }
    // The sort, or the newest redo of it.
    const Batch& newestForward() const;

    // kCorrupt or kTooNew when one of the journals cannot be trusted.
    Status CheckTrust() const;
    // The batch that was planned and did not end, null when there is none.
    const LoadedBatch* Unfinished() const;

    // How many of the steps that can be taken back stand: done by the sort or a redo and not undone since, or undone
    // and not redone since.
    size_t CountStanding(BatchKind by) const;
    // How many items an undo has taken back and no redo has done again.
    size_t CountUndoneItems() const;

    // The batch with this header that takes back what stands: for an undo what the sort and redos did, for a redo what
    // undos did. Not yet planned; without steps when nothing stands.
    Batch Invert(const BatchHeader& header) const;

  private:
    std::vector<std::vector<bool>> FindStanding() const;

    std::vector<LoadedBatch> batches_;
};

// Removes the files that were kept for a batch and the folders they were kept in. Best effort: a volume that is not
// there keeps what it has.
void RemoveKeptFiles(Sys& sys, Batch batch);

// Removes the files that were kept for a chain, then its journals, the newest first, so that a crash in between leaves
// a chain that can still be read. The caller holds the chain's lock.
Status ForgetChain(Sys& sys, JournalStore& store, const BatchChain& chain);

// Pins the folders that a batch has made, as its done steps tell, and marks folders known from an earlier boot.
void PinMadeFolders(Batch& batch, const std::string& bootId);

}  // namespace kinsort
