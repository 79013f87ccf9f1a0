// The words of a batch: progress, questions, outcome, each in the user's language, by number from the message file.
// Paths are shown as people know them. For the thread of the messages.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/OperationView.h"
#include "fileop/FileOperation.h"
#include "fileop/Progress.h"
#include "fileop/UndoHistory.h"
#include "framework/Messages.h"
#include "platform/PathCodec.h"

namespace kinsort {

enum class OperationKind : uint8_t { kCopy, kMove, kUndo, kRedo };

class OperationTexts {
  public:
    // Both outlive it.
    OperationTexts(Messages& messages, const PathCodec& codec) : messages_(messages), codec_(codec) {}

    ProgressTexts Progress(OperationKind kind, const ProgressState& state, bool isStopping);

    ConflictQuestion Ask(const Conflict& conflict);
    // Buttons: retry, skip, stop.
    ButtonQuestion AskFailure(std::u16string_view path, const Status& why);
    // Buttons: finish, take back, leave.
    ButtonQuestion AskRecovery(const BatchSummary& batch);

    // The items that are not plainly done, and what is to be said of the batch as a whole. The first of two buttons
    // undoes, the last one closes.
    OperationSummary Summarize(OperationKind kind, const BatchResult& result, bool canUndo);
    // `folder`: the one that the items were sorted into.
    UndoOffer Offer(OperationKind kind, const BatchResult& result, std::u16string_view folder);
    // One sentence in a window with a button to close it.
    OperationSummary SayOnly(uint16_t number);

    std::u16string StatusText(const Status& status);
    // Why an item was not done.
    std::u16string ReasonText(const ItemReport& report);

  private:
    std::u16string Text(uint16_t number) { return messages_.GetMessageText(number); }
    std::u16string Counted(uint16_t number, uint64_t count);
    std::u16string Shown(std::u16string_view path) const;
    std::u16string TimeLeft(double seconds);
    std::u16string Figures(const ProgressState& state);
    ConflictSideTexts Side(uint16_t heading, const ConflictSide& side);
    std::vector<std::u16string> Notes(const BatchResult& result);

    Messages& messages_;
    const PathCodec& codec_;
};

}  // namespace kinsort
