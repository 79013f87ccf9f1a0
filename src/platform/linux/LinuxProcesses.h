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

}  // namespace kinsort
