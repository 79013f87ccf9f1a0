#include "cli/ConsoleUserInterface.h"

#include <gtest/gtest.h>

#include "cli/CliFixture_test.h"

namespace kinsort {
namespace {

using enum MessageAnswer;

MessageRequest Box(MessageButtons buttons, std::u16string text = u"Go on?") {
    MessageRequest request;
    request.text = std::move(text);
    request.buttons = buttons;
    return request;
}

class ConsoleUserInterfaceTest : public testing::Test {
  protected:
    CliFixture fixture_;
    CliContext context_{fixture_.services};

    void HaveTerminal(std::deque<std::string> answers) {
        fixture_.terminal.isTerminal[0] = fixture_.terminal.isTerminal[2] = true;
        fixture_.terminal.answers = std::move(answers);
    }
    std::string TakeMessages() { return std::exchange(fixture_.terminal.messages, {}); }
};

TEST(ReadBoxReply, TakesWordsAndTheirBeginnings) {
    const struct {
        std::string_view typed;
        MessageButtons buttons;
        std::optional<MessageAnswer> answer;
    } cases[] = {
        {"y", MessageButtons::kYesNo, kYes},
        {"YES", MessageButtons::kYesNoCancel, kYes},
        {"n", MessageButtons::kYesNo, kNo},
        {"no", MessageButtons::kYesNoCancel, kNo},
        {"c", MessageButtons::kYesNo, std::nullopt},
        {"c", MessageButtons::kYesNoCancel, kCancel},
        {"c", MessageButtons::kCancelTryContinue, std::nullopt},
        {"con", MessageButtons::kCancelTryContinue, kContinue},
        {"try", MessageButtons::kCancelTryContinue, kTryAgain},
        {"", MessageButtons::kOkCancel, std::nullopt},
        {"yess", MessageButtons::kYesNo, std::nullopt},
    };
    for (const auto& [typed, buttons, answer] : cases)
        EXPECT_EQ(ReadBoxReply(typed, buttons), answer) << typed;
}

TEST_F(ConsoleUserInterfaceTest, AsksUntilTheReplyIsAButton) {
    HaveTerminal({"maybe", " Y \r"});
    ConsoleUserInterface ui(context_, AnswerPolicy::kAsk);
    EXPECT_EQ(ui.ShowMessage(Box(MessageButtons::kYesNo)), kYes);
    EXPECT_EQ(TakeMessages(), "Go on? [yes or no] Please type yes or no: ");
    EXPECT_EQ(ui.ShowMessage(Box(MessageButtons::kYesNo)), kNo) << "the end of input closes the box";
    EXPECT_EQ(ui.ShowMessage(Box(MessageButtons::kYesNoCancel)), kCancel);
    EXPECT_EQ(ui.ShowMessage(Box(MessageButtons::kOk, u"Syntax error!\nif\x1B[2J")), kOk);
    EXPECT_TRUE(TakeMessages().ends_with("Syntax error!\nif\\x1b[2J\n")) << "no byte steers the terminal";
}

TEST_F(ConsoleUserInterfaceTest, AnswersByItselfWhereItMay) {
    const struct {
        AnswerPolicy policy;
        MessageButtons buttons;
        MessageAnswer answer;
        std::string_view said;
    } cases[] = {
        {AnswerPolicy::kYes, MessageButtons::kYesNo, kYes, "yes"},
        {AnswerPolicy::kYes, MessageButtons::kOkCancel, kOk, "ok"},
        {AnswerPolicy::kYes, MessageButtons::kAbortRetryIgnore, kIgnore, "ignore"},
        {AnswerPolicy::kNo, MessageButtons::kYesNoCancel, kNo, "no"},
        {AnswerPolicy::kNo, MessageButtons::kRetryCancel, kCancel, "cancel"},
        {AnswerPolicy::kNo, MessageButtons::kAbortRetryIgnore, kAbort, "abort"},
        {AnswerPolicy::kAsk, MessageButtons::kYesNo, kNo, "no (nobody to ask; see --yes and --no)"},
        {AnswerPolicy::kAsk, MessageButtons::kYesNoCancel, kCancel, "cancel (nobody to ask; see --yes and --no)"},
    };
    for (const auto& [policy, buttons, answer, said] : cases) {
        ConsoleUserInterface ui(context_, policy);
        EXPECT_EQ(ui.ShowMessage(Box(buttons)), answer) << said;
        EXPECT_TRUE(TakeMessages().ends_with("] " + std::string(said) + "\n")) << said;
    }
}

TEST_F(ConsoleUserInterfaceTest, OffersChoicesByNumber) {
    const ChoiceRequest request{u"Kinsort", u"Please select an application.", {u"one.exe", u"two.exe"}, kNoWindow};
    HaveTerminal({"3", "x", "2", ""});
    ConsoleUserInterface ui(context_, AnswerPolicy::kAsk);
    EXPECT_EQ(ui.ChooseOne(request), 1u);
    EXPECT_EQ(TakeMessages(),
              "Please select an application.\n  1  one.exe\n  2  two.exe\nNumber, or nothing to cancel: "
              "Please type a number from 1 to 2: Please type a number from 1 to 2: ");
    EXPECT_EQ(ui.ChooseOne(request), std::nullopt);
    EXPECT_EQ(ConsoleUserInterface(context_, AnswerPolicy::kYes).ChooseOne(request), 0u);
    EXPECT_EQ(ConsoleUserInterface(context_, AnswerPolicy::kNo).ChooseOne(request), std::nullopt);
}

TEST_F(ConsoleUserInterfaceTest, TakesAFolderThatIsOne) {
    fixture_.files.AddFolder(u"Z:\\home\\me");
    fixture_.files.AddFile(u"Z:\\home\\file");
    HaveTerminal({"/home/file", "/home/me", ""});
    ConsoleUserInterface ui(context_, AnswerPolicy::kAsk);
    EXPECT_EQ(ui.BrowseForFolder({u"Where?", {}, kNoWindow}), u"Z:\\home\\me");
    EXPECT_EQ(ui.BrowseForFolder({u"Where?", {}, kNoWindow}), std::nullopt);
}

}  // namespace
}  // namespace kinsort
