// UTF-16 to UTF-8 and back, for the edges of the system. Never fails: what cannot be said becomes U+FFFD.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kinsort {

// A lone surrogate becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);

// Each byte that is not part of well-formed UTF-8 becomes one U+FFFD.
std::u16string FromUtf8(std::string_view bytes);

struct DecodedUtf8 {
    char32_t point = 0xFFFD;
    size_t length = 0;  // bytes used; 0 when the bytes are not well formed here
};

// The code point that `bytes`, not empty, begins with. Overlong forms and surrogates are not well formed.
DecodedUtf8 DecodeUtf8(std::string_view bytes);

// Appends the bytes of `point`, at most U+10FFFF. A surrogate is written as if it were a character.
void AppendUtf8(std::string& out, char32_t point);

// True for the two halves of a character above U+FFFF.
constexpr bool IsHighSurrogate(char16_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}
constexpr bool IsLowSurrogate(char16_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}
constexpr char32_t JoinSurrogates(char16_t high, char16_t low) {
    return 0x10000 + ((char32_t{high} - 0xD800) << 10) + (char32_t{low} - 0xDC00);
}
// Appends `point` as one unit or as a pair.
void AppendUtf16(std::u16string& out, char32_t point);

}  // namespace kinsort
