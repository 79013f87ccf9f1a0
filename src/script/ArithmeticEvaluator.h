// Sums in a text: "1+2*3" is 7. Two levels of operators that go from the left (+ and -, then *, / and %), signs and
// parentheses, in double precision.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kinsort {

class ArithmeticEvaluator {
  public:
    enum class Status : uint8_t { kSuccess = 0, kSyntaxError = 1, kDivisionByZero = 2 };

    // More parentheses within each other are a syntax error, so that no text can use up the stack.
    static constexpr size_t kMaxDepth = 1000;

    // Reads the whole text; white space may stand anywhere between numbers and operators, and a number may have an
    // exponent ("1e3") or be hexadecimal ("0x1F"). A divisor that is missing or wrong counts as zero, and an error
    // inside of parentheses is a syntax error.
    Status Evaluate(std::u16string_view text);

    // Of the last evaluation: six digits behind the point at most, without trailing zeros ("3.5", "4", "0.333333");
    // "0" when it failed.
    const std::u16string& result() const { return result_; }

  private:
    // The character at the cursor, or one of these.
    static constexpr int32_t kEnd = 0;
    static constexpr int32_t kSyntax = -1;
    static constexpr int32_t kZeroDivisor = -2;

    double EvaluateLevel(size_t level);
    double EvaluateOperand();
    double EvaluateParentheses();
    double ReadNumber();
    double Apply(char16_t op, double left, double right);
    void Advance();

    std::u16string_view rest_;
    int32_t current_ = kEnd;
    size_t depth_ = 0;
    std::u16string result_;
};

// A value as the language writes it.
std::u16string FormatDouble(double value);

}  // namespace kinsort
