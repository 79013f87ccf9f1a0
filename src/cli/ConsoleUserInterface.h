// Boxes, questions and choices as text on the terminal.
#pragma once

#include <cstdint>
#include <string>

#include "cli/CliContext.h"
#include "platform/UserInterface.h"

namespace kinsort {

// How questions are answered.
enum class AnswerPolicy : uint8_t {
    kAsk,  // on the terminal; without one as if the box were closed
    kYes,  // Yes, OK, the first choice
    kNo,   // No, Cancel, no choice
};

// Texts go to standard error; what was answered without asking is said behind the question. The clipboard is this
// object's own: what a script puts there it reads back.
class ConsoleUserInterface final : public UserInterface {
  public:
    ConsoleUserInterface(CliContext& context, AnswerPolicy policy) : context_(context), policy_(policy) {}

    // Ctrl-C and the end of input count as closing the box.
    MessageAnswer ShowMessage(const MessageRequest& request) override;
    std::optional<size_t> ChooseOne(const ChoiceRequest& request) override;
    std::optional<std::u16string> BrowseForFolder(const FolderRequest& request) override;

    std::u16string GetClipboardText() override { return clipboard_; }
    void SetClipboardText(std::u16string_view text) override { clipboard_ = text; }

    bool IsKeyDown(ModifierKey) override { return false; }
    WindowHandle MainWindow() override { return kNoWindow; }
    void BringToForeground(WindowHandle) override {}

  private:
    CliContext& context_;
    AnswerPolicy policy_;
    std::u16string clipboard_;
};

// What a person may type for a box: the word of a button, or its first letters when they say which. Nothing when it is
// none of the box's buttons.
std::optional<MessageAnswer> ReadBoxReply(std::string_view typed, MessageButtons buttons);

}  // namespace kinsort
