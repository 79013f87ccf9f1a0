// Which folders have which pieces. A piece that few folders have is a list of them; a piece that many have is a row of
// bits, which is smaller and can be added up many folders at a time.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "classify/BigramTable.h"
#include "classify/BitRows.h"
#include "classify/NameSimilarity.h"

namespace kinsort {

class FolderPieces {
  public:
    static constexpr uint32_t kZeroRow = 0x80000000;  // the handle of a row that no folder is in

    FolderPieces(const NameNormalizer& normalizer, std::span<const std::u16string> folderNames);

    // A handle for the piece, BigramTable::kAbsent when no folder has it.
    uint32_t Find(char16_t first, char16_t second) const { return table_.Find(first, second); }
    static bool IsRow(uint32_t piece) { return (piece & kRowFlag) != 0; }
    const Stripe* RowOf(uint32_t piece) const { return rows_.data() + (piece & ~kRowFlag) * stripesPerRow_; }
    // Ascending folder indices.
    std::span<const uint32_t> ListOf(uint32_t piece) const { return {&lists_[piece + 1], lists_[piece]}; }

    size_t FolderCount() const { return folderCount_; }
    size_t StripesPerRow() const { return stripesPerRow_; }
    size_t RowCount() const { return rows_.size() / stripesPerRow_; }
    size_t MemoryBytes() const;

  private:
    static constexpr uint32_t kRowFlag = 0x80000000;
    static_assert(kZeroRow == kRowFlag);

    std::vector<uint32_t> PlacePieces(const std::vector<uint32_t>& folderCounts);

    BigramTable table_;            // piece -> row number with kRowFlag, or where its list begins in lists_
    std::vector<uint32_t> lists_;  // each list: its length, then the folders
    std::vector<Stripe> rows_;     // row 0 is all zero
    size_t folderCount_;
    size_t stripesPerRow_;
};

}  // namespace kinsort
