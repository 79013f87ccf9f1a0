// Files that are read or written from one end to the other.
#pragma once

#include <memory>
#include <string_view>

#include "platform/FileSystem.h"
#include "platform/linux/PathWalk.h"

namespace kinsort {

// As FileSystem says. `path` is what failures name, those of the open file included.
Result<std::unique_ptr<InputFile>> OpenLinuxInput(const PathPlace& place, std::u16string_view path);
Result<std::unique_ptr<OutputFile>> OpenLinuxOutput(const PathPlace& place, OutputStart start,
                                                    std::u16string_view path);

}  // namespace kinsort
