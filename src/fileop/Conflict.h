// Questions that a batch asks while it is planned or carried out. They go through an interface so that a dialog, a
// terminal and a test can each answer; none is asked while a lock is held.
#pragma once

#include <cstdint>
#include <string>

#include "platform/Status.h"
#include "platform/Sys.h"

namespace kinsort {

enum class ConflictAnswer : uint8_t {
    kAsk,       // in a policy: ask each time; never an answer
    kSkip,      // leave both where they are
    kReplace,   // the item takes the place; what was there is kept for undo. Of two folders: merge
    kKeepBoth,  // the item gets a free name, "name (2).ext"
    kCancel,    // stop the batch
};

// What an answer counts for.
enum class AnswerScope : uint8_t { kThisOne, kAllInBatch };

struct ConflictSide {
    std::u16string path;  // inner form
    FileKind kind = FileKind::kOther;
    uint64_t size = 0;       // bytes
    int64_t modifiedNs = 0;  // since 1970 UTC
};

struct Conflict {
    ConflictSide item;       // what is to be placed
    ConflictSide target;     // what stands there; for two items of one batch that meet, the earlier one
    bool canReplace = true;  // false where replacing would lose something: folder against file, two items of one batch
    bool isMerge = false;    // both are folders: "replace" means that the contents are merged
};

struct ConflictReply {
    ConflictAnswer answer = ConflictAnswer::kSkip;
    AnswerScope scope = AnswerScope::kThisOne;
};

enum class FailureAnswer : uint8_t { kSkip, kRetry, kCancel };

class AskUserAction {
  public:
    virtual ~AskUserAction() = default;

    virtual ConflictReply AskConflict(const Conflict& conflict) = 0;
    // Asked only for failures that the user can do something about while the batch waits: no space, quota.
    virtual FailureAnswer AskFailure(const std::u16string& path, const Status& why) {
        (void)path;
        (void)why;
        return FailureAnswer::kSkip;
    }
};

}  // namespace kinsort
