// Finds the best folders for a batch of normalised names: the working memory of one thread.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "classify/FolderPieces.h"
#include "classify/RowKernels.h"
#include "classify/TopMatches.h"

namespace kinsort {

class CandidateMatcher {
  public:
    // Names worth handing over at a time: what is kept of them while the rows are added up stays in the cache.
    static constexpr size_t kBatchSize = 512;

    // `pieces` and `kernel` must outlive the matcher.
    CandidateMatcher(const FolderPieces& pieces, const RowKernel& kernel, TopMatches::Keep keep);

    // The answer for each name, valid until the next call.
    std::span<const TopMatches> Match(std::span<const std::u16string_view> normalizedNames);

  private:
    // The rows of one name that are still to be added up.
    struct PendingRows {
        size_t name;   // index in matches_
        size_t begin;  // in rows_
        size_t paddedCount;
        int count;
    };

    size_t FindPieces(std::u16string_view name);
    size_t SplitPieces(size_t found);
    void StartName(std::u16string_view name, size_t index);
    void CountLists(std::span<const uint32_t> lists, const PendingRows& pending, TopMatches& top);
    int CountRows(const PendingRows& pending, uint32_t folder) const;
    void AddUpRows(const PendingRows& pending, size_t from, size_t limit);
    void OfferHits(const RowSum& sum, size_t stripe, TopMatches& top);
    void MatchLongName(std::span<uint32_t> found, TopMatches& top);

    const FolderPieces& pieces_;
    const RowKernel& kernel_;
    const TopMatches::Keep keep_;
    size_t stripesPerBlock_;
    size_t rowsEnd_ = 0;  // how much of rows_ is in use

    std::vector<TopMatches> matches_;
    std::vector<PendingRows> pending_;
    std::vector<const Stripe*> rows_;
    std::vector<uint32_t> found_;    // the pieces of the name at hand that some folder has
    std::vector<uint32_t> lists_;    // those of them that are lists
    std::vector<uint8_t> counts_;    // for each folder the pieces met in lists; all 0 between names
    std::vector<uint32_t> touched_;  // the folders whose count is not 0
    std::vector<uint32_t> longCounts_;
    RowSumHits hits_;
};

}  // namespace kinsort
