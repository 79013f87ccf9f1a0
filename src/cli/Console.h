// What the verbs print with: results to standard output, everything else to standard error.
#pragma once

#include <functional>
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

    void SetQuiet(bool isQuiet) { isQuiet_ = isQuiet; }
    bool isQuiet() const { return isQuiet_; }

    // Writes what is buffered; the first failure of any write to standard output so far.
    Status Flush();

    bool IsColoured(Stream stream) const { return terminal_.IsTerminal(stream) && allowsColour_; }
    // Whether somebody can be asked.
    bool CanAsk() const { return terminal_.IsTerminal(Stream::kInput) && terminal_.IsTerminal(Stream::kMessages); }
    Terminal& terminal() { return terminal_; }

  private:
    Terminal& terminal_;
    bool allowsColour_;
    bool isQuiet_ = false;
    std::string buffer_;
    Status outputStatus_;
};

}  // namespace kinsort
