#include "classify/FolderPieces.h"

#include <algorithm>
#include <functional>

namespace kinsort {
namespace {

// A piece gets a row when at least one folder in this many has it. Walking a list costs a step per folder and adding a
// row a step per 512 folders, but a search often ends before it has to add rows at all; this is where the two met when
// measured.
constexpr size_t kRowShare = 512;

// What the rows may take when many folders have long names. A row that is smaller than its list is made all the same.
constexpr size_t kRowBudget = size_t{32} * 1024 * 1024;

// The smallest number of folders with which a piece gets a row.
size_t RowThreshold(std::vector<uint32_t> folderCounts, size_t folders, size_t stripesPerRow) {
    const size_t byShare = (folders + kRowShare - 1) / kRowShare;
    const size_t affordable = kRowBudget / (stripesPerRow * sizeof(Stripe));
    if (folderCounts.size() <= affordable) return byShare;
    const auto last = folderCounts.begin() + static_cast<std::ptrdiff_t>(affordable);
    std::nth_element(folderCounts.begin(), last, folderCounts.end(), std::greater<>());
    const size_t sameSize = stripesPerRow * sizeof(Stripe) / sizeof(uint32_t);
    return std::max(byShare, std::min<size_t>(*last + 1, sameSize));
}

// The distinct pieces of every folder as provisional numbers, folder after folder.
struct NumberedPieces {
    std::vector<uint32_t> numbers;
    std::vector<uint32_t> ends;          // where each folder's numbers end
    std::vector<uint32_t> folderCounts;  // how many folders have the piece of that number
};

NumberedPieces NumberPieces(const NameNormalizer& normalizer, std::span<const std::u16string> folderNames,
                            BigramTable& table) {
    NumberedPieces pieces;
    pieces.ends.reserve(folderNames.size());
    std::vector<uint32_t> lastFolder;  // that had the piece of that number, so that a repeated piece counts once
    std::u16string buffer;
    for (size_t folder = 0; folder < folderNames.size(); ++folder) {
        const std::u16string& name = folderNames[folder];
        if (buffer.size() < name.size() * 2) buffer.resize(name.size() * 2);
        const char16_t* end = normalizer.NormalizeInto(name, buffer.data());
        for (const char16_t* at = buffer.data(); end - at >= 2; ++at) {
            const uint32_t number = table.FindOrAdd(at[0], at[1]);
            if (number == lastFolder.size()) {
                lastFolder.push_back(static_cast<uint32_t>(folder));
                pieces.folderCounts.push_back(0);
            } else if (lastFolder[number] == folder) {
                continue;
            }
            lastFolder[number] = static_cast<uint32_t>(folder);
            ++pieces.folderCounts[number];
            pieces.numbers.push_back(number);
        }
        pieces.ends.push_back(static_cast<uint32_t>(pieces.numbers.size()));
    }
    return pieces;
}

}  // namespace

FolderPieces::FolderPieces(const NameNormalizer& normalizer, std::span<const std::u16string> folderNames)
    : folderCount_(folderNames.size()),
      stripesPerRow_(std::max<size_t>(1, (folderNames.size() + kStripeBits - 1) / kStripeBits)) {
    const NumberedPieces pieces = NumberPieces(normalizer, folderNames, table_);
    const std::vector<uint32_t> places = PlacePieces(pieces.folderCounts);
    size_t at = 0;
    for (size_t folder = 0; folder < folderCount_; ++folder) {
        for (; at < pieces.ends[folder]; ++at) {
            const uint32_t place = places[pieces.numbers[at]];
            if (IsRow(place)) {
                Stripe& stripe = rows_[(place & ~kRowFlag) * stripesPerRow_ + folder / kStripeBits];
                stripe.words[folder % kStripeBits / 64] |= uint64_t{1} << (folder % 64);
            } else {
                lists_[place + 1 + lists_[place]++] = static_cast<uint32_t>(folder);
            }
        }
    }
    table_.Renumber(places);
}

// Decides between list and row for each piece and makes room for it; the lists begin empty.
std::vector<uint32_t> FolderPieces::PlacePieces(const std::vector<uint32_t>& folderCounts) {
    const size_t threshold = RowThreshold(folderCounts, folderCount_, stripesPerRow_);
    std::vector<uint32_t> places;
    places.reserve(folderCounts.size());
    uint32_t rowCount = 1;
    size_t listSpace = 0;
    for (const uint32_t count : folderCounts) {
        if (count >= threshold) {
            places.push_back(kRowFlag | rowCount++);
        } else {
            places.push_back(static_cast<uint32_t>(listSpace));
            listSpace += 1 + count;
        }
    }
    rows_.assign(rowCount * stripesPerRow_, Stripe{});
    lists_.assign(listSpace, 0);
    return places;
}

size_t FolderPieces::MemoryBytes() const {
    return table_.MemoryBytes() + lists_.capacity() * sizeof(uint32_t) + rows_.capacity() * sizeof(Stripe);
}

}  // namespace kinsort
