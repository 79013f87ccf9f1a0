#include "cli/SortingPlan.h"

#include <algorithm>

#include "cli/ExistenceCheck.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"

namespace kinsort {
namespace {

std::u16string JoinPath(const std::u16string& folder, const std::u16string& name) {
    return folder.ends_with(u'\\') ? folder + name : folder + u'\\' + name;
}

bool SayWhyNoItems(CliContext& context, const ItemList& items, bool hasMissing) {
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
    if (!hasMissing) context.console.Say("the list of items is empty; there is nothing to do");
    return true;
}

}  // namespace

std::u16string FindNamedFolder(CliContext& context, OptionId option, const std::string& typed) {
    const Result<std::u16string> folder = ResolveTyped(context, typed);
    const std::string shown = "--" + std::string(SpecOf(option).name) + " " + ShownText(typed) + ": ";
    if (!folder.ok()) {
        context.console.Say(shown + StatusText(folder.status()));
        return {};
    }
    const uint32_t attributes = context.services.files.GetAttributes(*folder);
    if (attributes == kInvalidAttributes) {
        context.console.Say(shown + "there is no such folder, or it cannot be read; check the path");
        return {};
    }
    if ((attributes & kAttributeDirectory) == 0) {
        context.console.Say(shown + "this is a file; name a folder");
        return {};
    }
    const Result<std::string> stored = context.services.codec.PathToStored(*folder);
    if (stored.ok() && context.services.sys.OpenFolder(*stored).code() == StatusCode::kAccessDenied) {
        context.console.Say(shown + "permission denied; its sub-folders cannot be listed");
        return {};
    }
    return *folder;
}

std::optional<ExitCode> MakeSortingPlan(CliContext& context, const CommandLine& line, SortingPlan& plan) {
    plan.searchFolder = FindNamedFolder(context, OptionId::kTo, line.Value(OptionId::kTo));
    if (plan.searchFolder.empty()) return ExitCode::kNothing;
    ItemList items = CollectItems(context, line);
    SayMissing(context, items);
    plan.missing = std::move(items.missing);
    if (SayWhyNoItems(context, items, !plan.missing.empty())) {
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
    return candidates.empty() ? std::u16string() : JoinPath(plan.searchFolder, candidates[0]);
}

size_t CountTakenNames(CliContext& context, const SortingPlan& plan) {
    std::vector<std::pair<std::u16string, std::u16string_view>> ways;  // target and source
    for (size_t i = 0; i < plan.rows.GetCount(); ++i) {
        const std::u16string folder = TargetFolderOf(plan, i);
        if (folder.empty()) continue;
        std::u16string target = JoinPath(folder, plan.rows[i].strName);
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
