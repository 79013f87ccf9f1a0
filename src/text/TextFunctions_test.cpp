// The small text functions: ends, pieces, numbers and orders.
#include <random>

#include <gtest/gtest.h>

#include "text/AsciiCase.h"
#include "text/NaturalOrder.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using Pieces = std::vector<std::u16string>;

TEST(Trim, TakesWhiteSpaceOfEveryKindAndNothingElse) {
    EXPECT_EQ(Trim(u" \t\r\n\v\f\u3000\u00A0a b\u2003\u0085"), u"a b");
    EXPECT_EQ(Trim(u"\uFEFFa\u200B"), u"\uFEFFa\u200B");
    EXPECT_EQ(TrimStart(u"  a "), u"a ");
    EXPECT_EQ(TrimEnd(u" a  "), u" a");
    for (const char16_t* blank : {u"", u" ", u" \u3000 "}) {
        EXPECT_EQ(Trim(blank), u"");
        EXPECT_EQ(TrimStart(blank), u"");
        EXPECT_EQ(TrimEnd(blank), u"");
    }
    EXPECT_EQ(TrimStart(u"00 10", u'0'), u" 10");
    EXPECT_EQ(TrimEnd(u"10.00", u'0'), u"10.");
}

TEST(Split, KeepsOrDropsEmptyPieces) {
    EXPECT_EQ(Split(u"", u','), Pieces{u""});
    EXPECT_EQ(Split(u"a,,b,", u','), (Pieces{u"a", u"", u"b", u""}));
    EXPECT_EQ(SplitSkippingEmpty(u",a,,b,", u','), (Pieces{u"a", u"b"}));
    EXPECT_EQ(SplitSkippingEmpty(u"", u','), Pieces{});
    EXPECT_EQ(Join({u"a", u"", u"b"}, u", "), u"a, , b");
    EXPECT_EQ(Join({}, u","), u"");
}

TEST(Replace, WorksFromTheLeftOnce) {
    EXPECT_EQ(Replace(u"aaa", u"aa", u"b"), u"ba");
    EXPECT_EQ(Replace(u"a.b.", u".", u".."), u"a..b..");
    EXPECT_EQ(Replace(u"abc", u"", u"x"), u"abc");
    EXPECT_EQ(Replace(u"abc", u"abc", u""), u"");
    const std::pair<size_t, std::u16string_view> limits[] = {
        {4, u"a.a."}, {5, u"a.a."}, {6, u"a..a.."}, {7, u"a..a.."}};
    for (const auto& [mostUnits, expected] : limits) {
        std::u16string text = u"a.a.";
        EXPECT_EQ(ReplaceWithin(text, u".", u"..", mostUnits), expected.size() == 6);
        EXPECT_EQ(text, expected);
    }
}

TEST(Numbers, AreReadLikeTheCRuntimeDoes) {
    struct Case {
        std::u16string_view text;
        int64_t as32;
        int64_t as64;
        int64_t anyBase;
    };
    const Case cases[] = {
        {u"", 0, 0, 0},
        {u"abc", 0, 0, 0},
        {u"-", 0, 0, 0},
        {u"+-1", 0, 0, 0},
        {u" \t\u300012px", 12, 12, 12},
        {u"- 5", 0, 0, 0},
        {u"+7.9", 7, 7, 7},
        {u"010", 10, 10, 8},
        {u"08", 8, 8, 0},
        {u"0x1F", 0, 0, 31},
        {u"-0X1f.", 0, 0, -31},
        {u"0x", 0, 0, 0},
        {u"0xg", 0, 0, 0},
        {u"\uFF11", 0, 0, 0},
        {u"2147483647", INT32_MAX, INT32_MAX, INT32_MAX},
        {u"2147483648", INT32_MAX, 2147483648, INT32_MAX},
        {u"-2147483648", INT32_MIN, INT32_MIN, INT32_MIN},
        {u"-2147483649", INT32_MIN, -2147483649, INT32_MIN},
        {u"0x80000000", 0, 0, INT32_MAX},
        {u"-0xFFFFFFFFFFFFFFFFFFFF", 0, 0, INT32_MIN},
        {u"9223372036854775807", INT32_MAX, INT64_MAX, INT32_MAX},
        {u"9223372036854775808", INT32_MAX, INT64_MAX, INT32_MAX},
        {u"-9223372036854775808", INT32_MIN, INT64_MIN, INT32_MIN},
        {u"-99999999999999999999999", INT32_MIN, INT64_MIN, INT32_MIN},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.text));
        EXPECT_EQ(ReadInt32(c.text), c.as32);
        EXPECT_EQ(ReadInt64(c.text), c.as64);
        EXPECT_EQ(ReadInt32AnyBase(c.text), c.anyBase);
    }
    for (const int64_t value : {INT64_MIN, int64_t{-1}, int64_t{0}, INT64_MAX}) {
        EXPECT_EQ(ReadInt64(FormatInteger(value)), value);
    }
}

