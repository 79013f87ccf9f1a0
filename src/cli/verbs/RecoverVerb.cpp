#include <algorithm>

#include "cli/BatchReport.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleAsker.h"
#include "cli/ConsoleProgress.h"
#include "cli/ShownText.h"
#include "text/Amounts.h"

namespace kinsort {
namespace {

enum class Choice : uint8_t { kFinish, kUndo, kLeave };

Choice AskChoice(CliContext& context, const BatchSummary& batch) {
    const std::string what = "atch " + std::to_string(batch.id) + " of " + FormatLocalTime(batch.startedNs) + " (" +
                             (batch.isMove ? "move" : "copy") + " into " + context.ShownPath(batch.searchFolder) +
                             ") was interrupted";
    const std::string question =
        batch.isUndoTorn
            ? "Taking back b" + what + ".\n[f]inish taking it back, [u]ndo that so that the batch stands, [l]eave: "
            : "B" + what + " after " + Counted(batch.done, "item") + ".\n[f]inish, [u]ndo, [l]eave: ";
    switch (context.console.AskLetter(question, "f|u|l")) {
        case 'f':
            return Choice::kFinish;
        case 'u':
            return Choice::kUndo;
        default:
            return Choice::kLeave;
    }
}

Choice ChoiceFor(CliContext& context, const CommandLine& line, const BatchSummary& batch) {
    if (line.Has(OptionId::kFinish)) return Choice::kFinish;
    if (line.Has(OptionId::kUndo)) return Choice::kUndo;
    if (line.Has(OptionId::kLeave)) return Choice::kLeave;
    return context.console.CanAsk() ? AskChoice(context, batch) : Choice::kFinish;
}

// The batches that are to be looked at. One that another process is at is named and left out.
std::vector<BatchSummary> FindTorn(CliContext& context, const CommandLine& line,
                                   const std::vector<BatchSummary>& batches) {
    std::vector<BatchSummary> torn;
    for (const BatchSummary& batch : batches) {
        if (!line.operands.empty() && batch.id != line.Batch()) continue;
        if (batch.state == BatchState::kUnfinished) torn.push_back(batch);
        if (batch.state == BatchState::kRunning) {
            context.console.Say("batch " + std::to_string(batch.id) +
                                ": another process is working on it; wait until that is done");
        }
    }
    return torn;
}

// Also a batch that was interrupted before its first item: there is nothing to do, and that is done.
bool IsSettled(const BatchResult& result) {
    return result.status.ok() && !result.cancelled && result.failed + result.notReached + result.skipped == 0;
}

}  // namespace

ExitCode RunRecover(CliContext& context, const CommandLine& line) {
    std::optional<FileOperationServices> engine = context.EngineServices();
    if (!engine) return ExitCode::kNothing;
    UndoHistory history(*engine);
    const Result<std::vector<BatchSummary>> batches = history.List();
    if (!batches.ok()) {
        context.console.Say(ShownText(engine->journalFolder) + ": " + StatusText(batches.status()));
        return ExitCode::kNothing;
    }
    const std::vector<BatchSummary> torn = FindTorn(context, line, *batches);
    if (torn.empty()) {
        context.console.Say(line.operands.empty() ? "there is nothing to recover"
                                                  : "batch " + line.operands[0] +
                                                        " is not one that can be recovered; "
                                                        "'kinsort history' lists the batches");
    }
    JsonWriter json(context.console);
    const bool asJson = line.Has(OptionId::kJson);
    if (asJson) json.BeginArray();
    ExitCode code = ExitCode::kNothing;
    // Newest first: what a later batch did stands on what an earlier one did.
    for (const BatchSummary& batch : torn) {
        if (context.cancel.isCancelled()) break;
        const Choice choice = ChoiceFor(context, line, batch);
        if (choice == Choice::kLeave) continue;
        BatchReport report;
        report.action = choice == Choice::kFinish ? BatchAction::kFinish : BatchAction::kUndo;
        report.subject = batch.id;
        report.journalFolder = engine->journalFolder;
        {
            ConsoleProgress progress(context, report.action);
            report.result =
                history.Recover(batch.id, choice == Choice::kFinish ? RecoverAction::kFinish : RecoverAction::kUndo,
                                &progress, &context.cancel);
        }
        if (asJson) {
            WriteReport(json, context, report);
        } else {
            PrintReport(context, report);
        }
        const ExitCode now = IsSettled(report.result) ? ExitCode::kDone : ExitCodeOf(report);
        code = code == ExitCode::kNothing || now == ExitCode::kPartly ? now : code;
    }
    if (asJson) {
        json.EndArray();
        json.Finish();
    }
    return code;
}

}  // namespace kinsort
