#include "cli/CommandLine.h"
#include "cli/SortingPlan.h"
#include "cli/Texts.h"

namespace kinsort {

ExitCode RunPlan(CliContext& context, const CommandLine& line) {
    if (std::optional<FileOperationServices> engine = context.EngineServices())
        context.WarnOfUnfinishedBatches(*engine);
    SortingPlan plan;
    if (const std::optional<ExitCode> code = MakeSortingPlan(context, line, plan)) return *code;
    PrintPlan(context, line, plan);
    if (plan.withoutCandidate > 0) {
        context.console.Note(Counted(plan.withoutCandidate, "item") + " without a similar folder");
    }
    return plan.withoutCandidate + plan.missing.size() == 0 ? ExitCode::kDone : ExitCode::kPartly;
}

}  // namespace kinsort
