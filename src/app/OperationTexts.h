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

    // With an undo button when there is something to take back.
    OperationSummary Summarize(OperationKind kind, const BatchResult& result);
    UndoOffer Offer(OperationKind kind, const BatchResult& result);
    // That there is no place for the undo journal, so that nothing is begun.
    ButtonQuestion SayNoJournal();

    std::u16string StatusText(const Status& status);
    // Why an item was not done, or what is to be said of it.
    std::u16string ReasonText(const ItemReport& report);

  private:
    std::u16string Shown(std::u16string_view path) const;
    std::u16string TimeLeft(double seconds);
    ConflictSideTexts Side(uint16_t heading, const ConflictSide& side);
    std::u16string BatchStatusText(const Status& status);

    Messages& messages_;
    const PathCodec& codec_;
};

}  // namespace kinsort
