#include "cli/Console.h"

#include "cli/CommandLine.h"
#include "text/AsciiCase.h"

namespace kinsort {
namespace {
constexpr size_t kBufferSize = 1 << 16;
constexpr std::string_view kBlanks = " \t\r";
}  // namespace

Console::Console(Terminal& terminal, const EnvironmentLookup& environment)
    : terminal_(terminal), allowsColour_(environment("NO_COLOR").empty() && environment("TERM") != "dumb") {}

void Console::Print(std::string_view text) {
    buffer_ += text;
    if (buffer_.size() >= kBufferSize) (void)Flush();
}

void Console::Say(std::string_view text) {
    (void)Flush();  // so that both streams read in the order in which things were said
    PutMessage("kinsort: " + std::string(text) + "\n");
}

void Console::Note(std::string_view text) {
    if (!isQuiet_) Say(text);
}

void Console::PutMessage(std::string_view bytes) {
    (void)terminal_.Write(Stream::kMessages, bytes);  // nobody is left to tell
}

std::optional<std::string> Console::ReadReply() {
    Result<std::string> typed = terminal_.ReadLine();
    if (!typed.ok()) {
        PutMessage("\n");
        return std::nullopt;
    }
    const size_t begin = typed->find_first_not_of(kBlanks);
    if (begin == std::string::npos) return std::string();
    return typed->substr(begin, typed->find_last_not_of(kBlanks) + 1 - begin);
}

char Console::AskLetter(std::string_view question, std::string_view letters) {
    PutMessage(question);
    while (const std::optional<std::string> typed = ReadReply()) {
        const char letter = typed->empty() ? '|' : static_cast<char>(AsciiLower(static_cast<char16_t>((*typed)[0])));
        if (letter != '|' && letters.find(letter) != letters.npos) return letter;
        PutMessage("Please type " + ListOfChoices(letters) + ": ");
    }
    return 0;
}

Status Console::Flush() {
    if (!buffer_.empty() && outputStatus_.ok()) outputStatus_ = terminal_.Write(Stream::kOutput, buffer_);
    buffer_.clear();
    return outputStatus_;
}

}  // namespace kinsort
