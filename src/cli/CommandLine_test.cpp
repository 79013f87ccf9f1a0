#include "cli/CommandLine.h"

#include <gmock/gmock.h>

namespace kinsort {
namespace {

using testing::ElementsAre;

CommandLine Parse(const std::vector<std::string>& arguments) {
    ParsedLine parsed = ParseCommandLine(arguments);
    EXPECT_EQ(parsed.error, "");
    return parsed.line;
}

TEST(CommandLine, ReadsVerbOptionsAndOperands) {
    const CommandLine line = Parse({"sort", "a", "--to=/d", "-m", "--threads", "4", "b", "--on-conflict", "keep-both"});
    EXPECT_EQ(line.verb->name, "sort");
    EXPECT_EQ(line.Value(OptionId::kTo), "/d");
    EXPECT_TRUE(line.Has(OptionId::kMove));
    EXPECT_FALSE(line.Has(OptionId::kCopy));
    EXPECT_EQ(line.Number(OptionId::kThreads, 0), 4);
    EXPECT_EQ(line.Number(OptionId::kMinScore, 1), 1);
    EXPECT_EQ(line.Value(OptionId::kOnConflict), "keep-both");
    EXPECT_THAT(line.operands, ElementsAre("a", "b"));

    const CommandLine shorts = Parse({"plan", "-qst/first", "-t/d", "-f", "-"});
    EXPECT_TRUE(shorts.Has(OptionId::kQuiet) && shorts.Has(OptionId::kScores));
    EXPECT_EQ(shorts.Value(OptionId::kTo), "/d") << "the last one counts";
    EXPECT_EQ(shorts.Value(OptionId::kFilesFrom), "-");

    const CommandLine tabs =
        Parse({"open", "/2m", "--other-tab", "[a,b]", "x", "--other-tab=c\nd", "--to", "1", "--to=2"});
    EXPECT_THAT(tabs.Values(OptionId::kOtherTab), ElementsAre("[a,b]", "c\nd"));
    EXPECT_THAT(tabs.operands, ElementsAre("/2m", "x"));
    EXPECT_EQ(tabs.Value(OptionId::kTo), "2");

    EXPECT_EQ(Parse({"undo", "18446744073709551615"}).Batch(), 18446744073709551615U);
    EXPECT_EQ(Parse({"undo"}).Batch(), 0U);
}

// File names that mean something to a parser stay what they are.
TEST(CommandLine, LeavesFileNamesAlone) {
    const CommandLine line =
        Parse({"plan", "--to", "[x,y]", "[a,b]", "undo", "a=b", "", "{}", "-", "/c", "--", "-x", "--to", "--"});
    EXPECT_EQ(line.Value(OptionId::kTo), "[x,y]");
    EXPECT_THAT(line.operands, ElementsAre("[a,b]", "undo", "a=b", "", "{}", "-", "/c", "-x", "--to", "--"));
    EXPECT_THAT(Parse({"plan", "--to", "d", "\xFF\n\"'"}).operands, ElementsAre("\xFF\n\"'"));
}

TEST(CommandLine, HelpNeedsNothingElse) {
    EXPECT_EQ(Parse({}).verb->name, "help");
    EXPECT_EQ(Parse({"--help"}).verb->name, "help");
    EXPECT_THAT(Parse({"--version"}).operands, ElementsAre("--version"));
    EXPECT_TRUE(Parse({"sort", "--help"}).Has(OptionId::kHelp));
    EXPECT_THAT(Parse({"help", "sort"}).operands, ElementsAre("sort"));
}

TEST(CommandLine, SaysWhatIsWrong) {
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"sotr"}, "there is no command 'sotr'; 'kinsort help' lists them"},
        {{"--to", "x"}, "there is no command '--to'; 'kinsort help' lists them"},
        {{"plan", "a"}, "plan: name the folder whose sub-folders the items go into: --to DIR"},
        {{"plan", "--to"}, "plan: --to needs a value: --to=DIR"},
        {{"plan", "--to", ""}, "plan: --to is empty: name a folder"},
        {{"plan", "--to=", "x"}, "plan: --to is empty: give it a value or leave it out"},
        {{"plan", "--to", "d", "--copy"}, "plan: there is no option '--copy'"},
        {{"plan", "--to", "d", "-z"}, "plan: there is no option '-z'"},
        {{"plan", "--to", "d", "--json=no"}, "plan: --json takes no value"},
        {{"plan", "--to", "d", "--min-score", "0"}, "plan: --min-score takes a number from 1, not '0'"},
        {{"plan", "--to", "d", "--min-score", "2x"}, "plan: --min-score takes a number from 1, not '2x'"},
        {{"plan", "--to", "d", "--threads", "99999999999"}, "plan: --threads takes a number from 0, not '99999999999'"},
        {{"sort", "--to", "d"}, "sort: say what to do with the items: --copy or --move"},
        {{"sort", "--to", "d", "-c", "-m"}, "sort: choose one of --copy and --move"},
        {{"sort", "--to", "d", "-c", "--on-conflict=no"},
         "sort: --on-conflict takes ask, skip, replace or keep-both, not 'no'"},
        {{"open", "--other-tab=a", "--other-tab", ""}, "open: --other-tab is empty: name a folder"},
        {{"open", "-c", "-m"}, "open: choose one of --copy and --move"},
        {{"undo", "12x"}, "undo: '12x' is not a batch number; 'kinsort history' lists them"},
        {{"undo", "0"}, "undo: '0' is not a batch number; 'kinsort history' lists them"},
        {{"undo", "1", "2"}, "undo: takes one batch number"},
        {{"history", "x"}, "history: takes no 'x'"},
        {{"recover", "--finish", "--undo"}, "recover: choose one of --finish, --undo and --leave"},
        {{"integrate", "menu", "x"}, "integrate: takes menu, kde, nemo, nautilus, caja or thunar, not 'x'"},
        {{"help", "a", "b"}, "help: takes one name"},
        {{"completion", "csh"}, "completion: takes bash, zsh or fish, not 'csh'"},
        {{"script", "run", "f", "g"}, "script: run takes FILE and nothing behind it: leave out 'g'"},
        {{"script", "run", "f", "--json"}, "script: run takes no --json"},
        {{"script", "--trace", "check", "f"}, "script: check takes no --trace"},
        {{"script", "--dry-run", "--json"}, "script: say what to do: run or check"},
        {{"settings", "get", "NLS", "--type=dword"}, "settings: get takes no --type"},
        {{"settings", "--json", "import", "f"}, "settings: import takes no --json"},
    };
    for (const auto& [arguments, message] : cases) {
        const std::string error = ParseCommandLine(arguments).error;
        EXPECT_EQ(error.substr(0, error.find('\n')), message);
    }
    EXPECT_THAT(ParseCommandLine(std::vector<std::string>{"undo", "x"}).error,
                testing::EndsWith("\nTry 'kinsort help undo'."));
}

}  // namespace
}  // namespace kinsort
