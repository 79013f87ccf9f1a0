// Names and declarations, and expansion against its obvious version.
#include "script/VariableTable.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include "text/Split.h"

namespace kinsort {
namespace {

using Texts = std::vector<std::u16string>;

Texts Names(const VariableTable& table) {
    Texts names;
    for (const VariableTable::Entry& entry : table.entries())
        names.push_back(entry.name);
    return names;
}

// What expansion means, word for word: every entry in every pass, ten passes.
std::u16string ExpandSlowly(const VariableTable& table, std::u16string text) {
    for (int pass = 0; pass < 10; ++pass) {
        const std::u16string before = text;
        bool replaced = false;
        for (const VariableTable::Entry& entry : table.entries()) {
            if (entry.name == entry.value || text.find(entry.name) == text.npos) continue;
            text = Replace(text, entry.name, entry.value);
            replaced = true;
        }
        if (!replaced) break;
    }
    return text;
}

TEST(SplitIndexedName, TakesTheBracketsApartOrLeavesTheTextWhole) {
    struct Case {
        std::u16string_view text;
        std::u16string_view base;
        std::u16string_view index;
    };
    const Case cases[] = {
        {u"", u"", u""},
        {u"a", u"a", u""},
        {u"a[3]", u"a", u"3"},
        {u" a [ key 1 ]", u"a", u"key 1"},
        {u"a[b[1]]", u"a", u"b[1"},
        {u"[x]", u"", u"x"},
        {u"a[]", u"a", u""},
        {u" a[3", u" a[3", u""},
        {u"a[3] ", u"a[3] ", u""},
        {u"a[3]b", u"a[3]b", u""},
        {u"a]3[", u"a]3[", u""},
    };
    for (const Case& row : cases) {
        const IndexedName split = SplitIndexedName(row.text);
        EXPECT_EQ(split.base, row.base) << testing::PrintToString(row.text);
        EXPECT_EQ(split.index, row.index) << testing::PrintToString(row.text);
    }
}

TEST(DeclareVariable, MakesNamesAndElementsInOrder) {
    struct Case {
        std::u16string_view text;
        int32_t created;
        Texts names;
    };
    const Case cases[] = {
        {u"", 0, {}},
        {u" \t", 0, {}},
        {u" x ", 1, {u"x"}},
        {u"a[3]", 3, {u"a[0]", u"a[1]", u"a[2]"}},
        {u"a[0]", 1, {u"a[0]"}},
        {u"a[ key ]", 1, {u"a[key]"}},
        {u"a[-1]", 0, {}},
        {u"a[2x]", 2, {u"a[0]", u"a[1]"}},
        {u"a[]", 1, {u"a[]"}},
        {u"a[1", 1, {u"a[1"}},
    };
    for (const Case& row : cases) {
        VariableTable table;
        const Declaration declared = DeclareVariable(table, row.text);
        EXPECT_EQ(declared.created, row.created) << testing::PrintToString(row.text);
        EXPECT_EQ(declared.message, u"") << testing::PrintToString(row.text);
        EXPECT_EQ(Names(table), row.names) << testing::PrintToString(row.text);
    }
}

TEST(DeclareVariable, SaysWhyANameIsRefused) {
    VariableTable table;
    for (const char16_t* name : {u"cnt", u"X", u"a[1]", u"漢字"})
        ASSERT_EQ(DeclareVariable(table, name).created, 1);
    struct Case {
        std::u16string_view text;
        std::u16string_view message;
    };
    const Case cases[] = {
        {u"If", u"This word is reserved and can not be used as a variable.\nIf"},
        {u"STOP", u"This word is reserved and can not be used as a variable.\nSTOP"},
        {u"cnt", u"It has already been declared.\ncnt"},
        {u"a[0]", u"It has already been declared.\na[0]"},
        {u"cntA", u"It is contained in the variable declared.\ncnt/cntA"},
        {u"nt", u"It is contained in the variable declared.\nnt/cnt"},
        {u"MaX", u"It is contained in the variable declared.\nX/MaX"},
        {u"字", u"It is contained in the variable declared.\n字/漢字"},
        {u"my a[0] too", u"It is contained in the variable declared.\na[0]/my a[0] too"},
        {u"b[2000000000]", u"Too many variables (more than 1000000).\nb[2000000000]"},
    };
    for (const Case& row : cases) {
        const Declaration declared = DeclareVariable(table, row.text);
        EXPECT_EQ(declared.created, 0) << testing::PrintToString(row.text);
        EXPECT_EQ(declared.message, row.message) << testing::PrintToString(row.text);
    }
    EXPECT_EQ(DeclareVariable(table, u"x").created, 1);  // case counts
    EXPECT_EQ(DeclareVariable(table, u"count").created, 1);
    // Of two names that overlap, the one declared first is named; elements made before the refused one stay.
    EXPECT_EQ(CheckVariableName(table, u"xXx"), u"It is contained in the variable declared.\nX/xXx");
    ASSERT_EQ(DeclareVariable(table, u"d[1").created, 1);
    EXPECT_EQ(DeclareVariable(table, u"d[3]").message, u"It is contained in the variable declared.\nd[1/d[1]");
    EXPECT_NE(table.Find(u"d[0]"), nullptr);
    EXPECT_EQ(table.Find(u"d[2]"), nullptr);
}

// A table that was asked often finds the same names as one that looks at each.
TEST(VariableTable, FindsTheFirstOverlapOfManyNames) {
    std::mt19937 random(7);
    const auto pick = [&random](size_t count) { return random() % count; };
    const auto makeName = [&pick] {
        std::u16string name;
        for (size_t size = 1 + pick(9); name.size() < size;)
            name += u"abc\u8868"[pick(4)];
        return name;
    };
    VariableTable table;
    while (table.entries().size() < 3000)
        table.Create(u"(" + makeName() + makeName() + u")");
    for (int i = 0; i < 4000; ++i) {
        if (i % 50 == 0) table.Create(u"[" + makeName() + makeName() + makeName() + u"]");
        const std::u16string name = i % 3 == 0 ? u"x" + table.entries()[pick(3000)].name : makeName();
        const auto& entries = table.entries();
        const auto first = std::find_if(entries.begin(), entries.end(), [&name](const VariableTable::Entry& entry) {
            return entry.name.find(name) != name.npos || name.find(entry.name) != name.npos;
        });
        ASSERT_EQ(table.FindOverlap(name), first == entries.end() ? nullptr : &*first) << testing::PrintToString(name);
    }
}

TEST(VariableTable, KeepsAssignedValues) {
    VariableTable table;
    EXPECT_TRUE(table.Create(u"x", u"1"));
    EXPECT_FALSE(table.Create(u"x", u"2"));
    EXPECT_FALSE(table.Create(u""));
    EXPECT_FALSE(table.Assign(u"X", u"3"));
    EXPECT_EQ(*table.Find(u"x"), u"1");
    EXPECT_TRUE(table.Assign(u"x", u"4"));
    EXPECT_EQ(*table.Find(u"x"), u"4");
    EXPECT_EQ(table.Find(u""), nullptr);
}

TEST(ExpandVariables, FollowsNamesThatValuesMake) {
    VariableTable table;
    const auto expand = [&table](std::u16string text) {
        EXPECT_TRUE(ExpandVariables(table, text));
        return text;
    };
    EXPECT_EQ(expand(u"x"), u"x");
    for (const char16_t* name : {u"x", u"i", u"a[2]", u"self", u"same"})
        table.Create(name);
    EXPECT_EQ(expand(u"fix"), u"f");  // an empty value, and inside of words too
    table.Assign(u"x", u"i");
    table.Assign(u"i", u"2");
    table.Assign(u"a[2]", u"two");
    table.Assign(u"self", u"self!");
    table.Assign(u"same", u"same");
    EXPECT_EQ(expand(u"x"), u"2");
    EXPECT_EQ(expand(u"a[i] a[x]"), u"two two");
    EXPECT_EQ(expand(u"same"), u"same");
    EXPECT_EQ(expand(u"self"), u"self!!!!!!!!!!");
    EXPECT_EQ(expand(u""), u"");
}

TEST(ExpandVariables, EqualsTheObviousVersion) {
    std::mt19937 random(7);
    // Few different characters, so that names overlap, values hold names and replacing makes new ones. In some rounds
    // most values are numbers, which stand in no name.
    const auto make = [&random](size_t most, size_t variety, std::u16string_view units = u"abc[]\u3042\u0142\u0141") {
        std::u16string text;
        for (size_t size = random() % (most + 1); text.size() < size;)
            text += units[random() % variety];
        return text;
    };
    int expanded = 0;
    for (int round = 0; round < 5'000; ++round) {
        VariableTable table;
        const size_t count = random() % 12;
        for (size_t i = 0; i < count; ++i)
            table.Create(make(4, 8), round % 3 == 0 ? make(3, 5, u"1234a") : make(round % 4 == 0 ? 1 : 3, 8));
        for (int i = 0; i < 3 && !table.empty(); ++i)
            table.Assign(table.entries()[0].name, make(2, 3));
        const std::u16string text = make(12, 8);
        std::u16string fast = text;
        ASSERT_TRUE(ExpandVariables(table, fast));
        ASSERT_EQ(fast, ExpandSlowly(table, text)) << round << " " << testing::PrintToString(text);
        expanded += fast != text ? 1 : 0;
    }
    EXPECT_GT(expanded, 1'500);
}

TEST(ExpandVariables, RefusesWhatWouldNotEnd) {
    VariableTable table;
    table.Create(u"x", std::u16string(100, u'x'));
    std::u16string text = u"<x>";
    EXPECT_FALSE(ExpandVariables(table, text));
    text = u"<x>";
    table.Assign(u"x", u"xx");  // ten doublings are no harm
    EXPECT_TRUE(ExpandVariables(table, text));
    EXPECT_EQ(text.size(), 1024u + 2);
}

TEST(VariableTable, HoldsAHundredThousandElements) {
    VariableTable table;
    EXPECT_EQ(DeclareVariable(table, u"item[100000]").created, 100'000);
    EXPECT_EQ(DeclareVariable(table, u"size[100000]").created, 100'000);
    table.Assign(u"item[99999]", u"last");
    std::u16string text = u"item[99999] item[100000]";
    EXPECT_TRUE(ExpandVariables(table, text));
    EXPECT_EQ(text, u"last item[100000]");
}

}  // namespace
}  // namespace kinsort
