// The candidate search for many files against one list of folders: built once, then asked for each file. The answers
// are those of PickCandidateFolder, for every input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "classify/NameSimilarity.h"

namespace kinsort {

struct RowKernel;

struct CandidateMatch {
    int folder = -1;  // index in the folder list; -1 when nothing scores above 0
    int score = 0;

    bool operator==(const CandidateMatch&) const = default;
};

// The best folder and the best of the others; for showing how sure a choice is.
struct CandidatePair {
    CandidateMatch best;
    CandidateMatch runnerUp;  // highest score among the folders but `best`, first wins

    bool operator==(const CandidatePair&) const = default;
};

class CandidateIndex {
  public:
    // Copies what it needs; `normalizer` must outlive the index.
    CandidateIndex(const NameNormalizer& normalizer, std::span<const std::u16string> folderNames);
    // The same with a kernel of the caller's choice (RowKernels.h), which must outlive the index.
    CandidateIndex(const NameNormalizer& normalizer, std::span<const std::u16string> folderNames,
                   const RowKernel& kernel);
    ~CandidateIndex();
    CandidateIndex(const CandidateIndex&) = delete;
    CandidateIndex& operator=(const CandidateIndex&) = delete;

    // Many names at once are found much faster than one by one.
    CandidateMatch FindBest(std::u16string_view fileName) const;
    CandidatePair FindBestTwo(std::u16string_view fileName) const;

    // matches[i] is the answer for fileNames[i]; works in blocks on up to `threads` threads, 0 = as many as there are
    // processors. `matches` is as long as `fileNames`.
    void FindBestOfAll(std::span<const std::u16string_view> fileNames, std::span<CandidateMatch> matches,
                       unsigned threads) const;
    void FindBestTwoOfAll(std::span<const std::u16string_view> fileNames, std::span<CandidatePair> matches,
                          unsigned threads) const;

    size_t MemoryBytes() const;  // what the index holds

  private:
    struct Data;
    std::unique_ptr<const Data> data_;
};

}  // namespace kinsort
