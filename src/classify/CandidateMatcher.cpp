#include "classify/CandidateMatcher.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace kinsort {
namespace {

// The part of the rows that one pass over the batch works on: about half of a usual second-level cache.
constexpr size_t kBlockBytes = size_t{512} * 1024;

}  // namespace

CandidateMatcher::CandidateMatcher(const FolderPieces& pieces, const RowKernel& kernel, TopMatches::Keep keep)
    : pieces_(pieces),
      kernel_(kernel),
      keep_(keep),
      stripesPerBlock_(std::max<size_t>(4, kBlockBytes / sizeof(Stripe) / pieces.RowCount())),
      lists_(kMaxRows + 1),
      counts_(pieces.FolderCount()),
      touched_(pieces.FolderCount() + 1) {}

std::span<const TopMatches> CandidateMatcher::Match(std::span<const std::u16string_view> normalizedNames) {
    matches_.assign(normalizedNames.size(), TopMatches(keep_));
    pending_.clear();
    rowsEnd_ = 0;
    for (size_t i = 0; i < normalizedNames.size(); ++i)
        StartName(normalizedNames[i], i);
    const size_t stripes = pieces_.StripesPerRow();
    for (size_t from = 0; from < stripes; from += stripesPerBlock_) {
        for (const PendingRows& pending : pending_)
            AddUpRows(pending, from, std::min(stripes, from + stripesPerBlock_));
    }
    return matches_;
}

// Puts the pieces of the name that some folder has into found_; returns their number. Whether a piece is found is as
// good as random, so that the loop does not branch on it.
size_t CandidateMatcher::FindPieces(std::u16string_view name) {
    if (found_.size() < name.size()) found_.resize(name.size());
    size_t found = 0;
    for (size_t i = 0; i + 1 < name.size(); ++i) {
        const uint32_t piece = pieces_.Find(name[i], name[i + 1]);
        found_[found] = piece;
        found += piece != BigramTable::kAbsent;
    }
    return found;
}

// Deals the found pieces out to rows_ and lists_, without a branch either; returns the number of lists.
size_t CandidateMatcher::SplitPieces(size_t found) {
    if (rows_.size() < rowsEnd_ + kMaxRows + 1) rows_.resize(rowsEnd_ * 2 + kMaxRows + 1);
    size_t lists = 0;
    for (size_t i = 0; i < found; ++i) {
        const uint32_t piece = found_[i];
        const bool isRow = FolderPieces::IsRow(piece);
        rows_[rowsEnd_] = pieces_.RowOf(isRow ? piece : FolderPieces::kZeroRow);
        rowsEnd_ += isRow;
        lists_[lists] = piece;
        lists += !isRow;
    }
    return lists;
}

// Looks the pieces up and does the part of the work that needs no rows.
void CandidateMatcher::StartName(std::u16string_view name, size_t index) {
    TopMatches& top = matches_[index];
    const size_t found = FindPieces(name);
    if (found > kMaxRows) return MatchLongName({found_.data(), found}, top);

    PendingRows pending{index, rowsEnd_, 0, 0};
    const size_t lists = SplitPieces(found);
    pending.count = static_cast<int>(rowsEnd_ - pending.begin);
    CountLists({lists_.data(), lists}, pending, top);
    if (pending.count < top.WantedOf(0)) {
        rowsEnd_ = pending.begin;  // folders that are in rows only cannot win any more
        return;
    }
    while ((rowsEnd_ - pending.begin) % 4 != 0)
        rows_[rowsEnd_++] = pieces_.RowOf(FolderPieces::kZeroRow);
    pending.paddedCount = rowsEnd_ - pending.begin;
    pending_.push_back(pending);
}

// Offers every folder that is in one of the lists and can win, with its full score.
void CandidateMatcher::CountLists(std::span<const uint32_t> lists, const PendingRows& pending, TopMatches& top) {
    uint32_t* end = touched_.data();
    for (const uint32_t piece : lists) {
        for (const uint32_t folder : pieces_.ListOf(piece)) {
            *end = folder;
            end += counts_[folder] == 0;
            ++counts_[folder];
        }
    }
    const std::span<const uint32_t> touched(touched_.data(), end);
    if (touched.empty()) return;

    // The likeliest winner first: most of the others then fall short without a look at the rows.
    const uint32_t likeliest = *std::max_element(touched.begin(), touched.end(),
                                                 [&](uint32_t a, uint32_t b) { return counts_[a] < counts_[b]; });
    const auto offer = [&](uint32_t folder) {
        const int count = std::exchange(counts_[folder], uint8_t{0});
        if (count == 0 || count + pending.count < top.WantedOf(folder)) return;
        top.Offer({static_cast<int>(folder), count + CountRows(pending, folder)});
    };
    offer(likeliest);
    for (const uint32_t folder : touched)
        offer(folder);
}

