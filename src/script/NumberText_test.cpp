// What counts as a number, and sums against a second evaluator.
#include "script/NumberText.h"

#include <cmath>
#include <optional>
#include <random>

#include <gtest/gtest.h>

#include "script/ArithmeticEvaluator.h"

namespace kinsort {
namespace {

using Status = ArithmeticEvaluator::Status;

TEST(NormalizeNumber, KnowsDigitsAndLowerCaseHexadecimal) {
    struct Case {
        std::u16string_view text;
        std::u16string_view normalized;
        bool isInteger;
        bool isArithmetic;
    };
    const Case cases[] = {
        {u"", u"", true, true},
        {u"  ", u"  ", true, true},
        {u"007", u"7", true, true},
        {u" 1 2 ", u"12", true, true},
        {u"99999999999999999999", u"9223372036854775807", true, true},
        {u"0x1F", u"31", true, false},
        {u"0 x 1f", u"31", true, false},
        {u"0xFFFFFFFF", u"2147483647", true, false},
        {u"0X1F", u"0X1F", false, false},
        {u"0x", u"0x", false, false},
        {u"0x1G", u"0x1G", false, false},
        {u"-7", u"-7", false, true},
        {u"+7", u"+7", false, true},
        {u"1.50", u"1.50", false, true},
        {u"2024-01-05", u"2024-01-05", false, true},
        {u"(1 +2) *3/4%5", u"(1 +2) *3/4%5", false, true},
        {u"a 1", u"a 1", false, false},
        {u"1\t2", u"1\t2", false, false},
        {u"\uFF11", u"\uFF11", false, false},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(NormalizeNumber(row.text), row.normalized) << testing::PrintToString(row.text);
        EXPECT_EQ(IsIntegerText(row.text), row.isInteger) << testing::PrintToString(row.text);
        EXPECT_EQ(IsArithmeticText(row.text), row.isArithmetic) << testing::PrintToString(row.text);
    }
}

TEST(ReplaceHexLiterals, WorksFromTheEndAnywhere) {
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {u"", u""},
        {u"0x10", u"16"},
        {u"ab0x1F", u"ab31"},
        {u"0x1F,0xag 00x2", u"31,10g 02"},
        {u"0x 0xg 0X1 x10", u"0x 0xg 0X1 x10"},
        {u"0xFFFFFFFFF+1", u"2147483647+1"},
        {u"0x0x1F", u"49"},  // the last first: 0x31 is left
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ReplaceHexLiterals(text), expected) << testing::PrintToString(text);
}

TEST(ArithmeticEvaluator, ComputesAndWritesNumbers) {
    const std::pair<std::u16string_view, std::u16string_view> cases[] = {
        {u"7/2", u"3.5"},
        {u"1/3", u"0.333333"},
        {u"100", u"100"},
        {u"0.0000004", u"0"},
        {u"-7%4", u"-3"},
        {u"5.5%2", u"1.5"},
        {u"--3", u"3"},
        {u"+-+3*-2", u"6"},
        {u" ( 1\t+\u30002 ) ", u"3"},
        {u".5+5.", u"5.5"},
        {u"1e3+0x1F", u"1031"},
        {u"1E-2*0x.8p1", u"0.01"},
        {u"1e400", u"inf"},
        {u"1e-400", u"0"},
        {u"0x1p5000", u"inf"},
        {u"((((((((((7))))))))))", u"7"},
    };
    ArithmeticEvaluator evaluator;
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(evaluator.Evaluate(text), Status::kSuccess) << testing::PrintToString(text);
        EXPECT_EQ(evaluator.result(), expected) << testing::PrintToString(text);
    }
}

