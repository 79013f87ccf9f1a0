// A batch in memory: the folders it touches, the items that were queued, the steps that carry them out, and how far
// each step has come. The planner fills it, the journal stores it, the runner works it off, recovery reads it back.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "fileop/FileOperation.h"
#include "fileop/SharedName.h"
#include "platform/Status.h"
#include "platform/Sys.h"

namespace kinsort {

constexpr uint32_t kNoIndex = 0xFFFFFFFF;

// What tells one file from another and shows whether it was touched. The volume is that of the folder it lies in.
struct FileIdentity {
    uint64_t inode = 0;  // 0: not known (yet)
    int64_t createdNs = 0;
    uint64_t size = 0;
    int64_t modifiedNs = 0;
    FileKind kind = FileKind::kOther;

    static FileIdentity Of(const FileInfo& info) {
        return {info.inode, info.createdNs, info.size, info.modifiedNs, info.kind};
    }
    bool IsSameFile(const FileInfo& info) const {
        return inode != 0 && inode == info.inode && createdNs == info.createdNs && kind == info.kind;
    }
    // The same file with the same content, as far as its size and time tell. Of a folder only the identity counts.
    bool IsUnchanged(const FileInfo& info) const {
        return IsSameFile(info) && (kind == FileKind::kFolder || (size == info.size && modifiedNs == info.modifiedNs));
    }
};

// A folder that steps refer to by its index: either one with a path of its own, resolved once, or a sub-folder of
// another one. `inode` is 0 for a folder that a step has yet to make.
struct FolderRecord {
    uint32_t parent = kNoIndex;
    std::string name;  // stored path for one without a parent, else stored name
    uint64_t device = 0;
    uint64_t volumeId = 0;
    uint64_t inode = 0;
    int64_t createdNs = 0;
    int64_t modifiedNs = 0;       // before the batch
    int64_t modifiedAfterNs = 0;  // when the batch ended; 0 when that was not noted
    bool isKeep = false;          // holds replaced files; made when first needed
    bool isOtherBoot = false;     // not stored: `device` is of an earlier boot and says nothing today
};

// A name in one of the batch's folders.
struct Place {
    uint32_t folder = kNoIndex;
    SharedName name;
};

enum class StepKind : uint8_t {
    kMove = 1,         // source becomes target, a rename inside one volume
    kMoveReplace,      // the same; what stood at target goes to kept
    kCopy,             // target becomes a copy of source
    kCopyReplace,      //
    kTransfer,         // a move between volumes: copied, made durable, then source removed
    kTransferReplace,  //
    kMakeFolder,       // target is made
    kFinishFolder,     // target gets its mode and time, its contents being complete
    kRemoveFolder,     // target is removed if it is empty
    kOpenFolder,       // target, a folder, is opened to its owner again, so that it can be emptied
    kRemoveCopy,       // target is removed, after making sure that source holds the same content
};

constexpr bool IsReplace(StepKind kind) {
    return kind == StepKind::kMoveReplace || kind == StepKind::kCopyReplace || kind == StepKind::kTransferReplace;
}
constexpr bool IsTransfer(StepKind kind) {
    return kind == StepKind::kTransfer || kind == StepKind::kTransferReplace;
}
constexpr bool IsCopy(StepKind kind) {
    return kind == StepKind::kCopy || kind == StepKind::kCopyReplace;
}
constexpr bool IsMove(StepKind kind) {
    return kind == StepKind::kMove || kind == StepKind::kMoveReplace;
}
constexpr bool MakesContent(StepKind kind) {
    return IsCopy(kind) || IsTransfer(kind);
}
constexpr bool IsFolderStep(StepKind kind) {
    return kind == StepKind::kMakeFolder || kind == StepKind::kFinishFolder || kind == StepKind::kRemoveFolder ||
           kind == StepKind::kOpenFolder;
}

struct Step {
    StepKind kind = StepKind::kMove;
    bool isHardLink = false;         // kCopy: another name for the same file; kRemoveCopy: of one
    bool dependsOnPrevious = false;  // only when the step before it was done
    uint32_t item = 0;               // index in Batch::items
    Place source;
    Place target;
    uint32_t mode = 0;               // kMakeFolder, kFinishFolder, kRemoveFolder: of the folder
    uint32_t keptFolder = kNoIndex;  // for a replacing step; the kept name is KeptName(step index)
    FileIdentity sourceId;           // what was planned for; kRemoveCopy: unused
    FileIdentity targetId;           // what is replaced or, kRemoveCopy, removed
    BatchId invertsBatch = 0;        // in an undo: the step that is taken back
    uint32_t invertsStep = kNoIndex;
};

enum class StepProgress : uint8_t {
    kPending,
    kPrepared,  // content complete but without a name; `made` is its identity
    kCopied,    // transfer: target is complete and durable, source not yet removed
    kDone,
    kFailed,
    kSkipped,
};

struct StepState {
    StepProgress progress = StepProgress::kPending;
    FileIdentity made;  // what stands at target now
    ItemReason reason = ItemReason::kNone;
    Status status;
};

struct BatchItem {
    Place source;
    uint32_t destination = kNoIndex;  // folder index
    bool isMove = false;
};

enum class BatchKind : uint8_t { kSort = 1, kUndo, kRedo };

struct BatchHeader {
    BatchKind kind = BatchKind::kSort;
    BatchId id = 0;
    BatchId root = 0;  // the sort that this batch belongs to; its own id for a sort
    Durability durability = Durability::kContent;
    bool keepForUndo = true;
    int64_t startedNs = 0;
    uint32_t user = 0;
    std::string bootId;
};

struct Batch {
    BatchHeader header;
    std::vector<FolderRecord> folders;
    std::vector<BatchItem> items;
    std::vector<Step> steps;
    std::vector<StepState> states;  // as long as steps
    bool isPlanned = false;         // the plan is complete
    bool isEnded = false;
    bool isCancelled = false;
};

// The name under which a replacing step keeps the old file, in its kept folder.
std::string KeptName(size_t stepIndex);
// The name a copy grows under where a volume has no nameless files.
std::string TemporaryName(BatchId id, size_t stepIndex);
// "0000000000000012.batch": a batch's journal in the journal folder.
std::string JournalName(BatchId id);
// "0000000000000012-000003e8-17d0c5e2a4b1f000.kept": a batch's folder for replaced files. User and time keep it apart
// from those of other users and of forgotten batches in the same place.
std::string KeptFolderName(const BatchHeader& header);
// The number in a journal's name; 0 for any other name.
BatchId IdOfJournalName(std::string_view name);

// The stored path of a folder of the batch.
std::string StoredPathOf(const std::vector<FolderRecord>& folders, uint32_t index);
// The path of a place as the rest of the system speaks of it.
std::u16string InnerPathOf(const PathCodec& codec, const std::vector<FolderRecord>& folders, const Place& place);

}  // namespace kinsort
