#include "cli/HelpTexts.h"

#include <set>
#include <sstream>

#include <gmock/gmock.h>

#include "cli/CliFixture_test.h"

namespace kinsort {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(HelpTexts, FitEightyColumnsAndShowEveryOption) {
    std::vector<std::string> texts = {ProgramHelp()};
    for (const VerbSpec& verb : Verbs()) {
        texts.push_back(VerbHelp(verb));
        for (const OptionId id : verb.options) {
            EXPECT_THAT(texts.back(), HasSubstr("--" + std::string(SpecOf(id).name)));
        }
        EXPECT_THAT(ProgramHelp(), verb.isHidden ? testing::Matcher<std::string>(Not(HasSubstr(std::string(verb.name))))
                                                 : HasSubstr("  " + std::string(verb.name) + " "));
    }
    for (const std::string& text : texts) {
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), 80U) << line;
    }
}

TEST(HelpTexts, TablesHoldNoTwoMeanings) {
    std::set<std::string_view> names;
    std::set<char> letters;
    for (const OptionSpec& option : kOptions) {
        EXPECT_TRUE(names.insert(option.name).second) << option.name;
        EXPECT_TRUE(option.letter == 0 || letters.insert(option.letter).second) << option.name;
        EXPECT_TRUE(option.help.ends_with('.')) << option.name;
    }
    for (const VerbSpec& verb : Verbs()) {
        EXPECT_EQ(FindVerb(verb.name), &verb);
        EXPECT_TRUE(!verb.summary.ends_with('.')) << verb.name;
    }
    EXPECT_EQ(FindVerb("pla"), nullptr);
}

TEST(WrapText, BreaksAtBlanksOnly) {
    EXPECT_EQ(WrapText("aa bb cc", 2, 7), "  aa bb\n  cc\n");
    EXPECT_EQ(WrapText("a-very-long-word b", 0, 5), "a-very-long-word\nb\n");
    EXPECT_EQ(WrapText("one\n\ntwo", 1, 20), " one\n\n two\n");
    EXPECT_EQ(WrapText("", 4, 20), "");
}

TEST(CompletionScript, KnowsItsShells) {
    for (const char* const shell : {"bash", "zsh", "fish"}) {
        const std::string script = CompletionScript(shell);
        for (const VerbSpec& verb : Verbs()) {
            if (verb.isHidden) continue;
            EXPECT_THAT(script, HasSubstr(std::string(verb.name)));
        }
        for (const OptionSpec& option : kOptions)
            EXPECT_THAT(script, HasSubstr(std::string(option.name)));
    }
    EXPECT_EQ(CompletionScript("csh"), "");
}

// The whole program, as far as it goes without files.
TEST(RunKinsort, PrintsHelpAndReportsABrokenOutput) {
    struct Case {
        std::vector<std::string> arguments;
        int code;
        const char* output;
        const char* messages;
    };
    const Case cases[] = {
        {{}, 0, "Usage:", ""},
        {{"help", "undo"}, 0, "Usage: kinsort undo [OPTION...] [ID]", ""},
        {{"recover", "-h"}, 0, "Usage: kinsort recover", ""},
        {{"help", "a\nb"}, 2, "", "kinsort: there is no command 'a\\x0ab'; 'kinsort help' lists them\n"},
        {{"\x1B[1m"}, 2, "", "kinsort: there is no command '\\x1b[1m'; 'kinsort help' lists them\n"},
        {{"completion"}, 2, "", "kinsort: completion: name a shell: bash, zsh or fish\n"},
        {{"completion", "fish"}, 0, "complete -c kinsort", ""},
        {{"undo"}, 3, "", "kinsort: there is no place for the undo journal: set HOME or XDG_STATE_HOME to a folder\n"},
    };
    for (const Case& one : cases) {
        CliFixture fixture;
        EXPECT_EQ(RunKinsort(fixture.services, one.arguments), one.code);
        EXPECT_THAT(fixture.terminal.output, HasSubstr(one.output));
        EXPECT_EQ(fixture.terminal.messages, one.messages);
    }
    for (const auto& [code, message] :
         {std::pair(StatusCode::kNoSpace,
                    "kinsort: the output could not be written: no space left on the volume; free some and try again\n"),
          std::pair(StatusCode::kStale, "")}) {
        CliFixture fixture;
        fixture.terminal.outputFails = Status::Failure(code);
        EXPECT_EQ(RunKinsort(fixture.services, {"help"}), 1);
        EXPECT_EQ(fixture.terminal.messages, message);
    }
}

}  // namespace
}  // namespace kinsort
