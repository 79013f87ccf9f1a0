// The plan of the verbs plan and sort, and how it is shown.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "classify/CandidateSearch.h"
#include "classify/ClassificationPlan.h"
#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/ItemList.h"

namespace kinsort {

struct SortingPlan {
    ClassificationPlan rows;
    std::u16string searchFolder;          // inner form, absolute
    std::vector<std::u16string> folders;  // names of its sub-folders
    std::vector<CandidatePair> scores;    // one for each row
    std::vector<MissingItem> missing;     // said already
    size_t withoutCandidate = 0;
};

// Makes the plan from the command line. Says what is wrong with single items and goes on; when there is nothing to
// plan, says why and returns the exit code.
std::optional<ExitCode> MakeSortingPlan(CliContext& context, const CommandLine& line, ItemCheck check,
                                        SortingPlan& plan);

// The target folder of a row, inner form; empty when the row has no candidate.
std::u16string TargetFolderOf(const SortingPlan& plan, size_t row);

// How many of the items would meet their own name in the target folder, or are not the first of that name to go there.
size_t CountTakenNames(CliContext& context, const SortingPlan& plan);

// What "plan" prints, also for sort --dry-run: JSON, a table as wide as the terminal, or lines. Returns the exit code;
// an interrupt ends it early, which is said.
ExitCode PrintPlan(CliContext& context, const CommandLine& line, const SortingPlan& plan);

}  // namespace kinsort
