// A block of file names, normalised, each distinct text once: numbered series and extensions make many names equal,
// and equal names have equal answers.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "classify/NameSimilarity.h"

namespace kinsort {

class NormalizedNames {
  public:
    // Replaces the block. Keeps its memory from one block to the next.
    void Assign(const NameNormalizer& normalizer, std::span<const std::u16string_view> names);

    // The distinct normalised names, valid until the next Assign.
    std::span<const std::u16string_view> Distinct() const { return distinct_; }
    // Which of them names[i] became.
    size_t DistinctOf(size_t i) const { return distinctOf_[i]; }

  private:
    std::vector<char16_t> units_;  // the distinct names, one behind the other
    std::vector<std::u16string_view> distinct_;
    std::vector<uint32_t> distinctOf_;
    std::vector<uint32_t> slots_;  // hash table: index in distinct_ + 1, 0 = free
};

}  // namespace kinsort
