// The host's side of the command line, made when a verb asks for it.
#pragma once

#include <memory>

#include "cli/HostServices.h"
#include "framework/Settings.h"
#include "framework/VelFolders.h"
#include "platform/FileSystem.h"
#include "platform/PathCodec.h"
#include "platform/Terminal.h"
#include "platform/linux/LinuxEnvironment.h"
#include "platform/linux/LinuxSharedMemory.h"

namespace kinsort {

class HostBackend {
  public:
    // All outlive it. A damaged registry is told of on `terminal`.
    HostBackend(const PathCodec& codec, FileSystem& files, Terminal& terminal);

    HostServices& Services() { return services_; }

  private:
    LinuxEnvironment environment_;
    LinuxSharedMemory memory_;
    std::unique_ptr<Registry> registry_;
    std::unique_ptr<UserAccount> account_;
    std::unique_ptr<Processes> processes_;
    Settings settings_;
    VelFolders folders_;
    HostServices services_;
};

}  // namespace kinsort
