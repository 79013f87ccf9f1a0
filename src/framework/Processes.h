// Opening documents, starting programs, and waiting for them with the question whether to end one that takes too long.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/DesktopOpener.h"
#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/PathCodec.h"
#include "platform/Processes.h"
#include "platform/UserInterface.h"

namespace kinsort {

// What these operations work with, and what the last of them failed with. References outlive it; a thread of its own
// has a copy of its own.
struct ProcessContext {
    Processes& processes;
    DesktopOpener& opener;
    UserInterface& ui;
    FileSystem& files;
    const Environment& environment;
    const PathCodec& codec;
    Status lastError;  // success after an operation that succeeded
    // Whether whoever waits for a process has given up meanwhile; empty: never. Asked some times a second.
    std::function<bool()> isCancelled = {};
};

// Show states of windows.
constexpr uint16_t kShowNormal = 1;
constexpr uint16_t kShow = 5;

// The exit code of a process that the user had us end.
constexpr uint32_t kKilledExitCode = 999;

struct ShellLaunchRequest {
    std::u16string file;
    std::u16string arguments;    // one text, see text/CommandLine.h
    std::u16string startFolder;  // empty: the file's own
    bool waitForShell = false;   // return when the desktop has taken over, not earlier
    int32_t showState = kShowNormal;
    bool isElevated = false;
};

// Opens the file through the desktop; "%NAME%" in the file and the start folder is replaced. Tells nobody: a caller
// that wants a message calls ShowLastError.
void ShellLaunch(ProcessContext& context, WindowHandle owner, const ShellLaunchRequest& request);

// The same, owned by the program's main window.
void ShellLaunchFromThread(ProcessContext& context, std::u16string_view file, std::u16string_view arguments,
                           std::u16string_view startFolder, bool waitForShell, int32_t showState, bool isElevated);

// Opens the document `first` + `second` for the program's main window. Tells nobody.
void OpenDocument(ProcessContext& context, std::u16string_view first, std::u16string_view second);

// Starts a command line: the program, in quotes or not, and its arguments. A path without quotes ends before the first
// blank up to which it names a file that exists; when none does, at the first blank.
Result<std::unique_ptr<Process>> StartCommandLine(ProcessContext& context, std::u16string_view commandLine,
                                                  std::u16string_view startFolder, uint16_t showState);

// How waiting for a process ended.
enum class WaitEnd : uint8_t { kEnded, kTimedOut, kCancelled };

// Waits for the end of the process, at most `timeoutMs` (-1: without limit).
WaitEnd WaitForEnd(const ProcessContext& context, Process& process, int32_t timeoutMs);

// Starts program, blank, arguments as a command line and waits for its end, at most `timeoutMs` (-1: without limit).
// 1 when it was started and ended in time. 0 when it could not be started, see lastError, when the wait was cancelled,
// and after a time-out, when the user is asked whether to end it, whatever the answer.
int RunAndWait(ProcessContext& context, std::u16string_view program, std::u16string_view arguments,
               std::u16string_view startFolder, uint16_t showState, int32_t timeoutMs);

// After a time-out: asks the user, and ends the process with kKilledExitCode on Yes. True when that was the answer.
bool AskToKill(ProcessContext& context, Process& process);

// When the last operation failed, shows the system's text for it in a box with an OK button, `prefix` and a line feed
// in front unless it is empty.
void ShowLastError(ProcessContext& context, std::u16string_view prefix = {});

}  // namespace kinsort
