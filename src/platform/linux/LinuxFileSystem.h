// Files and folders of a Linux system under the names of the path language.
#pragma once

#include <memory>

#include "platform/FileSystem.h"
#include "platform/PathCodec.h"

namespace kinsort {

// `codec` outlives the result and everything it opens.
std::unique_ptr<FileSystem> MakeLinuxFileSystem(const PathCodec& codec);

}  // namespace kinsort
