#include "cli/SortingPlan.h"

#include <algorithm>

#include "cli/ExistenceCheck.h"
#include "cli/NamedPaths.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "framework/Paths.h"

namespace kinsort {
namespace {

bool SayWhyNoItems(CliContext& context, const CommandLine& line, const ItemList& items, bool hasMissing) {
    switch (items.source) {
        case ItemSource::kNone:
            context.console.Say("no items: name files or folders, or give a list with --files-from");
            return true;
        case ItemSource::kFailed:
            return true;
        case ItemSource::kCancelled:
            context.console.Say("stopped; nothing was changed");
            return true;
        case ItemSource::kNamed:
        case ItemSource::kHandedOver:
            break;
    }
    if (!items.paths.empty()) return false;
    if (hasMissing) return true;
    const std::string list = line.Has(OptionId::kFilesFrom)
                                 ? "--files-from " + ShownText(line.Value(OptionId::kFilesFrom))
                                 : "the selection of the file manager";
    context.console.Say(list + ": the list of items is empty; there is nothing to do");
    return true;
}

}  // namespace

std::optional<ExitCode> MakeSortingPlan(CliContext& context, const CommandLine& line, ItemCheck check,
                                        SortingPlan& plan) {
    plan.searchFolder = FindFolderToList(context, OptionId::kTo, line.Value(OptionId::kTo));
    if (plan.searchFolder.empty()) return ExitCode::kNothing;
    ItemList items = CollectItems(context, line, check);
    SayMissing(context, items.missing);
    plan.missing = std::move(items.missing);
    if (SayWhyNoItems(context, line, items, !plan.missing.empty())) {
        return items.source == ItemSource::kNone ? ExitCode::kUsage : ExitCode::kNothing;
    }
    for (std::u16string& path : items.paths) {
        while (path.ends_with(u'\\'))
            path.pop_back();
        plan.rows.AddItem(std::move(path));
    }
    plan.folders = ListCandidateFolders(context.services.files, plan.searchFolder);
    const NameNormalizer normalizer(*context.services.makeLocaleMap());
    const SearchOptions options{.minScore = line.Number(OptionId::kMinScore, 1),
                                .threads = static_cast<unsigned>(line.Number(OptionId::kThreads, 0))};
    if (FillCandidates(plan.rows, plan.folders, normalizer, options, &plan.scores) == SearchOutcome::kNoDirectory) {
        context.console.Say(context.ShownPath(plan.searchFolder) +
                            ": there are no sub-folders to sort into; create some, or choose another folder with --to");
        return ExitCode::kNothing;
    }
    for (size_t i = 0; i < plan.rows.GetCount(); ++i)
        plan.withoutCandidate += plan.rows[i].arrCandidates.empty() ? 1 : 0;
    if (context.cancel.isCancelled()) {
        context.console.Say("stopped; nothing was changed");
        return ExitCode::kNothing;
    }
    return std::nullopt;
}

std::u16string TargetFolderOf(const SortingPlan& plan, size_t row) {
    const std::vector<std::u16string>& candidates = plan.rows[row].arrCandidates;
    return candidates.empty() ? std::u16string() : AddTrailingSeparator(plan.searchFolder) + candidates[0];
}

size_t CountTakenNames(CliContext& context, const SortingPlan& plan) {
    std::vector<std::pair<std::u16string, std::u16string_view>> ways;  // target and source
    for (size_t i = 0; i < plan.rows.GetCount(); ++i) {
        const std::u16string folder = TargetFolderOf(plan, i);
        if (folder.empty()) continue;
        std::u16string target = AddTrailingSeparator(folder) + plan.rows[i].strName;
        if (target != plan.rows[i].strPath) ways.emplace_back(std::move(target), plan.rows[i].strPath);
    }
    std::sort(ways.begin(), ways.end());
    ways.erase(std::unique(ways.begin(), ways.end()), ways.end());
    ExistenceCheck check(context.services);
    size_t taken = 0;
    for (size_t i = 0; i < ways.size() && !context.cancel.isCancelled(); ++i) {
        const bool isSecond = i > 0 && ways[i].first == ways[i - 1].first;
        if (isSecond || check.Look(ways[i].first).ok()) ++taken;
    }
    return taken;
}

}  // namespace kinsort
