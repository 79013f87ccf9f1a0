#include "cli/Console.h"

namespace kinsort {
namespace {
constexpr size_t kBufferSize = 1 << 16;
}

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

Status Console::Flush() {
    if (!buffer_.empty() && outputStatus_.ok()) outputStatus_ = terminal_.Write(Stream::kOutput, buffer_);
    buffer_.clear();
    return outputStatus_;
}

}  // namespace kinsort
