// Small files of the user's own that other programs read, written so that nobody finds half of one.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Status.h"
#include "platform/Sys.h"

namespace kinsort {

// Writes the file at `path` (stored, absolute), making the folders above it. An existing file keeps its permissions and
// a link stays a link; a new file gets `mode`.
Status WriteUserFile(Sys& sys, const std::string& path, std::string_view content, uint32_t mode);

// Removes a file or a link.
Status RemoveUserFile(Sys& sys, const std::string& path);

}  // namespace kinsort
