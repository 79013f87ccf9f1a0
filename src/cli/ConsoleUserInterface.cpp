#include "cli/ConsoleUserInterface.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

#include "cli/ItemList.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "framework/Paths.h"
#include "text/AsciiCase.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

struct Button {
    std::string_view word;
    MessageAnswer answer;
};
constexpr Button kOk{"ok", MessageAnswer::kOk};
constexpr Button kCancel{"cancel", MessageAnswer::kCancel};
constexpr Button kAbort{"abort", MessageAnswer::kAbort};
constexpr Button kRetry{"retry", MessageAnswer::kRetry};
constexpr Button kIgnore{"ignore", MessageAnswer::kIgnore};
constexpr Button kYes{"yes", MessageAnswer::kYes};
constexpr Button kNo{"no", MessageAnswer::kNo};
constexpr Button kTryAgain{"try again", MessageAnswer::kTryAgain};
constexpr Button kContinue{"continue", MessageAnswer::kContinue};

constexpr std::array kOkButtons = {kOk};
constexpr std::array kOkCancelButtons = {kOk, kCancel};
constexpr std::array kAbortRetryIgnoreButtons = {kAbort, kRetry, kIgnore};
constexpr std::array kYesNoCancelButtons = {kYes, kNo, kCancel};
constexpr std::array kYesNoButtons = {kYes, kNo};
constexpr std::array kRetryCancelButtons = {kRetry, kCancel};
constexpr std::array kCancelTryContinueButtons = {kCancel, kTryAgain, kContinue};

// In the order of MessageButtons.
constexpr std::array<std::span<const Button>, 7> kButtons = {
    kOkButtons,    kOkCancelButtons,    kAbortRetryIgnoreButtons,  kYesNoCancelButtons,
    kYesNoButtons, kRetryCancelButtons, kCancelTryContinueButtons,
};

std::span<const Button> ButtonsOf(MessageButtons buttons) {
    return kButtons[static_cast<size_t>(buttons)];
}

// The first of these that the box has.
const Button& FirstOf(MessageButtons buttons, std::initializer_list<MessageAnswer> wanted) {
    const std::span<const Button> all = ButtonsOf(buttons);
    for (const MessageAnswer answer : wanted) {
        const auto found = std::find_if(all.begin(), all.end(), [=](const Button& b) { return b.answer == answer; });
        if (found != all.end()) return *found;
    }
    return all.back();
}

const Button& ButtonForYes(MessageButtons buttons) {
    return FirstOf(buttons,
                   {MessageAnswer::kYes, MessageAnswer::kOk, MessageAnswer::kContinue, MessageAnswer::kIgnore});
}
const Button& ButtonForNo(MessageButtons buttons) {
    return FirstOf(buttons, {MessageAnswer::kNo, MessageAnswer::kCancel, MessageAnswer::kAbort});
}
const Button& ButtonForClosing(MessageButtons buttons) {
    return FirstOf(buttons, {MessageAnswer::kCancel, MessageAnswer::kNo, MessageAnswer::kAbort});
}

std::string Text(std::u16string_view text) {
    return ShownLines(ToUtf8(text));
}

// "yes, no or cancel".
std::string Choices(MessageButtons buttons) {
    std::string choices;
    for (const Button& button : ButtonsOf(buttons))
        choices.append(choices.empty() ? "" : "|").append(button.word);
    return ListOfChoices(choices);
}

}  // namespace

std::optional<MessageAnswer> ReadBoxReply(std::string_view typed, MessageButtons buttons) {
    const std::string reply = ToUtf8(AsciiLower(FromUtf8(typed)));
    std::optional<MessageAnswer> found;
    for (const Button& button : ButtonsOf(buttons)) {
        if (reply.empty() || !button.word.starts_with(reply)) continue;
        if (found) return std::nullopt;  // "c" may be cancel or continue
        found = button.answer;
    }
    return found;
}

MessageAnswer ConsoleUserInterface::ShowMessage(const MessageRequest& request) {
    Console& console = context_.console;
    const std::string title = request.title.empty() ? "" : Text(request.title) + ": ";
    if (request.buttons == MessageButtons::kOk) {
        console.PutMessage(title + Text(request.text) + "\n");
        return MessageAnswer::kOk;
    }
    console.PutMessage(title + Text(request.text) + " [" + Choices(request.buttons) + "] ");
    if (policy_ != AnswerPolicy::kAsk || !console.CanAsk()) {
        const Button& button = policy_ == AnswerPolicy::kYes  ? ButtonForYes(request.buttons)
                               : policy_ == AnswerPolicy::kNo ? ButtonForNo(request.buttons)
                                                              : ButtonForClosing(request.buttons);
        const bool isForced = policy_ == AnswerPolicy::kAsk;
        console.PutMessage(std::string(button.word) + (isForced ? " (nobody to ask; see --yes and --no)\n" : "\n"));
        return button.answer;
    }
    while (const std::optional<std::string> typed = console.ReadReply()) {
        if (const auto answer = ReadBoxReply(*typed, request.buttons)) return *answer;
        console.PutMessage("Please type " + Choices(request.buttons) + ": ");
    }
    return ButtonForClosing(request.buttons).answer;
}

std::optional<size_t> ConsoleUserInterface::ChooseOne(const ChoiceRequest& request) {
    Console& console = context_.console;
    std::string text = Text(request.instruction) + "\n";
    for (size_t i = 0; i < request.choices.size(); ++i)
        text += "  " + std::to_string(i + 1) + "  " + Text(request.choices[i]) + "\n";
    console.PutMessage(text + "Number, or nothing to cancel: ");
    if (policy_ != AnswerPolicy::kAsk || !console.CanAsk()) {
        console.PutMessage(policy_ == AnswerPolicy::kYes ? "1\n" : "\n");
        return policy_ == AnswerPolicy::kYes ? std::optional<size_t>(0) : std::nullopt;
    }
    for (;;) {
        const std::optional<std::string> typed = console.ReadReply();
        if (!typed || typed->empty()) return std::nullopt;
        size_t number = 0;
        const auto [end, error] = std::from_chars(typed->data(), typed->data() + typed->size(), number);
        const bool isNumber = error == std::errc() && end == typed->data() + typed->size();
        if (isNumber && number >= 1 && number <= request.choices.size()) return number - 1;
        console.PutMessage("Please type a number from 1 to " + std::to_string(request.choices.size()) + ": ");
    }
}

std::optional<std::u16string> ConsoleUserInterface::BrowseForFolder(const FolderRequest& request) {
    Console& console = context_.console;
    console.PutMessage(Text(request.title) + "\nFolder, or nothing to cancel: ");
    if (policy_ != AnswerPolicy::kAsk || !console.CanAsk()) {
        console.PutMessage("\n");
        return std::nullopt;
    }
    for (;;) {
        const std::optional<std::string> typed = console.ReadReply();
        if (!typed || typed->empty()) return std::nullopt;
        const Result<std::u16string> folder = ResolveTyped(context_, *typed);
        if (folder.ok() && FolderExists(context_.services.files, *folder)) return *folder;
        console.PutMessage("That is no folder. Folder, or nothing to cancel: ");
    }
}

}  // namespace kinsort
