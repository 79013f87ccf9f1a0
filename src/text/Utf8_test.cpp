#include "text/Utf8.h"

#include <gtest/gtest.h>

namespace kinsort {
namespace {

TEST(Utf8, EveryCodePointRoundTrips) {
    for (char32_t point = 0; point <= 0x10FFFF; ++point) {
        if (point >= 0xD800 && point <= 0xDFFF) continue;
        std::u16string text;
        AppendUtf16(text, point);
        ASSERT_EQ(text.size(), point < 0x10000 ? 1u : 2u);
        const std::string bytes = ToUtf8(text);
        ASSERT_EQ(FromUtf8(bytes), text) << static_cast<uint32_t>(point);
        ASSERT_EQ(DecodeUtf8(bytes).length, bytes.size());
    }
    EXPECT_EQ(ToUtf8(u"a\u00E9\u3042\U0001F600"), "a\xC3\xA9\xE3\x81\x82\xF0\x9F\x98\x80");
}

TEST(Utf8, EachByteThatIsNotTextBecomesOneReplacement) {
    struct Case {
        std::string_view bytes;
        std::u16string_view expected;
    };
    const Case bad[] = {
        {"\x80", u"\uFFFD"},                                // a continuation alone
        {"a\xC3", u"a\uFFFD"},                              // cut short
        {"\xE3\x81", u"\uFFFD\uFFFD"},                      //
        {"\xE3\x81z", u"\uFFFD\uFFFDz"},                    // what follows is kept
        {"\xC0\xAF", u"\uFFFD\uFFFD"},                      // overlong
        {"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},            //
        {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // a surrogate
        {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond U+10FFFF
        {"\xFF", u"\uFFFD"},
    };
    for (const Case& c : bad)
        EXPECT_EQ(FromUtf8(c.bytes), c.expected);
}

TEST(Utf8, LoneSurrogateBecomesReplacement) {
    constexpr char16_t high = 0xD83D;
    constexpr char16_t low = 0xDE00;
    EXPECT_EQ(ToUtf8(std::u16string{high}), "\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::u16string{low, high}), "\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::u16string{high, high, low}), "\xEF\xBF\xBD\xF0\x9F\x98\x80");
}

}  // namespace
}  // namespace kinsort
