// What the program says about failures and outcomes, in one place: what happened and what to do about it.
#pragma once

#include <string>
#include <string_view>

#include "fileop/FileOperation.h"
#include "fileop/UndoHistory.h"
#include "platform/Status.h"

namespace kinsort {

// What a batch does, for the words around its outcome.
enum class BatchAction : uint8_t { kCopy, kMove, kUndo, kRedo, kFinish };

// "no space left on the volume; free some and try again"; the system's own text where ours has nothing to add.
std::string StatusText(const Status& status);
// Why a batch could not be undone, redone or recovered as a whole, as StatusText.
std::string BatchStatusText(const Status& status);
// Why an item was not done, as StatusText.
std::string ReasonText(const ItemReport& report);
// What a batch could not keep.
std::string_view WarningText(BatchWarning warning);

// Stable keywords for programs: "no-space", "source-gone", "done", "unfinished", "move".
std::string_view StatusKeyword(StatusCode code);
std::string_view ReasonKeyword(const ItemReport& report);
std::string_view OutcomeKeyword(ItemOutcome outcome);
std::string_view StateKeyword(BatchState state);
std::string_view ActionKeyword(BatchAction action);

// "not moved", "skipped", "not reached"
std::string OutcomeText(ItemOutcome outcome, BatchAction action);
// "Moved 12 items", "Took back 1 item"
std::string DoneText(BatchAction action, uint64_t count);
// "1 item", "12 items"
std::string Counted(uint64_t count, std::string_view thing);

// ShownText of each line, the line ends kept.
std::string ShownLines(std::string_view text);

}  // namespace kinsort
