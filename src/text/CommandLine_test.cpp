#include "text/CommandLine.h"

#include <random>

#include <gtest/gtest.h>

#include "text/Utf8.h"

namespace kinsort {
namespace {

using Arguments = std::vector<std::u16string>;

TEST(CommandLine, ArgumentsAreSplit) {
    struct Case {
        std::u16string_view text;
        Arguments expected;
    };
    const Case cases[] = {
        {u"", {}},
        {u" \t ", {}},
        {u"a b\tc", {u"a", u"b", u"c"}},
        {u"\"a b\" c", {u"a b", u"c"}},
        {u"\"\" a", {u"", u"a"}},
        {u"a\"b c\"d", {u"ab cd"}},
        {u"C:\\a\\ b\\\\c", {u"C:\\a\\", u"b\\\\c"}},
        {u"\"C:\\a b\\\\\" c", {u"C:\\a b\\", u"c"}},
        {u"a\\\"b c", {u"a\"b", u"c"}},
        {u"a\\\\\\\"b", {u"a\\\"b"}},
        {u"a\\\\\"b c\"", {u"a\\b c"}},
        {u"\"a\"\"b c\"", {u"a\"b c"}},
        {u"\"\"\"", {u"\""}},
        {u"\"open end ", {u"open end "}},
        {u"a\nb", {u"a\nb"}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(SplitArguments(c.text), c.expected) << ToUtf8(c.text);
}

TEST(CommandLine, TheProgramHasItsOwnRules) {
    EXPECT_EQ(SplitCommandLine(u""), Arguments{u""});
    EXPECT_EQ(SplitCommandLine(u"\"C:\\a b\\\" \"c\\\"\""), (Arguments{u"C:\\a b\\", u"c\""}));
    EXPECT_EQ(SplitCommandLine(u"a\\\"b c\"\\d e"), (Arguments{u"a\\b c\\d", u"e"}));
    EXPECT_EQ(SplitCommandLine(u" a"), (Arguments{u"", u"a"}));
}

TEST(CommandLine, JoiningIsTheInverse) {
    EXPECT_EQ(JoinArguments({u"a", u"b c", u"", u"C:\\d e\\", u"f\"g", u"h\\"}),
              u"a \"b c\" \"\" \"C:\\d e\\\\\" \"f\\\"g\" h\\");
    std::mt19937 random(11);
    constexpr std::u16string_view kUnits = u"\"\\ \ta\u3042";
    for (int i = 0; i < 50'000; ++i) {
        Arguments arguments(random() % 4);
        for (std::u16string& argument : arguments) {
            for (size_t n = random() % 7; n > 0; --n)
                argument += kUnits[random() % kUnits.size()];
        }
        ASSERT_EQ(SplitArguments(JoinArguments(arguments)), arguments) << ToUtf8(JoinArguments(arguments));
    }
}

}  // namespace
}  // namespace kinsort
