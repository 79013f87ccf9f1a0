#include "classify/CandidateSearch.h"

#include <utility>

#include "framework/Paths.h"

namespace kinsort {
namespace {

void DropBelow(int minScore, CandidateMatch& match) {
    if (match.score < minScore) match = {};
}

}  // namespace

std::vector<std::u16string> ListCandidateFolders(FileSystem& files, std::u16string_view searchFolder) {
    std::vector<std::u16string> folders;
    auto search = FindFirst(files, std::u16string(searchFolder) + u"\\*");
    if (!search.ok()) return folders;
    for (FindData entry; (*search)->Next(entry);) {
        if ((entry.attributes & kAttributeDirectory) == 0 || entry.name == u"." || entry.name == u"..") continue;
        folders.push_back(std::move(entry.name));
    }
    return folders;
}

SearchOutcome FillCandidates(ClassificationPlan& plan, const std::vector<std::u16string>& folders,
                             const NameNormalizer& normalizer, const SearchOptions& options,
                             std::vector<CandidatePair>* scores) {
    if (folders.empty()) return SearchOutcome::kNoDirectory;

    const size_t rows = plan.GetCount();
    std::vector<std::u16string_view> names;
    names.reserve(rows);
    for (size_t i = 0; i < rows; ++i)
        names.push_back(plan[i].strName);

    const CandidateIndex index(normalizer, folders);
    std::vector<CandidateMatch> matches(rows);
    if (scores == nullptr) {
        index.FindBestOfAll(names, matches, options.threads);
    } else {
        scores->assign(rows, CandidatePair());
        index.FindBestTwoOfAll(names, *scores, options.threads);
        for (CandidatePair& pair : *scores) {
            DropBelow(options.minScore, pair.best);
            DropBelow(options.minScore, pair.runnerUp);
        }
        for (size_t i = 0; i < rows; ++i)
            matches[i] = (*scores)[i].best;
    }
    for (size_t i = 0; i < rows; ++i) {
        DropBelow(options.minScore, matches[i]);
        plan[i].arrCandidates.clear();
        if (matches[i].folder >= 0) plan[i].arrCandidates.push_back(folders[static_cast<size_t>(matches[i].folder)]);
    }
    return SearchOutcome::kDone;
}

}  // namespace kinsort
