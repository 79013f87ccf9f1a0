#include "cli/CommandLine.h"
#include "cli/SortingPlan.h"

namespace kinsort {

ExitCode RunPlan(CliContext& context, const CommandLine& line) {
    if (std::optional<FileOperationServices> engine = context.EngineServices())
        context.WarnOfUnfinishedBatches(*engine);
    SortingPlan plan;
    if (const std::optional<ExitCode> code = MakeSortingPlan(context, line, ItemCheck::kExists, plan)) return *code;
    return PrintPlan(context, line, plan);
}

}  // namespace kinsort
