// The desktop's file manager: asked over the session bus, and where none answers there, through the desktop's opener.
#pragma once

#include <memory>

#include "platform/DesktopOpener.h"
#include "platform/FileManager.h"
#include "platform/FileSystem.h"
#include "platform/PathCodec.h"
#include "platform/Processes.h"

namespace kinsort {

// All references outlive the result.
std::unique_ptr<FileManager> MakeLinuxFileManager(Processes& processes, DesktopOpener& opener, FileSystem& files,
                                                  const PathCodec& codec);

}  // namespace kinsort
