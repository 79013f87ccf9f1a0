#include "script/ArithmeticEvaluator.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "text/Numbers.h"
#include "text/Trim.h"

namespace kinsort {

namespace {

// Lowest level first; the blank only fills a place, white space is never current.
constexpr std::u16string_view kOperators = u"+- */%";
constexpr size_t kOperatorsPerLevel = 3;
constexpr size_t kLevels = kOperators.size() / kOperatorsPerLevel;

// A double has at most 309 digits before the point.
constexpr size_t kMaxDoubleSize = 400;

size_t CountDigits(std::u16string_view text, bool (*isDigit)(char16_t)) {
    return static_cast<size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
}

bool IsDecimalDigit(char16_t unit) {
    return IsDigit(unit);
}
bool IsHexadecimalDigit(char16_t unit) {
    return IsHexDigit(unit);
}

// How a number is written, and how much of the text it takes.
struct NumberShape {
    size_t prefix = 0;    // "0x"
    size_t mantissa = 0;  // digits and a point
    size_t exponent = 0;  // with its letter and sign
    int32_t power = 0;
    bool isHex = false;
};

NumberShape MeasureNumber(std::u16string_view text) {
    NumberShape shape;
    shape.isHex = text.size() > 2 && text[0] == u'0' && (text[1] | 0x20) == u'x' &&
                  (IsHexDigit(text[2]) || (text[2] == u'.' && text.size() > 3 && IsHexDigit(text[3])));
    shape.prefix = shape.isHex ? 2 : 0;
    const auto isDigit = shape.isHex ? IsHexadecimalDigit : IsDecimalDigit;
    std::u16string_view rest = text.substr(shape.prefix);
    const size_t whole = CountDigits(rest, isDigit);
    const bool hasPoint = whole < rest.size() && rest[whole] == u'.';
    const size_t fraction = hasPoint ? CountDigits(rest.substr(whole + 1), isDigit) : 0;
    if (whole + fraction == 0) return {};
    shape.mantissa = whole + (hasPoint ? 1 : 0) + fraction;

    rest.remove_prefix(shape.mantissa);
    if (rest.empty() || (rest[0] | 0x20) != (shape.isHex ? u'p' : u'e')) return shape;
    const size_t sign = rest.size() > 1 && (rest[1] == u'+' || rest[1] == u'-') ? 1 : 0;
    const size_t digits = CountDigits(rest.substr(1 + sign), IsDecimalDigit);
    if (digits == 0) return shape;
    shape.exponent = 1 + sign + digits;
    shape.power = ReadInt32(rest.substr(1, sign + digits));
    return shape;
}

// What a number becomes that no double can hold: whether its first digit that counts stands far left or far right.
double BeyondRange(std::u16string_view mantissa, const NumberShape& shape) {
    const size_t point = std::min(mantissa.find(u'.'), mantissa.size());
    const size_t first = mantissa.find_first_not_of(u"0.");
    if (first == mantissa.npos) return 0;
    const double digitsLeft = static_cast<double>(point) - static_cast<double>(first);
    const bool isHuge = digitsLeft * (shape.isHex ? 4 : 1) + shape.power > 0;
    return isHuge ? std::numeric_limits<double>::infinity() : 0;
}

// Nothing but digits, few enough for a double, and nothing behind them that could belong to the number.
bool IsPlainNumber(std::u16string_view text, size_t digits) {
    constexpr size_t kMaxExactDigits = 15;
    constexpr std::u16string_view kContinues = u".eExX";
    const bool ends = digits == text.size() || kContinues.find(text[digits]) == kContinues.npos;
    return digits > 0 && digits <= kMaxExactDigits && ends;
}

// Whole, and small enough that every whole number near it is a double too.
bool IsExactInteger(double value) {
    constexpr double kLimit = 9007199254740992.0;  // 2 to the 53rd
    return value > -kLimit && value < kLimit && static_cast<double>(static_cast<int64_t>(value)) == value;
}

// The remainder with the sign of `left`. Whole numbers take the short way.
double Remainder(double left, double right) {
    const bool isWhole = IsExactInteger(left) && IsExactInteger(right) && left >= 0 && !std::signbit(left);
    return isWhole ? static_cast<double>(static_cast<int64_t>(left) % static_cast<int64_t>(right))
                   : std::fmod(left, right);
}

}  // namespace

std::u16string FormatDouble(double value) {
    if (IsExactInteger(value) && !std::signbit(value)) return FormatInteger(static_cast<int64_t>(value));
    std::array<char, kMaxDoubleSize> digits;
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, 6).ptr;
    std::u16string out(digits.data(), end);
    if (out.find(u'.') != out.npos) out = TrimEnd(TrimEnd(out, u'0'), u'.');
    return out;
}

