#include "classify/CandidateIndex.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>

#include "classify/CandidateMatcher.h"
#include "classify/NormalizedNames.h"

namespace kinsort {
namespace {

// Names that a thread takes at a time. Equal names are looked for among so many: a listing has them side by side.
constexpr size_t kBlockSize = 2048;

// Calls deliver(i, answer) for each name of the block.
template <typename Deliver>
void MatchBlock(CandidateMatcher& matcher, const NormalizedNames& names, size_t count, const Deliver& deliver) {
    std::vector<CandidatePair> answers;
    answers.reserve(names.Distinct().size());
    for (size_t from = 0; from < names.Distinct().size(); from += CandidateMatcher::kBatchSize) {
        const size_t size = std::min(CandidateMatcher::kBatchSize, names.Distinct().size() - from);
        for (const TopMatches& top : matcher.Match(names.Distinct().subspan(from, size)))
            answers.push_back(top.Pair());
    }
    for (size_t i = 0; i < count; ++i)
        deliver(i, answers[names.DistinctOf(i)]);
}

// Runs `work` on `threads` threads, this one among them, and returns when all are done. When the system has no more
// threads to give, fewer do the same work.
template <typename Work>
void RunOnThreads(unsigned threads, const Work& work) {
    std::vector<std::jthread> others;
    try {
        while (others.size() + 1 < threads)
            others.emplace_back(work);
    } catch (const std::system_error&) {
    }
    work();
}

}  // namespace

struct CandidateIndex::Data {
    const NameNormalizer& normalizer;
    FolderPieces pieces;
    const RowKernel& kernel;

    template <typename Deliver>
    void MatchAll(std::span<const std::u16string_view> fileNames, TopMatches::Keep keep, unsigned threads,
                  const Deliver& deliver) const {
        const size_t blocks = (fileNames.size() + kBlockSize - 1) / kBlockSize;
        if (threads == 0) threads = std::max(1U, std::thread::hardware_concurrency());
        threads = static_cast<unsigned>(std::min<size_t>(threads, blocks));
        std::atomic<size_t> nextBlock = 0;
        RunOnThreads(threads, [&] {
            CandidateMatcher matcher(pieces, kernel, keep);
            NormalizedNames names;
            for (size_t block; (block = nextBlock.fetch_add(1)) < blocks;) {
                const size_t from = block * kBlockSize;
                const size_t count = std::min(kBlockSize, fileNames.size() - from);
                names.Assign(normalizer, fileNames.subspan(from, count));
                MatchBlock(matcher, names, count,
                           [&](size_t i, const CandidatePair& answer) { deliver(from + i, answer); });
            }
        });
    }
};

CandidateIndex::CandidateIndex(const NameNormalizer& normalizer, std::span<const std::u16string> folderNames)
    : CandidateIndex(normalizer, folderNames, RowKernels().front()) {}

CandidateIndex::CandidateIndex(const NameNormalizer& normalizer, std::span<const std::u16string> folderNames,
                               const RowKernel& kernel)
    : data_(new Data{normalizer, FolderPieces(normalizer, folderNames), kernel}) {}

CandidateIndex::~CandidateIndex() = default;

CandidateMatch CandidateIndex::FindBest(std::u16string_view fileName) const {
    CandidateMatch match;
    FindBestOfAll({&fileName, 1}, {&match, 1}, 1);
    return match;
}

CandidatePair CandidateIndex::FindBestTwo(std::u16string_view fileName) const {
    CandidatePair pair;
    FindBestTwoOfAll({&fileName, 1}, {&pair, 1}, 1);
    return pair;
}

void CandidateIndex::FindBestOfAll(std::span<const std::u16string_view> fileNames, std::span<CandidateMatch> matches,
                                   unsigned threads) const {
    data_->MatchAll(fileNames, TopMatches::Keep::kBest, threads,
                    [&](size_t i, const CandidatePair& answer) { matches[i] = answer.best; });
}

void CandidateIndex::FindBestTwoOfAll(std::span<const std::u16string_view> fileNames, std::span<CandidatePair> matches,
                                      unsigned threads) const {
    data_->MatchAll(fileNames, TopMatches::Keep::kBestTwo, threads,
                    [&](size_t i, const CandidatePair& answer) { matches[i] = answer; });
}

size_t CandidateIndex::MemoryBytes() const {
    return data_->pieces.MemoryBytes();
}

}  // namespace kinsort