TEST(AsciiCase, FoldsNothingButAscii) {
    EXPECT_EQ(AsciiLower(u"AZ[\u00C9\uFF21"), u"az[\u00C9\uFF21");
    EXPECT_EQ(AsciiUpper(u"az{\u00E9"), u"AZ{\u00E9");
    EXPECT_TRUE(EqualNoCase(u"HTTP", u"http"));
    EXPECT_FALSE(EqualNoCase(u"\u00C9", u"\u00E9"));
    EXPECT_LT(CompareNoCase(u"_", u"A"), 0);  // by the lower-case letter
    EXPECT_LT(CompareNoCase(u"a", u"AB"), 0);
    EXPECT_GT(CompareNoCase(u"b", u"AB"), 0);
    EXPECT_TRUE(StartsWithNoCase(u"Http://x", u"hTTP"));
    EXPECT_FALSE(StartsWithNoCase(u"htt", u"http"));
}

TEST(NaturalOrder, OrdersTheTableBothWays) {
    // Each stands before the next.
    const Pieces ordered = {u"",
                            u"0a",
                            u"1",
                            u"02",
                            u"2",
                            u"9",
                            u"10",
                            u"99999999999999999999",
                            u"100000000000000000000",
                            u"file",
                            u"FILE007",
                            u"file07",
                            u"file7",
                            u"File7a",
                            u"file08",
                            u"file9",
                            u"file10",
                            u"file10-002",
                            u"file10-02",
                            u"file010-3",
                            u"filea"};
    for (size_t i = 0; i < ordered.size(); ++i) {
        for (size_t j = 0; j < ordered.size(); ++j) {
            const int order = CompareNatural(ordered[i], ordered[j]);
            EXPECT_EQ(order < 0, i < j) << ToUtf8(ordered[i]) << " and " << ToUtf8(ordered[j]);
            EXPECT_EQ(order > 0, i > j) << ToUtf8(ordered[i]) << " and " << ToUtf8(ordered[j]);
        }
    }
    EXPECT_EQ(CompareNatural(u"ABC10", u"abc10"), 0);
    EXPECT_LT(CompareNatural(u"00", u"0"), 0);
}

TEST(NaturalOrder, IsAnOrder) {
    std::mt19937 random(3);
    constexpr std::u16string_view kUnits = u"0019aB.";
    const auto text = [&] {
        std::u16string out;
        for (size_t n = random() % 5; n > 0; --n)
            out += kUnits[random() % kUnits.size()];
        return out;
    };
    for (int i = 0; i < 20'000; ++i) {
        const std::u16string a = text(), b = text(), c = text();
        ASSERT_EQ(CompareNatural(a, b) < 0, CompareNatural(b, a) > 0);
        if (CompareNatural(a, b) <= 0 && CompareNatural(b, c) <= 0) {
            ASSERT_LE(CompareNatural(a, c), 0) << ToUtf8(a) << "|" << ToUtf8(b) << "|" << ToUtf8(c);
        }
    }
}

}  // namespace
}  // namespace kinsort