TEST(ArithmeticEvaluator, TellsSyntaxFromZero) {
    const std::u16string deep(ArithmeticEvaluator::kMaxDepth + 1, u'(');
    const std::u16string deepest(2'000'000, u'(');
    const std::pair<std::u16string_view, Status> cases[] = {
        {u"", Status::kSyntaxError},
        {u" ", Status::kSyntaxError},
        {u".", Status::kSyntaxError},
        {u"1.2.3", Status::kSyntaxError},
        {u"1 2", Status::kSyntaxError},
        {u"(1", Status::kSyntaxError},
        {u"1)", Status::kSyntaxError},
        {u"()", Status::kSyntaxError},
        {u"1+", Status::kSyntaxError},
        {u"*1", Status::kSyntaxError},
        {u"1e", Status::kSyntaxError},
        {u"abc", Status::kSyntaxError},
        {std::u16string_view(u"1\0+1", 4), Status::kSyntaxError},
        {u"(1/0)", Status::kSyntaxError},  // the parenthesis does not close behind the error
        {u"1/0", Status::kDivisionByZero},
        {u"1%0+5", Status::kDivisionByZero},
        {u"1/(2-2)", Status::kDivisionByZero},
        {u"1/", Status::kDivisionByZero},  // nothing counts as zero
        {deep, Status::kSyntaxError},
        {deepest, Status::kSyntaxError},
    };
    ArithmeticEvaluator evaluator;
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(evaluator.Evaluate(text), expected) << testing::PrintToString(text.substr(0, 20));
        EXPECT_EQ(evaluator.result(), u"0");
    }
    const std::u16string signs(2'000'000, u'-');
    EXPECT_EQ(evaluator.Evaluate(signs + u"5"), Status::kSuccess);
    EXPECT_EQ(evaluator.result(), u"5");
    const std::u16string nested(ArithmeticEvaluator::kMaxDepth, u'(');
    EXPECT_EQ(evaluator.Evaluate(nested + u"8" + std::u16string(nested.size(), u')')), Status::kSuccess);
    EXPECT_EQ(evaluator.result(), u"8");
}

// A sum that is built as a text and computed beside it, without ever being read: two stacks of operands would be one
// more evaluator with the same mistakes.
struct Sum {
    std::u16string text;
    double value = 0;
    int level = 2;  // 0: a + or - on top, 1: a product, 2: an operand
};

std::optional<Sum> Combine(Sum left, Sum right, char16_t op) {
    const int level = op == u'+' || op == u'-' ? 0 : 1;
    const auto wrap = [](Sum sum, bool isNeeded) { return isNeeded ? u"(" + sum.text + u" )" : sum.text; };
    Sum out{wrap(left, left.level < level) + op + wrap(right, right.level <= level), 0, level};
    const double a = left.value;
    const double b = right.value;
    if (level == 1 && op != u'*' && b == 0) return std::nullopt;
    switch (op) {
        case u'+':
            out.value = a + b;
            break;
        case u'-':
            out.value = a - b;
            break;
        case u'*':
            out.value = a * b;
            break;
        case u'/':
            out.value = a / b;
            break;
        default:
            out.value = std::fmod(a, b);
    }
    return out;
}

TEST(ArithmeticEvaluator, EqualsTheValueThatAnExpressionWasBuiltFor) {
    std::mt19937 random(5);
    ArithmeticEvaluator evaluator;
    for (int round = 0; round < 20'000; ++round) {
        std::vector<Sum> sums;
        for (int i = 0; i < 6; ++i) {
            const int number = static_cast<int>(random() % 100);
            Sum operand{FormatDouble(number / 4.0), number / 4.0, 2};
            if (random() % 4 == 0) operand = {u"- " + operand.text, -operand.value, 2};
            sums.push_back(operand);
        }
        while (sums.size() > 1) {
            const size_t at = random() % (sums.size() - 1);
            std::optional<Sum> both = Combine(sums[at], sums[at + 1], u"+-*/%"[random() % 5]);
            sums.erase(sums.begin() + at);
            if (both) sums[at] = *both;
        }
        ASSERT_EQ(evaluator.Evaluate(sums[0].text), Status::kSuccess) << testing::PrintToString(sums[0].text);
        ASSERT_EQ(evaluator.result(), FormatDouble(sums[0].value)) << testing::PrintToString(sums[0].text);
    }
}

}  // namespace
}  // namespace kinsort
