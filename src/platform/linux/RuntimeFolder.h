// The folder for what lives no longer than a login: shared blocks, locks, sockets. Only its user can enter it.
#pragma once

#include <string>

#include <sys/types.h>

#include "platform/Status.h"
#include "platform/linux/Descriptor.h"

namespace kinsort {

// Where it stands: "vel" in $XDG_RUNTIME_DIR when that is a folder of this user's own, else "/tmp/vel-<user number>".
std::string FindRuntimeFolder();

// Opens the folder at `path`, after creating it with mode 0700 when it is missing; the folder above must exist.
// kAccessDenied when it is somebody else's or others may write to it, kIsLink for a link, kNotFolder for a file.
Result<Descriptor> OpenRuntimeFolder(const std::string& path, uid_t owner);

}  // namespace kinsort
