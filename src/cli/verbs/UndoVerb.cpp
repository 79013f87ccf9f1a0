// Undo and redo: the same steps, the other way round.
#include "cli/BatchReport.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleProgress.h"

namespace kinsort {
namespace {

ExitCode RunHistoryStep(CliContext& context, const CommandLine& line, BatchAction action) {
    std::optional<FileOperationServices> engine = context.EngineServices();
    if (!engine) return ExitCode::kNothing;
    context.WarnOfUnfinishedBatches(*engine);
    UndoHistory history(*engine);
    const bool isUndo = action == BatchAction::kUndo;
    BatchReport report;
    report.action = action;
    report.subject = !line.operands.empty() ? line.Batch()
                     : isUndo               ? history.NewestUndoable()
                                            : history.NewestRedoable();
    if (report.subject == 0) {
        context.console.Say(isUndo ? "there is nothing to take back; 'kinsort history' lists the batches"
                                   : "there is nothing to do again; 'kinsort history' lists the batches");
        return ExitCode::kNothing;
    }
    {
        ConsoleProgress progress(context, action);
        report.result = isUndo ? history.Undo(report.subject, &progress, &context.cancel)
                               : history.Redo(report.subject, &progress, &context.cancel);
    }
    PrintOrWriteReport(context, line, report);
    return ExitCodeOf(report);
}

}  // namespace

ExitCode RunUndo(CliContext& context, const CommandLine& line) {
    return RunHistoryStep(context, line, BatchAction::kUndo);
}

ExitCode RunRedo(CliContext& context, const CommandLine& line) {
    return RunHistoryStep(context, line, BatchAction::kRedo);
}

}  // namespace kinsort
