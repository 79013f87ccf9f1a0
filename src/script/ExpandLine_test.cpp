// Placeholders: each token, the order of the steps, and the two shorter forms.
#include "script/ExpandLine.h"

#include <cstdlib>
#include <ctime>

#include <gtest/gtest.h>

#include "script/ExpansionWorld_test.h"
#include "text/Split.h"

namespace kinsort {
namespace {

class ExpandLineTest : public testing::Test, protected ExpansionWorld {
  protected:
    ExpandLineTest() {
        setenv("TZ", "UTC", 1);
        tzset();
        clock.SetWall(int64_t{1736068023} * 1'000'000'000);  // 2025-01-05 09:07:03, a Sunday
    }

    std::u16string Expand(std::u16string_view text, Trimming trimming = Trimming::kTrim) {
        return ExpandLine(text, scope, trimming).value_or(u"(nothing)");
    }
    struct Case {
        std::u16string_view text;
        std::u16string_view expected;
    };
    template <size_t kCount>
    void Check(const Case (&cases)[kCount]) {
        for (const Case& row : cases)
            EXPECT_EQ(Expand(row.text), row.expected) << testing::PrintToString(row.text);
    }
};

TEST_F(ExpandLineTest, FillsInDateAndTime) {
    Check({
        {u"?Date?_?Time?", u"2025-01-05_09-07-03"},
        {u"?Year?/?Month?/?Day? ?Hour?:?Minute?:?Second?", u"2025/01/05 09:07:03"},
        {u"?Week? ?WEEK?", u"Sun Sunday"},
        {u"?ShellTime?", u"Sun Jan  5 09:07:03 2025"},
        {u"?Date??Date?", u"2025-01-052025-01-05"},
        {u"?date? ?DATE? ?Date", u"?date? ?DATE? ?Date"},
    });
}

TEST_F(ExpandLineTest, FillsInFolders) {
    constexpr std::u16string_view kAll = u"?NowDir?|?nowdir?|?Drive?|?Dir?|?TargetDir?|?TargetDrive?";
    const struct {
        std::u16string_view current, other, expected;
    } cases[] = {
        {u"C:\\Work\\", u"D:\\Other", u"\"C:\\Work\"|C:\\Work|D:|\\||"},
        {u"C:\\Work", u"D:\\Other\\", u"\"C:\\Work\"|C:\\Work|D:|\\Other\\||"},
        {u"C:\\", u"", u"\"C:\\\"|C:\\||||"},
        {u"C:/", u"\\\\s\\h\\a", u"\"C:/\"|C:/||\\\\s\\h\\||"},
        {u"C:\\a/", u"D:", u"\"C:\\a\"|C:\\a||||"},
        {u"", u"D:\\Other\\", u"|||||"},
        {u"C:\\a?Dir?b", u"D:\\x\\", u"\"C:\\ab\"|C:\\ab|D:|\\x\\||"},
    };
    for (const auto& row : cases) {
        scope.currentFolder = row.current;
        scope.otherFolder = row.other;
        EXPECT_EQ(Expand(kAll), row.expected) << testing::PrintToString(row.current);
        EXPECT_EQ(ExpandPathText(kAll, scope), row.expected);
    }
}

TEST_F(ExpandLineTest, FillsInTheCurrentItemInsideOfALoopOnly) {
    constexpr std::u16string_view kAll =
        u"?SelFile?|?selfile?|?FileName?|?Name?|?Ext?|?filename?|?name?|?ext?|?selpath?|?SelPath?|?SelParent?";
    EXPECT_EQ(Expand(kAll), kAll);
    const std::u16string longItem = u"C:\\" + std::u16string(300, u'n') + u".txt";
    const struct {
        std::u16string item, expected;
    } cases[] = {
        {u"C:\\Data\\report.final.txt",
         u"\"C:\\Data\\report.final.txt\"|C:\\Data\\report.final.txt|report.final.txt|report.final|.txt|"
         u"\"report.final.txt\"|\"report.final\"|\".txt\"|\"C:\\Data\\\"|C:\\Data\\|C:\\Data"},
        {u"D:\\x", u"\"D:\\x\"|D:\\x|x|x||\"x\"|\"x\"|\"\"|\"D:\\\"|D:\\|D:\\"},
        {u"x.y", u"\"x.y\"|x.y|x.y|x|.y|\"x.y\"|\"x\"|\".y\"|\"\"||"},
        // A name that holds a token: filled in while its turn is still to come, else emptied at the end.
        {u"D:\\?Ext?.q", u"\"D:\\.q.q\"|D:\\.q.q|.q.q|.q|.q|\".q\"|\"\"|\".q\"|\"D:\\\"|D:\\|D:\\"},
    };
    for (const auto& row : cases) {
        items = {u"other", row.item};
        scope.forIndex = 1;
        EXPECT_EQ(Expand(kAll), row.expected) << testing::PrintToString(row.item);
        EXPECT_EQ(ExpandPathText(kAll, scope), kAll);
    }
    items = {longItem};
    scope.forIndex = 0;
    EXPECT_EQ(Expand(u"?selfile?"), longItem);
    system.longPath = longItem;
    system.shortPath = u"C:\\NNNNNN~1.TXT";
    EXPECT_EQ(Expand(u"?selfile?|?SelPath?"), u"C:\\NNNNNN~1.TXT|C:\\");
}

TEST_F(ExpandLineTest, GoesFromVariablesOnAndNeverBack) {
    environment.variables = {{u"WHERE", u"C:\\here"}, {u"TOKEN", u"?Year?"}, {u"VAR", u"vv"}};
    Set(u"vv", u"%WHERE%\\?Year? ");
    Set(u"Dat", u"X");
    Check({
        {u" vv ", u"C:\\here\\2025"},
        {u"?Date?", u"?Xe?"},          // a name is a name, inside of tokens too
        {u"%TOKEN%%VAR%", u"2025vv"},  // but what the environment gives names no variable
        {u"%CMD_Dir%x.txt", u"C:\\V\\command\\Default\\x.txt"},
        {u"%cmd_dir%x", u"%cmd_dir%x"},
        {u"%Focus_Item% ?any? ?anyFile?", u"%Focus_Item% ?any? ?anyFile?"},
        {u"100 % ?", u"100 % ?"},
        {u"", u""},
        {u" \u3000 ", u""},
    });
    EXPECT_EQ(Expand(u" vv ", Trimming::kKeep), u" C:\\here\\2025  ");
    EXPECT_EQ(ExpandPathText(u" vv %WHERE% ?Day? ", scope), u" vv C:\\here 05 ");
    Set(u"boom", Replace(std::u16string(500, u'.'), u".", u"boom"));
    EXPECT_EQ(ExpandLine(u"boom", scope, Trimming::kTrim), std::nullopt);
}

TEST(RunTokens, AreReplacedEverywhere) {
    const RunTokens tokens(u"C:\\s/menu\\sort.txt", 12);
    EXPECT_EQ(tokens.Replace(u"?ScriptPath?|?ScriptName?|?SelectedCount?|?SelectedCount?|?scriptname?"),
              u"C:\\s/menu\\|sort.txt|12|12|?scriptname?");
    EXPECT_EQ(RunTokens(u"bare", 0).Replace(u"?ScriptPath?|?ScriptName?"), u"bare|bare");
}

}  // namespace
}  // namespace kinsort
