// Numbers in text.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace kinsort {

// Leading ASCII white space, an optional sign, decimal digits up to the first unit that is none. Text that does not
// begin like this is 0; what does not fit becomes the nearest number that does.
constexpr int32_t ReadInteger(std::u16string_view text) {
    size_t i = 0;
    while (i < text.size() && (text[i] == u' ' || (text[i] >= u'\t' && text[i] <= u'\r')))
        ++i;
    const bool isNegative = i < text.size() && text[i] == u'-';
    if (i < text.size() && (text[i] == u'-' || text[i] == u'+')) ++i;
    constexpr int64_t kLimit = std::numeric_limits<int32_t>::max();
    int64_t value = 0;
    for (; i < text.size() && text[i] >= u'0' && text[i] <= u'9' && value <= kLimit; ++i)
        value = value * 10 + (text[i] - u'0');
    if (isNegative) return static_cast<int32_t>(value > kLimit ? -kLimit - 1 : -value);
    return static_cast<int32_t>(value > kLimit ? kLimit : value);
}

inline std::u16string FormatInteger(int64_t value) {
    const std::string digits = std::to_string(value);
    return std::u16string(digits.begin(), digits.end());
}

}  // namespace kinsort
