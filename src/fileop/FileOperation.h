// One batch of copies and moves, carried out so that no file can be lost and everything can be undone.
//
//   FileOperation operation(services);
//   operation.SetPolicy({.conflicts = ConflictAnswer::kSkip});
//   operation.MoveItems(uR"(Z:\home\me\a.txt)", uR"(Z:\home\me\Sorted\A)");
//   BatchResult result = operation.PerformOperations(asker, progress, cancel);
//
// What holds whatever happens, a kill or a power cut included: each item is wholly done or wholly not done; a name
// shows a complete file or nothing; a replaced file is kept until its batch is forgotten; what was begun is written in
// a journal that finds every file again (docs/journal-format.md).
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

#include "fileop/Conflict.h"
#include "fileop/Progress.h"
#include "platform/Clock.h"
#include "platform/PathCodec.h"
#include "platform/Status.h"
#include "platform/Sys.h"

namespace kinsort {

// What the engine needs from outside; all references outlive it.
struct FileOperationServices {
    Sys& sys;
    const PathCodec& codec;
    Clock& clock;
    std::string journalFolder;  // stored path; made with mode 0700 when missing
};

enum class Durability : uint8_t {
    kJournal,  // the journal survives a power cut; copied content is as safe as the system's own writeback makes it
    kContent,  // copied content too, before its name appears
};

struct OperationPolicy {
    ConflictAnswer conflicts = ConflictAnswer::kAsk;
    Durability durability = Durability::kContent;
    unsigned threads = 3;  // that copy at the same time: one more than two processors can use, they wait for the disk
};

// Bits of SetOperationFlags; the platform's own values.
constexpr uint32_t kFofNoConfirmation = 0x10;  // conflicts are answered "replace" without asking
constexpr uint32_t kFofAllowUndo = 0x40;       // the batch is kept in the undo history
constexpr uint32_t kFofNoCopySecurityAttribs =
    0x800;                                            // owner and access lists stay those of the target; always so here
constexpr uint32_t kFofNoConnectedElements = 0x2000;  // nothing moves along with an item; always so here

using BatchId = uint64_t;  // grows with every batch; 0 is none

enum class ItemOutcome : uint8_t { kDone, kSkipped, kFailed, kNotReached };

// Why an item was not done, for the one place that words it (the Status beside it says what the system said).
enum class ItemReason : uint8_t {
    kNone,
    kSystem,               // the system call failed; see the status
    kSourceGone,           // vanished since it was chosen
    kSourceChanged,        // changed while it was being copied
    kSameFile,             // source and target are the same file
    kIntoItself,           // the target lies inside the item
    kDuplicate,            // the same item twice in the batch
    kConflictSkipped,      // the answer to a conflict
    kTargetFolderChanged,  // the target folder is no longer the one that was chosen
    kTargetTaken,          // something took the place meanwhile
    kSpecialFile,          // a pipe, socket or device cannot be copied
    kFileChangedSince,     // undo: edited since the batch
    kLastCopy,             // undo: removing it would lose the only copy
    kNotThereAnyMore,      // undo: the file was moved or removed since
    kCancelled,
};

struct ItemReport {
    size_t item = 0;        // index in the order of queueing; for undo, in the order of the batch
    std::u16string source;  // inner form
    std::u16string target;  // inner form, with the final name; empty when it never had one
    ItemOutcome outcome = ItemOutcome::kNotReached;
    ItemReason reason = ItemReason::kNone;
    Status status;
};

// What a batch could not keep although it was done.
enum class BatchWarning : uint8_t {
    kAttributesLost,  // user attributes: a target volume does not hold them
};

struct BatchResult {
    BatchId id = 0;     // 0 when nothing was begun
    uint64_t done = 0;  // items, as queued
    uint64_t skipped = 0;
    uint64_t failed = 0;
    uint64_t notReached = 0;  // after a cancel or when the journal failed
    bool cancelled = false;
    Status status;                    // why the batch as a whole could not run or had to stop (the journal, above all)
    std::vector<ItemReport> reports;  // every item that is not plainly done, in order
    std::vector<BatchWarning> warnings;  // once each
    uint64_t journalSyncs = 0;           // how often the journal was made durable
};

// One queued item: paths in the inner form, the destination an existing folder.
struct ItemRequest {
    std::u16string source;
    std::u16string destination;
    bool isMove = false;
};

// The same as it waits: many items have one destination, which somebody else holds.
struct QueuedItem {
    std::u16string source;
    const std::u16string* destination;
    bool isMove;
};

// Not thread-safe: one thread queues and performs; cancel may come from any.
class FileOperation {
  public:
    explicit FileOperation(FileOperationServices services);
    ~FileOperation();
    FileOperation(const FileOperation&) = delete;  // what is queued points into it
    FileOperation& operator=(const FileOperation&) = delete;

    // Queues one item for an existing folder, in which it keeps its own name. Paths in the inner form. Nothing is
    // looked at before PerformOperations.
    void CopyItems(std::u16string sourcePath, std::u16string destinationFolder);
    void MoveItems(std::u16string sourcePath, std::u16string destinationFolder);

    void SetPolicy(const OperationPolicy& policy);
    // `flags`: kFof... bits. Without kFofNoConfirmation conflicts follow the policy. Default: 0x2840.
    void SetOperationFlags(uint32_t flags);

    // Runs everything that was queued as one batch and returns when it is over. `asker` and `progress` may be null:
    // then a conflict that would be asked is skipped. May be called once.
    BatchResult PerformOperations(AskUserAction* asker, ProgressSink* progress, const CancelToken* cancel);

  private:
    void Queue(std::u16string sourcePath, std::u16string destinationFolder, bool isMove);

    FileOperationServices services_;
    OperationPolicy policy_;
    uint32_t flags_ = kFofAllowUndo | kFofNoCopySecurityAttribs | kFofNoConnectedElements;
    std::deque<std::u16string> destinations_;  // those of neighbours stand once
    std::vector<QueuedItem> queue_;
};

}  // namespace kinsort
