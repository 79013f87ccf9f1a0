// The outcome of a batch, told to people or to programs.
#pragma once

#include <string>
#include <vector>

#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/ItemList.h"
#include "cli/JsonWriter.h"
#include "cli/Texts.h"

namespace kinsort {

struct BatchReport {
    BatchAction action = BatchAction::kMove;
    BatchResult result;
    BatchId subject = 0;                           // of an undo or redo: the batch it is about
    std::vector<std::u16string> withoutCandidate;  // items, inner form
    std::vector<MissingItem> missing;              // items that did not exist; said already
    std::string journalFolder;                     // stored path of the undo journal
    uint64_t unanswered = 0;                       // conflicts skipped because nobody could be asked
};

// Failures go to standard error one by one, the summary and the items left behind to standard output.
void PrintReport(CliContext& context, const BatchReport& report);
void WriteReport(JsonWriter& json, const CliContext& context, const BatchReport& report);

// Either of the two, as --json says.
void PrintOrWriteReport(CliContext& context, const CommandLine& line, const BatchReport& report);

ExitCode ExitCodeOf(const BatchReport& report);

}  // namespace kinsort
