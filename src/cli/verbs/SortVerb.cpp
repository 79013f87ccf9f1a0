#include "cli/BatchReport.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleAsker.h"
#include "cli/ConsoleProgress.h"
#include "cli/SortingPlan.h"

namespace kinsort {
namespace {

OperationPolicy PolicyOf(const CommandLine& line) {
    OperationPolicy policy;
    const std::string conflicts = line.Value(OptionId::kOnConflict, "ask");
    policy.conflicts = conflicts == "skip"        ? ConflictAnswer::kSkip
                       : conflicts == "replace"   ? ConflictAnswer::kReplace
                       : conflicts == "keep-both" ? ConflictAnswer::kKeepBoth
                                                  : ConflictAnswer::kAsk;
    policy.durability = line.Value(OptionId::kDurability) == "journal" ? Durability::kJournal : Durability::kContent;
    if (const int threads = line.Number(OptionId::kThreads, 0); threads > 0)
        policy.threads = static_cast<unsigned>(threads);
    return policy;
}

}  // namespace

ExitCode RunSort(CliContext& context, const CommandLine& line) {
    std::optional<FileOperationServices> engine = context.EngineServices();
    if (!engine) return ExitCode::kNothing;
    context.WarnOfUnfinishedBatches(*engine);
    SortingPlan plan;
    if (const std::optional<ExitCode> code = MakeSortingPlan(context, line, plan)) return *code;
    if (line.Has(OptionId::kDryRun)) {
        const ExitCode code = PrintPlan(context, line, plan);
        context.console.Note("nothing was changed");
        return code;
    }

    BatchReport report;
    report.action = line.Has(OptionId::kMove) ? BatchAction::kMove : BatchAction::kCopy;
    report.missing = plan.missing;
    FileOperation operation(*engine);
    operation.SetPolicy(PolicyOf(line));
    for (size_t i = 0; i < plan.rows.GetCount(); ++i) {
        std::u16string& path = plan.rows[i].strPath;
        std::u16string target = TargetFolderOf(plan, i);
        if (target.empty()) {
            report.withoutCandidate.push_back(std::move(path));
        } else if (report.action == BatchAction::kMove) {
            operation.MoveItems(std::move(path), std::move(target));
        } else {
            operation.CopyItems(std::move(path), std::move(target));
        }
    }
    {
        ConsoleProgress progress(context, report.action);
        ConsoleAsker asker(context, progress);
        report.result = operation.PerformOperations(&asker, &progress, &context.cancel);
        report.unanswered = asker.unanswered();
    }
    PrintOrWriteReport(context, line, report);
    return ExitCodeOf(report);
}

}  // namespace kinsort
