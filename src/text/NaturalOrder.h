// The order in which people count: "file9" before "file10".
#pragma once

#include <string_view>

namespace kinsort {

// Negative, zero or positive as `a` stands before, with or after `b`. Runs of digits are compared by value, however
// long; everything else by code unit, without regard to the case of ASCII letters. Texts that are equal so far are told
// apart by the first run with a different number of leading zeros: more zeros first.
int CompareNatural(std::u16string_view a, std::u16string_view b);

}  // namespace kinsort