void ArithmeticEvaluator::Advance() {
    while (!rest_.empty() && IsWhiteSpace(rest_.front()))
        rest_.remove_prefix(1);
    current_ = rest_.empty() ? kEnd : rest_.front();
    if (current_ == 0 && !rest_.empty()) current_ = kSyntax;  // a U+0000 within the text is not its end
    if (!rest_.empty()) rest_.remove_prefix(1);
}

ArithmeticEvaluator::Status ArithmeticEvaluator::Evaluate(std::u16string_view text) {
    rest_ = text;
    current_ = kEnd;
    depth_ = 0;
    const double value = EvaluateLevel(0);
    result_ = current_ == kEnd ? FormatDouble(value) : u"0";
    if (current_ == kEnd) return Status::kSuccess;
    return current_ == kZeroDivisor ? Status::kDivisionByZero : Status::kSyntaxError;
}

double ArithmeticEvaluator::EvaluateLevel(size_t level) {
    if (level == kLevels) return EvaluateOperand();
    double value = EvaluateLevel(level + 1);
    const std::u16string_view operators = kOperators.substr(level * kOperatorsPerLevel, kOperatorsPerLevel);
    while (current_ > 0 && operators.find(static_cast<char16_t>(current_)) != operators.npos) {
        const auto op = static_cast<char16_t>(current_);
        value = Apply(op, value, EvaluateLevel(level + 1));
    }
    return value;
}

double ArithmeticEvaluator::Apply(char16_t op, double left, double right) {
    switch (op) {
        case u'+':
            return left + right;
        case u'-':
            return left - right;
        case u'*':
            return left * right;
        default:
            break;
    }
    if (right == 0) {
        current_ = kZeroDivisor;
        return 0;
    }
    return op == u'/' ? left / right : Remainder(left, right);
}

double ArithmeticEvaluator::EvaluateOperand() {
    bool isNegative = false;
    for (Advance(); current_ == u'-' || current_ == u'+'; Advance())
        isNegative ^= current_ == u'-';
    double value = 0;
    if (current_ == u'(')
        value = EvaluateParentheses();
    else if (current_ == u'.' || (current_ >= u'0' && current_ <= u'9'))
        value = ReadNumber();
    else
        current_ = kSyntax;
    return isNegative ? -value : value;
}

double ArithmeticEvaluator::EvaluateParentheses() {
    if (depth_ == kMaxDepth) {
        current_ = kSyntax;
        return 0;
    }
    ++depth_;
    const double value = EvaluateLevel(0);
    --depth_;
    if (current_ == u')')
        Advance();
    else
        current_ = kSyntax;
    return value;
}

// The number whose first character is current.
double ArithmeticEvaluator::ReadNumber() {
    const std::u16string_view text(rest_.data() - 1, rest_.size() + 1);
    if (const size_t digits = CountDigits(text, IsDecimalDigit); IsPlainNumber(text, digits)) {
        rest_.remove_prefix(digits - 1);
        Advance();
        return static_cast<double>(ReadInt64(text.substr(0, digits)));
    }
    const NumberShape shape = MeasureNumber(text);
    if (shape.mantissa == 0) return 0;  // a lone point stays current, and nothing accepts it
    const std::u16string_view mantissa = text.substr(shape.prefix, shape.mantissa);
    const size_t end = shape.prefix + shape.mantissa + shape.exponent;
    const std::string bytes(text.begin() + shape.prefix, text.begin() + end);
    double value = 0;
    const auto format = shape.isHex ? std::chars_format::hex : std::chars_format::general;
    if (std::from_chars(bytes.data(), bytes.data() + bytes.size(), value, format).ec == std::errc::result_out_of_range)
        value = BeyondRange(mantissa, shape);
    rest_.remove_prefix(end - 1);
    Advance();
    return value;
}

}  // namespace kinsort
