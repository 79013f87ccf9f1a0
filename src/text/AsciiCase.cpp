#include "text/AsciiCase.h"

#include <algorithm>

namespace kinsort {

std::u16string AsciiLower(std::u16string_view text) {
    std::u16string out(text);
    for (char16_t& unit : out)
        unit = AsciiLower(unit);
    return out;
}

std::u16string AsciiUpper(std::u16string_view text) {
    std::u16string out(text);
    for (char16_t& unit : out)
        unit = AsciiUpper(unit);
    return out;
}

int CompareNoCase(std::u16string_view a, std::u16string_view b) {
    const size_t shorter = std::min(a.size(), b.size());
    for (size_t i = 0; i < shorter; ++i) {
        const int difference = AsciiLower(a[i]) - AsciiLower(b[i]);
        if (difference != 0) return difference;
    }
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

bool EqualNoCase(std::u16string_view a, std::u16string_view b) {
    return CompareNoCase(a, b) == 0;
}

bool StartsWithNoCase(std::u16string_view text, std::u16string_view prefix) {
    return text.size() >= prefix.size() && EqualNoCase(text.substr(0, prefix.size()), prefix);
}

}  // namespace kinsort
