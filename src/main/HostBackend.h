// The host's side of the command line, made when a verb asks for it.
#pragma once

#include <memory>

#include "cli/HostServices.h"
#include "framework/Settings.h"
#include "framework/VelFolders.h"
#include "main/LinuxPlatform.h"
#include "platform/Terminal.h"

namespace kinsort {

class HostBackend {
  public:
    // Both outlive it. A damaged registry is told of on `terminal`.
    HostBackend(LinuxPlatform& platform, Terminal& terminal);

    HostServices& Services() { return services_; }

  private:
    std::unique_ptr<Registry> registry_;
    Settings settings_;
    VelFolders folders_;
    HostServices services_;
};

}  // namespace kinsort
