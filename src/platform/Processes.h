// Starting programs, without a shell in between.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Status.h"

namespace kinsort {

// The exit code of a process that has not ended.
constexpr uint32_t kStillRunning = 259;
// Time-out that never comes.
constexpr int32_t kWaitForever = -1;

// Whom the new process belongs to.
enum class ProcessTie : uint8_t {
    kOurs,  // gets Ctrl-C and the end of the terminal like ourselves
    kFree,  // its own session: goes on whatever becomes of us
};

// Where the new process writes to.
enum class ProcessOutput : uint8_t {
    kMessages,  // where our messages go
    kNowhere,
};

struct ProcessRequest {
    // A path in the inner form, relative ones counting from our current folder; a name without a separator is looked
    // up in the user's program folders.
    std::u16string program;
    // One element for each argument. One that is wholly a path with a drive or share that is set up here is handed on
    // as the native path; every other one as it is.
    std::vector<std::u16string> arguments;
    std::u16string startFolder;  // inner form; empty: ours
    uint16_t showState = 1;      // how a window should open; only a hint
    ProcessTie tie = ProcessTie::kOurs;
    // Variables, name and value, on top of the user's environment or in place of what it has.
    std::vector<std::pair<std::u16string, std::u16string>> variables = {};
    ProcessOutput output = ProcessOutput::kMessages;
};

// A process that was started. Letting go of it neither ends the process nor leaves anything behind when it ends. Used
// from one thread.
class Process {
  public:
    virtual ~Process() = default;

    // Waits for the end, at most `milliseconds` (kWaitForever: without limit). True when the process has ended.
    virtual bool Wait(int32_t milliseconds) = 0;
    // Waits until the process, which is not to end meanwhile, has nothing to do but wait for input, at most so long.
    // False when the time is over; kNotFound when the process has ended. Where nobody can tell, it is ready at once.
    virtual Result<bool> WaitForIdle(int32_t milliseconds) {
        (void)milliseconds;
        return true;
    }
    // kStillRunning, or what the process ended with: its own code; 128 + n when signal n ended it.
    virtual uint32_t ExitCode() = 0;
    // Ends the process at once, and it alone; from then on ExitCode() says `exitCode`. Does nothing to one that has
    // ended. Fails where the system does not let us.
    virtual Status Terminate(uint32_t exitCode) = 0;
    virtual uint32_t Id() const = 0;
};

class Processes {
  public:
    virtual ~Processes() = default;

    // The program runs with the user's environment, default signal handling and no file of ours open: its input is
    // empty. Failures name the program, or the start folder when that is what is missing. kNotFound, kAccessDenied;
    // kUnsupported for a file that is no program. May be called from several threads.
    virtual Result<std::unique_ptr<Process>> Start(const ProcessRequest& request) = 0;
};

}  // namespace kinsort
