// Undo and redo: the same steps, the other way round.
#include "cli/BatchReport.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleProgress.h"
#include "cli/Notification.h"

namespace kinsort {
namespace {

// For someone who named no batch and got nowhere with the newest: which one it was, and what comes after it.
void NameTheNext(CliContext& context, UndoHistory& history, BatchId stuck, bool isUndo) {
    const std::string verb = isUndo ? "kinsort undo " : "kinsort redo ";
    std::string text = "nothing more of batch " + std::to_string(stuck) + " can be " +
                       (isUndo ? "taken back" : "done again") + " as things are";
    const Result<std::vector<BatchSummary>> batches = history.List();
    for (size_t i = 0; batches.ok() && i < batches->size(); ++i) {
        const BatchSummary& batch = (*batches)[i];
        if (batch.id == stuck || !(isUndo ? batch.canUndo : batch.canRedo)) continue;
        text += "; the next one would be: " + verb + std::to_string(batch.id);
        break;
    }
    context.console.Say(text);
}

// Fills `report` as far as it gets.
ExitCode RunHistoryStep(CliContext& context, const CommandLine& line, BatchReport& report) {
    std::optional<FileOperationServices> engine = context.EngineServices();
    if (!engine) return ExitCode::kNothing;
    const BatchId unfinished = context.WarnOfUnfinishedBatches(*engine);
    UndoHistory history(*engine);
    const bool isUndo = report.action == BatchAction::kUndo;
    report.journalFolder = engine->journalFolder;
    report.subject = !line.operands.empty() ? line.Batch()
                     : isUndo               ? history.NewestUndoable()
                                            : history.NewestRedoable();
    if (report.subject == 0) {
        context.console.Say(isUndo ? "there is nothing to take back; 'kinsort history' lists the batches"
                                   : "there is nothing to do again; 'kinsort history' lists the batches");
        return ExitCode::kNothing;
    }
    if (line.operands.empty() && unfinished > report.subject) {
        const std::string id = std::to_string(report.subject);
        context.console.Say("batch " + std::to_string(unfinished) +
                            " is newer and not at its end, so nothing was changed; for batch " + id +
                            " all the same: kinsort " + (isUndo ? "undo " : "redo ") + id);
        return ExitCode::kNothing;
    }
    {
        ConsoleProgress progress(context, report.action);
        report.result = isUndo ? history.Undo(report.subject, &progress, &context.cancel)
                               : history.Redo(report.subject, &progress, &context.cancel);
    }
    PrintOrWriteReport(context, line, report);
    if (line.operands.empty() && report.result.done == 0 && report.result.failed > 0) {
        NameTheNext(context, history, report.subject, isUndo);
    }
    return ExitCodeOf(report);
}

ExitCode RunAndNotify(CliContext& context, const CommandLine& line, BatchAction action) {
    BatchReport report;
    report.action = action;
    const ExitCode code = RunHistoryStep(context, line, report);
    if (line.Has(OptionId::kNotify)) NotifyOutcome(context, report);
    return code;
}

}  // namespace

ExitCode RunUndo(CliContext& context, const CommandLine& line) {
    return RunAndNotify(context, line, BatchAction::kUndo);
}

ExitCode RunRedo(CliContext& context, const CommandLine& line) {
    return RunAndNotify(context, line, BatchAction::kRedo);
}

}  // namespace kinsort
