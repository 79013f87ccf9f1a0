// A listing of a folder, closed when its owner goes.
#pragma once

#include <memory>

#include <dirent.h>
#include <fcntl.h>

#include "platform/linux/Descriptor.h"

namespace kinsort {

struct CloseFolderStream {
    void operator()(DIR* stream) const { closedir(stream); }
};
using FolderStream = std::unique_ptr<DIR, CloseFolderStream>;

// Null with errno when the descriptor is not open, or no folder's.
inline FolderStream ListDescriptor(Descriptor folder) {
    FolderStream stream(folder.isOpen() ? fdopendir(folder.get()) : nullptr);
    if (stream != nullptr) folder.Release();
    return stream;
}

// From the folder's beginning and with a position of its own, so that two threads can list one open folder.
inline FolderStream ListFolder(int folder) {
    return ListDescriptor(Descriptor(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)));
}

}  // namespace kinsort
