// Case folding of the 26 ASCII letters and nothing else: what "without regard to case" means unless a rule says more.
#pragma once

#include <string>
#include <string_view>

namespace kinsort {

constexpr char16_t AsciiLower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}
constexpr char16_t AsciiUpper(char16_t unit) {
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - (u'a' - u'A')) : unit;
}

std::u16string AsciiLower(std::u16string_view text);
std::u16string AsciiUpper(std::u16string_view text);

// Negative, zero or positive as `a` stands before, with or after `b`, by lower-cased code units ("_" before "a").
int CompareNoCase(std::u16string_view a, std::u16string_view b);

bool EqualNoCase(std::u16string_view a, std::u16string_view b);
bool StartsWithNoCase(std::u16string_view text, std::u16string_view prefix);

}  // namespace kinsort
