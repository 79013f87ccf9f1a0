#include "text/Wildcard.h"

#include <string>

#include <gtest/gtest.h>

namespace kinsort {
namespace {

// The definition, word for word; exponential.
bool SlowMatch(std::u16string_view text, std::u16string_view pattern) {
    if (pattern.empty()) return text.empty();
    if (pattern[0] == u'*') {
        return SlowMatch(text, pattern.substr(1)) || (!text.empty() && SlowMatch(text.substr(1), pattern));
    }
    return !text.empty() && (pattern[0] == u'?' || pattern[0] == text[0]) &&
           SlowMatch(text.substr(1), pattern.substr(1));
}

// Every text over `alphabet` up to `length`.
std::vector<std::u16string> AllTexts(std::u16string_view alphabet, size_t length) {
    std::vector<std::u16string> all = {u""};
    for (size_t i = 0; i < all.size(); ++i) {
        if (all[i].size() == length) break;
        for (const char16_t unit : alphabet)
            all.push_back(all[i] + unit);
    }
    return all;
}

TEST(Wildcard, EqualsTheDefinition) {
    const std::vector<std::u16string> texts = AllTexts(u"aBc", 5);
    for (const std::u16string& pattern : AllTexts(u"aB*?", 5)) {
        for (const std::u16string& text : texts) {
            ASSERT_EQ(WildcardMatch(text, pattern), SlowMatch(text, pattern));
        }
    }
}

TEST(Wildcard, ManyStarsStayFast) {
    const std::u16string text(3000, u'a');
    std::u16string pattern;
    for (int i = 0; i < 200; ++i)
        pattern += u"a*";
    EXPECT_TRUE(WildcardMatch(text, pattern));
    EXPECT_FALSE(WildcardMatch(text, pattern + u"b"));
}

TEST(Wildcard, CaseCountsOnlyWhereItIsAsked) {
    EXPECT_FALSE(WildcardMatch(u"A.TXT", u"*.txt"));
    EXPECT_TRUE(WildcardMatchNoCase(u"A.TXT", u"*.txt"));
    EXPECT_FALSE(WildcardMatchNoCase(u"\u00C9", u"\u00E9"));
    EXPECT_TRUE(NameMatchesPattern(u"README", u"*.*"));
    EXPECT_FALSE(NameMatchesPattern(u"README", u"R*.*"));
}

}  // namespace
}  // namespace kinsort
