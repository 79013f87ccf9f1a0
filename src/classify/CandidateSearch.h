// Fills the plan from the sub-folders of a search folder.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "classify/CandidateIndex.h"
#include "classify/ClassificationPlan.h"
#include "platform/FileSystem.h"

namespace kinsort {

// The names of the folders directly in `searchFolder` (inner form), in enumeration order: everything with the directory
// attribute but "." and "..". Empty when the folder is empty, missing or unreadable. An empty text lists the root of
// the current drive.
std::vector<std::u16string> ListCandidateFolders(FileSystem& files, std::u16string_view searchFolder);

enum class SearchOutcome : uint8_t {
    kDone,
    kNoDirectory,  // no sub-folders: the rows keep the candidates that they had
};

struct SearchOptions {
    int minScore = 1;      // weaker matches give no candidate
    unsigned threads = 0;  // 0 = as many as there are processors
};

// Sets arrCandidates of every row to the best folder or to nothing. When `scores` is not null it is set to one pair per
// row (an index of -1 where minScore left the match out); the pair's indices refer to `folders`. Without folders
// nothing is touched, `scores` included.
SearchOutcome FillCandidates(ClassificationPlan& plan, const std::vector<std::u16string>& folders,
                             const NameNormalizer& normalizer, const SearchOptions& options,
                             std::vector<CandidatePair>* scores);

}  // namespace kinsort
