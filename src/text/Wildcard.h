// Matching a whole text against a pattern of "*" (any run, the empty one included) and "?" (exactly one code unit).
#pragma once

#include <string_view>

namespace kinsort {

// Every other unit must be equal, case included. Time grows with text times pattern at worst, never faster.
bool WildcardMatch(std::u16string_view text, std::u16string_view pattern);

// The same without regard to the case of ASCII letters.
bool WildcardMatchNoCase(std::u16string_view text, std::u16string_view pattern);

// The same as a listing of a folder asks it: "*.*" matches a name without a dot too.
bool NameMatchesPattern(std::u16string_view name, std::u16string_view pattern);

}  // namespace kinsort
