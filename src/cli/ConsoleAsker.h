// Questions of a batch, asked on the terminal.
#pragma once

#include <string>
#include <string_view>

#include "cli/CliContext.h"
#include "cli/ConsoleProgress.h"
#include "fileop/Conflict.h"

namespace kinsort {

// Reads an answer to a conflict, no blanks around it: r, s, k or c, or the whole word; a capital letter, or "all" or
// "a" behind it, makes it count for the rest of the batch. False when it is none of these, or when it says replace and
// `canReplace` is false.
bool ReadConflictReply(std::string_view typed, bool canReplace, ConflictReply& reply);

class ConsoleAsker : public AskUserAction {
  public:
    ConsoleAsker(CliContext& context, ConsoleProgress& progress) : context_(context), progress_(progress) {}

    // Without a terminal the answer is to skip. Ctrl-C and the end of input cancel.
    ConflictReply AskConflict(const Conflict& conflict) override;
    FailureAnswer AskFailure(const std::u16string& path, const Status& why) override;

    // How many conflicts were skipped because nobody could be asked.
    uint64_t unanswered() const { return unanswered_; }

  private:
    std::string DescribeSide(std::string_view label, const ConflictSide& side) const;

    CliContext& context_;
    ConsoleProgress& progress_;
    uint64_t unanswered_ = 0;
};

}  // namespace kinsort
