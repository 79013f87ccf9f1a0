#include <algorithm>
#include <array>

#include "cli/BatchReport.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleAsker.h"
#include "cli/ConsoleProgress.h"
#include "cli/ExistenceCheck.h"
#include "cli/SortingPlan.h"
#include "fileop/Parallel.h"

namespace kinsort {
namespace {

struct ConflictRow {
    std::string_view option;
    ConflictAnswer answer;
    std::string_view prospect;  // what --dry-run says of names that are taken
};

constexpr std::array<ConflictRow, 4> kConflictRows = {{
    {"ask", ConflictAnswer::kAsk, "sort would ask what to do"},
    {"skip", ConflictAnswer::kSkip, "sort would skip these items"},
    {"replace", ConflictAnswer::kReplace, "sort would replace what is there"},
    {"keep-both", ConflictAnswer::kKeepBoth, "sort would add a number to the new names"},
}};

const ConflictRow& ConflictsOf(const CommandLine& line) {
    const std::string option = line.Value(OptionId::kOnConflict, "ask");
    const auto found = std::find_if(kConflictRows.begin(), kConflictRows.end(),
                                    [&](const ConflictRow& row) { return row.option == option; });
    return found == kConflictRows.end() ? kConflictRows[0] : *found;
}

OperationPolicy PolicyOf(const CommandLine& line) {
    OperationPolicy policy;
    policy.conflicts = ConflictsOf(line).answer;
    policy.durability = line.Value(OptionId::kDurability) == "journal" ? Durability::kJournal : Durability::kContent;
    if (const int threads = line.Number(OptionId::kThreads, 0); threads > 0)
        policy.threads = static_cast<unsigned>(threads);
    return policy;
}

// Tells of the items that have no folder to go to whether they are there at all.
void ReportUnmatched(CliContext& context, std::vector<std::u16string> paths, unsigned threads, BatchReport& report) {
    std::vector<Status> there(paths.size());
    ExistenceCheck existence(context.services);
    const auto look = [&](size_t i, bool) {
        if (!context.cancel.isCancelled()) there[i] = existence.Look(paths[i]);
    };
    ForEachParallel(paths.size(), threads, look);
    std::vector<MissingItem> missing;
    for (size_t i = 0; i < paths.size(); ++i) {
        if (there[i].ok()) {
            report.withoutCandidate.push_back(std::move(paths[i]));
        } else {
            missing.push_back({context.NativePath(paths[i]), context.NativePath(paths[i]), there[i]});
        }
    }
    SayMissing(context, missing);
    report.missing.insert(report.missing.end(), missing.begin(), missing.end());
}

}  // namespace

ExitCode RunSort(CliContext& context, const CommandLine& line) {
    std::optional<FileOperationServices> engine = context.EngineServices();
    if (!engine) return ExitCode::kNothing;
    context.WarnOfUnfinishedBatches(*engine);
    SortingPlan plan;
    // The engine looks at every item that it is given: looking here too would take twice the time.
    const ItemCheck check = line.Has(OptionId::kDryRun) ? ItemCheck::kExists : ItemCheck::kNotNow;
    if (const std::optional<ExitCode> code = MakeSortingPlan(context, line, check, plan)) return *code;
    if (line.Has(OptionId::kDryRun)) {
        const ExitCode code = PrintPlan(context, line, plan);
        if (const size_t taken = CountTakenNames(context, plan); taken > 0) {
            context.console.Note(Counted(taken, "name") + (taken == 1 ? " is" : " are") +
                                 " taken in the target folder: " + std::string(ConflictsOf(line).prospect));
        }
        context.console.Note("nothing was changed");
        return code;
    }

    BatchReport report;
    report.action = line.Has(OptionId::kMove) ? BatchAction::kMove : BatchAction::kCopy;
    report.journalFolder = engine->journalFolder;
    FileOperation operation(*engine);
    operation.SetPolicy(PolicyOf(line));
    std::vector<std::u16string> unmatched;
    for (size_t i = 0; i < plan.rows.GetCount(); ++i) {
        std::u16string& path = plan.rows[i].strPath;
        std::u16string target = TargetFolderOf(plan, i);
        if (target.empty()) {
            unmatched.push_back(std::move(path));
        } else if (report.action == BatchAction::kMove) {
            operation.MoveItems(std::move(path), std::move(target));
        } else {
            operation.CopyItems(std::move(path), std::move(target));
        }
    }
    report.missing = std::move(plan.missing);
    ReportUnmatched(context, std::move(unmatched), PolicyOf(line).threads, report);
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
