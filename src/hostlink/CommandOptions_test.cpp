#include "hostlink/CommandOptions.h"

#include <gtest/gtest.h>

namespace kinsort {
namespace {

TEST(CommandOptions, NewTableHoldsEveryDefault) {
    const OptionTable table = CreateDefaultOptions();
    std::u16string all;
    for (const auto& [name, text] : table.entries())
        all += name + u"=" + text + u" ";
    EXPECT_EQ(all,
              u"commandlineoption= bootdir= bootmode=0 showwindow=1 timeout=-1 runwait=0 sendinfomode=0 "
              u"multicommandmode=0 shiftsilentmode=1 filter= exitloopcount=5 checkgrammar=0 openmode=0 runas=0 ");

    CommandOptions record;
    EXPECT_EQ(record.timeoutMs, 0) << "a new record knows no defaults";
    ReadOptions(table, record);
    EXPECT_EQ(record.timeoutMs, -1);
    EXPECT_TRUE(record.shiftSilentMode);
    EXPECT_EQ(record.checkGrammar, u"0");
}

TEST(CommandOptions, TextsAreConvertedFieldByField) {
    const struct {
        std::u16string_view name, text;
        int64_t (*value)(const CommandOptions&);
        int64_t expected;
    } cases[] = {
        {u"timeout", u"2000", [](const CommandOptions& o) -> int64_t { return o.timeoutMs; }, 2000},
        {u"timeout", u"99999999999", [](const CommandOptions& o) -> int64_t { return o.timeoutMs; }, 2147483647},
        {u"bootmode", u" 3x", [](const CommandOptions& o) -> int64_t { return o.bootMode; }, 3},
        {u"runwait", u"none", [](const CommandOptions& o) -> int64_t { return o.runWaitMs; }, 0},
        {u"showwindow", u"65537", [](const CommandOptions& o) -> int64_t { return o.showWindow; }, 1},
        {u"showwindow", u"-1", [](const CommandOptions& o) -> int64_t { return o.showWindow; }, 65535},
        {u"multicommandmode", u"2", [](const CommandOptions& o) -> int64_t { return o.multiCommandMode; }, 0},
        {u"multicommandmode", u"1", [](const CommandOptions& o) -> int64_t { return o.multiCommandMode; }, 1},
        {u"shiftsilentmode", u"", [](const CommandOptions& o) -> int64_t { return o.shiftSilentMode; }, 0},
        {u"runas", u"2", [](const CommandOptions& o) -> int64_t { return o.runAs; }, 1},
        {u"runas", u"yes", [](const CommandOptions& o) -> int64_t { return o.runAs; }, 0},
    };
    for (const auto& [name, text, value, expected] : cases) {
        OptionTable table = CreateDefaultOptions();
        table.SetOption(name, text);
        CommandOptions all, one;
        ReadOptions(table, all);
        EXPECT_TRUE(ReadOption(table, name, one));
        EXPECT_EQ(value(all), expected) << std::string(name.begin(), name.end());
        EXPECT_EQ(value(one), expected) << std::string(name.begin(), name.end());
        EXPECT_EQ(one.exitLoopCount, 0) << "only the named option is read";
    }
}

TEST(CommandOptions, NamesAreExactAndMayBeMissing) {
    OptionTable table = CreateDefaultOptions();
    table.SetOption(u"Timeout", u"7");
    CommandOptions record;
    ReadOptions(table, record);
    EXPECT_EQ(record.timeoutMs, -1);
    EXPECT_FALSE(ReadOption(table, u"Timeout", record));

    record.filter = u"txt";
    ReadOptions(OptionTable(), record);
    EXPECT_EQ(record.filter, u"txt") << "absent: stays as it was";
    EXPECT_EQ(record.timeoutMs, -1);
}

}  // namespace
}  // namespace kinsort
