#include "text/Numbers.h"

#include <iterator>
#include <limits>

#include "text/Trim.h"

namespace kinsort {

namespace {

constexpr unsigned kNoDigit = 99;

unsigned DigitValue(char16_t unit) {
    if (IsDigit(unit)) return unit - u'0';
    if (!IsHexDigit(unit)) return kNoDigit;
    return (unit | 0x20u) - u'a' + 10;
}

// 16, 8 or 10, and the text behind the prefix.
unsigned TakeBase(std::u16string_view& digits) {
    if (digits.size() > 2 && digits[0] == u'0' && (digits[1] | 0x20) == u'x' && IsHexDigit(digits[2])) {
        digits.remove_prefix(2);
        return 16;
    }
    return digits.starts_with(u'0') ? 8 : 10;
}

// The base is a constant, so that no division is one.
template <unsigned kBase>
uint64_t ReadDigits(std::u16string_view text, uint64_t most) {
    uint64_t value = 0;
    for (const char16_t unit : text) {
        const unsigned digit = DigitValue(unit);
        if (digit >= kBase) break;
        if (value > most / kBase || (value == most / kBase && digit > most % kBase)) return most;
        value = value * kBase + digit;
    }
    return value;
}

template <typename Int>
Int Read(std::u16string_view text, bool anyBase) {
    while (!text.empty() && IsWhiteSpace(text.front()))
        text.remove_prefix(1);
    const bool isNegative = text.starts_with(u'-');
    if (isNegative || text.starts_with(u'+')) text.remove_prefix(1);
    const unsigned base = anyBase ? TakeBase(text) : 10;

    const uint64_t most = static_cast<uint64_t>(std::numeric_limits<Int>::max()) + (isNegative ? 1 : 0);
    const uint64_t value = base == 10   ? ReadDigits<10>(text, most)
                           : base == 16 ? ReadDigits<16>(text, most)
                                        : ReadDigits<8>(text, most);
    return static_cast<Int>(isNegative ? uint64_t{0} - value : value);
}

}  // namespace

int32_t ReadInt32(std::u16string_view text) {
    return Read<int32_t>(text, false);
}

int64_t ReadInt64(std::u16string_view text) {
    return Read<int64_t>(text, false);
}

int32_t ReadInt32AnyBase(std::u16string_view text) {
    return Read<int32_t>(text, true);
}

std::u16string FormatInteger(int64_t value) {
    char16_t digits[20];
    char16_t* const end = std::end(digits);
    char16_t* begin = end;
    for (uint64_t rest = value < 0 ? uint64_t{0} - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
         rest != 0 || begin == end; rest /= 10)
        *--begin = static_cast<char16_t>(u'0' + rest % 10);
    if (value < 0) *--begin = u'-';
    return {begin, end};
}

}  // namespace kinsort
