// Files that are read or written from one end to the other.
#pragma once

#include <memory>

#include "platform/FileSystem.h"
#include "platform/linux/PathWalk.h"

namespace kinsort {

// As FileSystem says; failures do not name the path.
Result<std::unique_ptr<InputFile>> OpenLinuxInput(const PathPlace& place);
Result<std::unique_ptr<OutputFile>> OpenLinuxOutput(const PathPlace& place, OutputStart start);

}  // namespace kinsort
