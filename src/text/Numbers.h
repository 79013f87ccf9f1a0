// How numbers are read from text, and written. All readers skip white space (text/Trim.h), take an optional sign and
// digits up to the first character that is none, give 0 for a text that is no number, and clamp what does not fit to
// the nearest value that does. Only ASCII digits count.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kinsort {

constexpr bool IsDigit(char16_t unit) {
    return unit >= u'0' && unit <= u'9';
}
constexpr bool IsHexDigit(char16_t unit) {
    return IsDigit(unit) || (unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F');
}

// Decimal. ReadInt32(u" -12px") is -12, ReadInt32(u"9999999999") is 2147483647.
int32_t ReadInt32(std::u16string_view text);
int64_t ReadInt64(std::u16string_view text);

// In the base that the text names: "0x" or "0X" before a hexadecimal digit is 16, another leading "0" is 8, else 10.
// ReadInt32AnyBase(u"0x24") is 36, (u"0xFFFFFFFF") is 2147483647, (u"0x") and (u"08") are 0.
int32_t ReadInt32AnyBase(std::u16string_view text);

// Decimal digits with "-" in front of a negative value.
std::u16string FormatInteger(int64_t value);

}  // namespace kinsort
