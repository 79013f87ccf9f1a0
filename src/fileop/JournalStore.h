// The folder of journals: which batches there are, making, loading, locking and forgetting them.
#pragma once

#include <string>
#include <vector>

#include "fileop/Batch.h"
#include "fileop/Journal.h"

namespace kinsort {

// A batch as its journal tells it.
struct LoadedBatch {
    ScanVerdict verdict = ScanVerdict::kDamaged;  // kDamaged also when good frames say something senseless
    Batch batch;
    uint64_t validLength = 0;
    uint64_t recordCount = 0;

    bool isTrusted() const { return verdict == ScanVerdict::kWhole || verdict == ScanVerdict::kTorn; }
};

struct NewJournal {
    BatchId id = 0;
    Journal journal;
};

class JournalStore {
  public:
    JournalStore(Sys& sys, std::string storedPath);

    // Makes the folder and those above it when they are missing, with mode 0700. kAccessDenied when it is somebody
    // else's or others may write to it.
    Status Open();

    // A new journal with the next number, locked.
    Result<NewJournal> Create();
    // All numbers, oldest first.
    Result<std::vector<BatchId>> List();
    // Reads a journal; files that are not the user's own and private are refused with kAccessDenied.
    Result<LoadedBatch> Load(BatchId id);
    // Whether the journal ends with the batch being over; a small part of it is read. Of one that is damaged before
    // that part the answer means nothing.
    bool IsEnded(BatchId id);
    // Opens an existing journal and takes its lock: kLocked while some process works on that batch.
    Result<FileHandle> Lock(BatchId id);
    // Makes a locked journal ready for more records: what a crash tore off is cut away for good.
    Result<Journal> Continue(FileHandle locked, const LoadedBatch& loaded);
    // Makes the names of new journals durable.
    Status SyncNames();
    // Removes a journal; the files kept for it must be gone already.
    Status Remove(BatchId id);

    const FileHandle& folder() const { return folder_; }

  private:
    Status MakePath();

    Sys& sys_;
    std::string path_;
    FileHandle folder_;
};

}  // namespace kinsort
