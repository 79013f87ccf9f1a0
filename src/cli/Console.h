// What the verbs print and ask with: results to standard output, everything else to standard error.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Terminal.h"

namespace kinsort {

// The value of an environment variable, empty when it is not set.
using EnvironmentLookup = std::function<std::string(const char* name)>;

class Console {
  public:
    Console(Terminal& terminal, const EnvironmentLookup& environment);
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    // Results; buffered, so that a million rows are few writes.
    void Print(std::string_view text);
    // A message: "kinsort: ", the text, an end of line.
    void Say(std::string_view text);
    // As Say, but nothing after SetQuiet.
    void Note(std::string_view text);
    // Bytes for standard error as they are (progress, questions).
    void PutMessage(std::string_view bytes);

    // What somebody types as an answer, without blanks around it; nothing after Ctrl-C and at the end of input.
    std::optional<std::string> ReadReply();
    // Asks until the reply begins with one of the letters ("t|s|c"), in small or capital; that letter, in small. 0
    // after Ctrl-C and at the end of input.
    char AskLetter(std::string_view question, std::string_view letters);

    void SetQuiet(bool isQuiet) { isQuiet_ = isQuiet; }
    bool isQuiet() const { return isQuiet_; }

    // Writes what is buffered; the first failure of any write to standard output so far.
    Status Flush();

    bool IsColoured(Stream stream) const { return terminal_.IsTerminal(stream) && allowsColour_; }
    // Whether somebody can be asked.
    bool CanAsk() const { return terminal_.IsTerminal(Stream::kInput) && terminal_.IsTerminal(Stream::kMessages); }

  private:
    Terminal& terminal_;
    bool allowsColour_;
    bool isQuiet_ = false;
    std::string buffer_;
    Status outputStatus_;
};

}  // namespace kinsort
