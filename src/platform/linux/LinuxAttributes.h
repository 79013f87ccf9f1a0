// What the system tells of a file or a volume, in the house's types.
#pragma once

#include <cstdint>

#include "platform/Status.h"
#include "platform/Sys.h"

namespace kinsort {

// Of `name` in `folder`, never through a link; of the descriptor itself when `name` is "".
Result<FileInfo> ReadFileInfo(int folder, const char* name);

// The volume's identity and free room. The identity comes from the UUID that is stored in the volume, and is 0 where
// only a number is known that the next boot may hand to another volume.
Result<VolumeInfo> ReadVolumeInfo(int descriptor);

// Copies every attribute in the "user." space. All are tried; the first failure is returned. One that vanishes on the
// way is skipped.
Status CopyUserAttributesBetween(int from, int to);

}  // namespace kinsort
