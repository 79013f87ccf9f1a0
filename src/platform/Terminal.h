// The standard streams of the process and the terminal that may stand behind them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Status.h"

namespace kinsort {

enum class Stream : uint8_t { kInput, kOutput, kMessages };

// Used from one thread; only the action of CallOnInterrupt runs at any moment.
class Terminal {
  public:
    virtual ~Terminal() = default;

    virtual bool IsTerminal(Stream stream) const = 0;
    // Columns of the window; 80 where nobody knows. Asked anew each time: people resize.
    virtual int WindowColumns() const = 0;
    // The columns that one code point takes: 0 for combining marks and format characters, 2 for wide ones, else 1.
    virtual int CharacterColumns(char32_t character) const = 0;

    // Writes all bytes as they are. kStale when the reader at the other end has gone.
    virtual Status Write(Stream stream, std::string_view bytes) = 0;
    // One line from the standard input without its end. kNotFound at the end of input, kInterrupted after an interrupt.
    virtual Result<std::string> ReadLine() = 0;
    // The whole content of a file by native path; "-" is the standard input. kInterrupted after an interrupt.
    virtual Result<std::string> ReadAll(std::string_view nativePath) = 0;

    // From now on a request to stop (Ctrl-C, a polite kill, a closed window) does not end the process but calls
    // `action`, however often it comes. `action` runs in the middle of anything: it may only set lock-free atomics.
    virtual void CallOnInterrupt(void (*action)(void*), void* context) = 0;
};

}  // namespace kinsort