int CandidateMatcher::CountRows(const PendingRows& pending, uint32_t folder) const {
    const size_t stripe = folder / kStripeBits;
    const size_t word = folder % kStripeBits / 64;
    uint64_t count = 0;
    for (size_t row = pending.begin; row < pending.begin + static_cast<size_t>(pending.count); ++row) {
        count += rows_[row][stripe].words[word] >> (folder % 64) & 1;
    }
    return static_cast<int>(count);
}

// A folder that also is in lists has been offered with more than its rows can give, so that here it is met again only
// while it is the best of two.
void CandidateMatcher::AddUpRows(const PendingRows& pending, size_t from, size_t limit) {
    TopMatches& top = matches_[pending.name];
    RowSum sum{rows_.data() + pending.begin, pending.paddedCount, 0, 0};
    sum.planes = std::max(2U, static_cast<unsigned>(std::bit_width(static_cast<unsigned>(pending.count))));
    for (size_t stripe = from; stripe < limit;) {
        // Up to the stripe of the match to beat an equal score may win, behind it only a higher one.
        const int bar = top.Bar().folder;
        const size_t change = bar < 0 ? 0 : static_cast<size_t>(bar) / kStripeBits + 1;
        const size_t end = stripe < change ? std::min(limit, change) : limit;
        sum.wanted = static_cast<unsigned>(top.Bar().score + (stripe < change ? 0 : 1));
        if (static_cast<int>(sum.wanted) > pending.count) return;
        stripe = kernel_.findSum(sum, stripe, end, hits_);
        if (stripe == end) continue;
        OfferHits(sum, stripe, top);
        ++stripe;
    }
}

// Offers the best one or two of the stripe in hits_; the others cannot win.
void CandidateMatcher::OfferHits(const RowSum& sum, size_t stripe, TopMatches& top) {
    const int known = top.Pair().best.folder;
    if (known >= 0 && static_cast<size_t>(known) / kStripeBits == stripe) {
        hits_.hits.words[known % kStripeBits / 64] &= ~(uint64_t{1} << (known % 64));
    }
    for (int round = keep_ == TopMatches::Keep::kBest ? 1 : 2; round > 0; --round) {
        Stripe highest = hits_.hits;
        unsigned score = sum.wanted;
        for (unsigned plane = sum.planes; plane-- > 0;) {
            Stripe higher;
            uint64_t any = 0;
            for (size_t i = 0; i < 8; ++i)
                any |= higher.words[i] = highest.words[i] & hits_.planes[plane].words[i];
            if (any == 0) continue;
            highest = higher;
            score += 1U << plane;
        }
        size_t word = 0;
        while (word < 8 && highest.words[word] == 0)
            ++word;
        if (word == 8) return;
        const auto bit = static_cast<size_t>(std::countr_zero(highest.words[word]));
        hits_.hits.words[word] &= ~(uint64_t{1} << bit);
        top.Offer({static_cast<int>(stripe * kStripeBits + word * 64 + bit), static_cast<int>(score)});
    }
}

// Names with more pieces than the planes can count are rare: each folder's score in full, one piece after the other.
void CandidateMatcher::MatchLongName(std::span<uint32_t> found, TopMatches& top) {
    longCounts_.assign(pieces_.FolderCount(), 0);
    std::sort(found.begin(), found.end());
    for (auto piece = found.begin(); piece != found.end();) {
        const auto next = std::upper_bound(piece, found.end(), *piece);
        const auto times = static_cast<uint32_t>(next - piece);
        if (FolderPieces::IsRow(*piece)) {
            const Stripe* row = pieces_.RowOf(*piece);
            for (size_t folder = 0; folder < longCounts_.size(); ++folder) {
                const uint64_t word = row[folder / kStripeBits].words[folder % kStripeBits / 64];
                longCounts_[folder] += (word >> (folder % 64) & 1) != 0 ? times : 0;
            }
        } else {
            for (const uint32_t folder : pieces_.ListOf(*piece))
                longCounts_[folder] += times;
        }
        piece = next;
    }
    for (size_t folder = 0; folder < longCounts_.size(); ++folder) {
        if (longCounts_[folder] > 0) top.Offer({static_cast<int>(folder), static_cast<int>(longCounts_[folder])});
    }
}

}  // namespace kinsort
