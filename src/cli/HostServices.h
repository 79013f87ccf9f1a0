// What the host and its commands share: the registry, their folders, and the means to hand a selection over.
#pragma once

#include <string>

#include "framework/Settings.h"
#include "framework/VelFolders.h"
#include "platform/Processes.h"
#include "platform/Registry.h"
#include "platform/SharedMemory.h"

namespace kinsort {

// All references outlive the run.
struct HostServices {
    Registry& registry;
    Settings& settings;   // of the command "Kinsort"
    VelFolders& folders;  // as the command "Kinsort" of this installation sees them
    SharedMemory& memory;
    Processes& processes;
    std::string executable;  // stored path of this program
};

}  // namespace kinsort
