#include "cli/TableLayout.h"

#include <gtest/gtest.h>

#include "cli/CliFixture_test.h"
#include "cli/ShownText.h"

namespace kinsort {
namespace {

TEST(ShownText, NothingOfANameReachesTheTerminalRaw) {
    const std::pair<std::string, std::string> cases[] = {
        {"plain name.txt", "plain name.txt"},
        {"\x1B[31m\r\n\t\x7F", "\\x1b[31m\\x0d\\x0a\\x09\\x7f"},
        {"\u00E9\u3042\U0001F600", "\u00E9\u3042\U0001F600"},
        {"\xFF\xC3", "\\xff\\xc3"},
        {"\xC0\xAF", "\\xc0\\xaf"},                    // overlong
        {"\xED\xA0\x80", "\\xed\\xa0\\x80"},           // a surrogate
        {"\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},  // beyond U+10FFFF
        {"\xE3\x81", "\\xe3\\x81"},
        {"\xC2\x9B", "\\u009b"},  // the one-character start of a control sequence
        {"a\u202Egpj.exe\u2066", "a\\u202egpj.exe\\u2066"},
        {"\u2028", "\\u2028"},
    };
    for (const auto& [bytes, shown] : cases)
        EXPECT_EQ(ShownText(bytes), shown);
}

TEST(CutToColumns, NeverTearsACharacter) {
    const ScriptedTerminal terminal;
    struct Case {
        std::string text;
        size_t columns;
        std::string cut;
    };
    const Case cases[] = {
        {"abcdef", 6, "abcdef"},      {"abcdef", 5, "abcd…"},
        {"abcdef", 1, "…"},           {"abcdef", 0, ""},
        {"あいう", 6, "あいう"},      {"あいう", 5, "あい…"},
        {"あいう", 4, "あ…"},         {"e\u0301f", 2, "e\u0301f"},
        {"e\u0301fg", 2, "e\u0301…"}, {"", 0, ""},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(CutToColumns(terminal, one.text, one.columns), one.cut) << one.text << one.columns;
        EXPECT_LE(ColumnsOf(terminal, one.cut), one.columns);
    }
}

TEST(TableLayout, AlignsWideNamesAndColoursOnlyWhenAsked) {
    ScriptedTerminal terminal;
    const TableRow rows[] = {
        {"あ.txt", "folder", "12", "other 3"}, {"long.txt", "f", "4", ""}, {"x", "(none)", "", "", false}};
    TableLayout plain(terminal, false);
    for (const TableRow& row : rows)
        plain.Measure(row);
    EXPECT_EQ(plain.Format(rows[0]), "あ.txt   -> folder  12  other 3");
    EXPECT_EQ(plain.Format(rows[1]), "long.txt -> f        4");
    EXPECT_EQ(plain.Format(rows[2]), "x        -> (none)");
    TableLayout coloured(terminal, true);
    coloured.Measure(rows[2]);
    EXPECT_EQ(coloured.Format(rows[2]), "x\x1B[2m -> \x1B[0m\x1B[33m(none)\x1B[0m");
    EXPECT_EQ(FormatPlainRow(rows[0]), "あ.txt -> folder (score 12, then other 3)");
    EXPECT_EQ(FormatPlainRow(rows[2]), "x -> (none)");
}

TEST(TableLayout, FitsEveryWindow) {
    ScriptedTerminal terminal;
    const std::string wide(30, 'w');
    const TableRow rows[] = {{wide + "あい", "フォルダー" + wide, "12345", wide + " 7"}, {"a", "b", "1", ""}};
    for (int columns = 1; columns < 130; ++columns) {
        terminal.columns = columns;
        TableLayout layout(terminal, false);
        for (const TableRow& row : rows)
            layout.Measure(row);
        for (const TableRow& row : rows) {
            EXPECT_LE(ColumnsOf(terminal, layout.Format(row)), static_cast<size_t>(columns)) << layout.Format(row);
        }
        if (columns >= 40) {
            EXPECT_NE(layout.Format(rows[0]).find("12345"), std::string::npos) << columns;
        }
    }
}

}  // namespace
}  // namespace kinsort
