// Programs that are started by their command line, and waited for or not: "call" and "exec", as statements and as
// functions.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "script/Assignment.h"

namespace kinsort {

struct ScriptRun;

enum class CallWaiting : uint8_t { kWaits, kDoesNotWait };

// Starts the command line. Its exit code in decimal, "259" while the program runs or when the user had it ended;
// nothing when it could not be started, which the user has been told, or when the run was cancelled meanwhile.
std::optional<std::u16string> RunCommandLine(ScriptRun& run, std::u16string_view commandLine, CallWaiting waiting);

}  // namespace kinsort
