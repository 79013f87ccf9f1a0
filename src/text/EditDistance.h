// How far apart two words are, for "did you mean".
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace kinsort {

// The fewest insertions, removals, replacements and swaps of neighbours that make one of the other, ASCII letters
// compared without regard to case.
size_t EditDistance(std::u16string_view a, std::u16string_view b);

// True when the distance is small for words of that length: one change up to six characters, two beyond; none where
// one of them has fewer than three.
bool LooksLikeTypo(std::u16string_view typed, std::u16string_view meant);

}  // namespace kinsort
