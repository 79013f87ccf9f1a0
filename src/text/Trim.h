// White space at the ends of a text.
#pragma once

#include <string>
#include <string_view>

namespace kinsort {

// The white space of the wide C runtime: U+0009..U+000D, blank, U+0085, U+00A0, U+1680, U+2000..U+200A, U+2028,
// U+2029, U+202F, U+205F and the ideographic blank U+3000. Not U+FEFF, not U+200B.
constexpr bool IsWhiteSpace(char16_t unit) {
    if (unit > u' ' && unit < 0x85) return false;  // nearly every unit
    return (unit >= 0x09 && unit <= 0x0D) || unit == u' ' || unit == 0x85 || unit == 0xA0 || unit == 0x1680 ||
           (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 || unit == 0x2029 || unit == 0x202F || unit == 0x205F ||
           unit == 0x3000;
}

std::u16string Trim(std::u16string_view text);
// The same as a piece of the text, without a copy.
std::u16string_view TrimView(std::u16string_view text);
std::u16string TrimStart(std::u16string_view text);
std::u16string TrimEnd(std::u16string_view text);

// The same with one character in the place of white space.
std::u16string TrimStart(std::u16string_view text, char16_t unit);
std::u16string TrimEnd(std::u16string_view text, char16_t unit);

}  // namespace kinsort
