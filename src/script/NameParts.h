// Finds the names that a text is part of, without looking at every name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace kinsort {

// Names by the pieces of three units that they consist of. They are added in the order of their numbers, from 0.
class NameParts {
  public:
    static constexpr size_t kPieceUnits = 3;

    // How many names there are.
    size_t size() const { return size_; }
    void Add(std::u16string_view name);

    // The numbers, ascending, of all names that may hold `part`: every one that does is among them. `part` has
    // kPieceUnits units or more.
    const std::vector<uint32_t>& HoldersOf(std::u16string_view part) const;

  private:
    static uint64_t PieceAt(std::u16string_view text, size_t start);

    size_t size_ = 0;
    std::unordered_map<uint64_t, std::vector<uint32_t>> names_;  // by piece, ascending
};

}  // namespace kinsort
