// The standard streams and the terminal on Linux.
#pragma once

#include <memory>

#include "platform/Terminal.h"

namespace kinsort {

// One per process: it owns the process's signal handlers once CallOnInterrupt was called.
std::unique_ptr<Terminal> MakeLinuxTerminal();

}  // namespace kinsort
