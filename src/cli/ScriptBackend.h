// What scripts, and the host that they talk to, need of the platform besides what every verb has.
#pragma once

#include "framework/LaunchBatch.h"
#include "framework/Messages.h"
#include "platform/CodePages.h"
#include "platform/DesktopOpener.h"
#include "platform/Environment.h"
#include "platform/FileManager.h"
#include "platform/Processes.h"
#include "platform/Sleeper.h"
#include "platform/SystemInfo.h"
#include "platform/WindowMessages.h"

namespace kinsort {

// All references outlive the run.
struct ScriptBackend {
    Processes& processes;
    DesktopOpener& opener;
    WindowMessages& windows;
    const Environment& environment;
    const CodePages& codePages;
    const SystemInfo& system;
    Sleeper& sleeper;
    FileManager& fileManager;  // of the user
};

}  // namespace kinsort
