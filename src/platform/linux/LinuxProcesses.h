// Starts programs with posix_spawn.
#pragma once

#include <memory>

#include "platform/FileSystem.h"
#include "platform/PathCodec.h"
#include "platform/Processes.h"

namespace kinsort {

// Both outlive the result. Processes that were started may outlive it, and the program. Takes back an inherited
// "ignore" for the end of child processes, which would lose their exit codes.
std::unique_ptr<Processes> MakeLinuxProcesses(const PathCodec& codec, FileSystem& files);

// What the program is handed for one argument: the native path for one that is wholly a path with a drive or share that
// is set up, else the text itself, in which parts of stored names become their bytes again.
std::string ArgumentToStored(const PathCodec& codec, std::u16string_view argument);

}  // namespace kinsort
