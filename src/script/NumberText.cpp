#include "script/NumberText.h"

#include <algorithm>
#include <array>
#include <vector>

#include "text/Numbers.h"

namespace kinsort {

namespace {

constexpr std::u16string_view kHexPrefix = u"0x";

// Every whole number of as many digits is a double.
constexpr size_t kMaxExactDigits = 15;

constexpr std::array<bool, 128> kIsArithmetic = [] {
    std::array<bool, 128> is{};
    for (const char16_t unit : std::u16string_view(u"0123456789.()+- */%"))
        is[unit] = true;
    return is;
}();

std::u16string WithoutBlanks(std::u16string_view text) {
    std::u16string out(text);
    std::erase(out, u' ');
    return out;
}

bool AllDigits(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(), IsDigit);
}

// "0x" and nothing but hexadecimal digits behind it, at least one.
bool IsHexText(std::u16string_view text) {
    return text.size() > kHexPrefix.size() && text.starts_with(kHexPrefix) &&
           std::all_of(text.begin() + kHexPrefix.size(), text.end(), IsHexDigit);
}

}  // namespace

bool IsPlainInteger(std::u16string_view text) {
    if (text.starts_with(u'-')) text.remove_prefix(1);
    const bool hasIdleZero = text.size() > 1 && text.front() == u'0';
    return !text.empty() && text.size() <= kMaxExactDigits && !hasIdleZero && AllDigits(text);
}

std::u16string NormalizeNumber(std::u16string_view text) {
    // Most texts are none, and are told by their first character.
    const size_t first = text.find_first_not_of(u' ');
    if (first == text.npos || !IsDigit(text[first]) || IsPlainInteger(text)) return std::u16string(text);
    const std::u16string digits = WithoutBlanks(text);
    if (IsHexText(digits)) return FormatInteger(ReadInt32AnyBase(digits));
    if (AllDigits(digits)) return FormatInteger(ReadInt64(digits));
    return std::u16string(text);
}

bool IsIntegerText(std::u16string_view text) {
    if (AllDigits(text)) return true;
    const std::u16string digits = WithoutBlanks(text);
    return IsHexText(digits) || AllDigits(digits);
}

std::u16string ReplaceHexLiterals(std::u16string_view text) {
    std::u16string out(text);
    for (size_t at = out.rfind(kHexPrefix); at != out.npos; at = at == 0 ? out.npos : out.rfind(kHexPrefix, at - 1)) {
        const size_t begin = at + kHexPrefix.size();
        size_t end = begin;
        while (end < out.size() && IsHexDigit(out[end]))
            ++end;
        if (end == begin) continue;
        const std::u16string decimal = FormatInteger(ReadInt32AnyBase(std::u16string_view(out).substr(at, end - at)));
        out.replace(at, end - at, decimal);
    }
    return out;
}

bool IsArithmeticText(std::u16string_view text) {
    return std::all_of(text.begin(), text.end(),
                       [](char16_t unit) { return unit < kIsArithmetic.size() && kIsArithmetic[unit]; });
}

}  // namespace kinsort
