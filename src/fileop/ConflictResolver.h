// Turns a conflict into an answer: by the policy, by an earlier "for all", or by asking.
#pragma once

#include <optional>

#include "fileop/Conflict.h"

namespace kinsort {

class ConflictResolver {
  public:
    // `asker` may be null: then what would be asked is skipped.
    ConflictResolver(ConflictAnswer policy, AskUserAction* asker) : policy_(policy), asker_(asker) {}

    // Never kAsk. Where replacing would lose something, a policy of replacing keeps both instead. A merge is asked for
    // and remembered apart from the replacing of files.
    ConflictAnswer Resolve(const Conflict& conflict);
    // Whether files that meet are to be kept both, as far as that is known without a question.
    bool KeepsBothFiles() const { return forAllFiles_.value_or(policy_) == ConflictAnswer::kKeepBoth; }
    FailureAnswer ResolveFailure(const std::u16string& path, const Status& why) {
        return asker_ != nullptr ? asker_->AskFailure(path, why) : FailureAnswer::kSkip;
    }

  private:
    ConflictAnswer policy_;
    AskUserAction* asker_;
    std::optional<ConflictAnswer> forAllFiles_;
    std::optional<ConflictAnswer> forAllMerges_;
};

inline ConflictAnswer ConflictResolver::Resolve(const Conflict& conflict) {
    std::optional<ConflictAnswer>& remembered = conflict.isMerge ? forAllMerges_ : forAllFiles_;
    ConflictAnswer answer = remembered.value_or(policy_);
    if (answer == ConflictAnswer::kAsk) {
        if (asker_ == nullptr) return ConflictAnswer::kSkip;
        const ConflictReply reply = asker_->AskConflict(conflict);
        answer = reply.answer == ConflictAnswer::kAsk ? ConflictAnswer::kSkip : reply.answer;
        if (reply.scope == AnswerScope::kAllInBatch) remembered = answer;
    }
    if (answer == ConflictAnswer::kReplace && !conflict.canReplace) return ConflictAnswer::kKeepBoth;
    return answer;
}

}  // namespace kinsort
