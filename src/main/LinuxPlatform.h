// What Linux offers to the programs of this folder, wired together once.
#pragma once

#include <memory>
#include <string_view>

#include "platform/Clock.h"
#include "platform/CodePages.h"
#include "platform/DesktopOpener.h"
#include "platform/FileManager.h"
#include "platform/FileSystem.h"
#include "platform/PathCodec.h"
#include "platform/Processes.h"
#include "platform/Sys.h"
#include "platform/SystemInfo.h"
#include "platform/UserAccount.h"
#include "platform/WindowMessages.h"
#include "platform/linux/LinuxEnvironment.h"
#include "platform/linux/LinuxSharedMemory.h"
#include "platform/linux/LinuxSleeper.h"

namespace kinsort {

constexpr std::u16string_view kCommandName = u"Kinsort";  // in the registry

// In the order in which one builds on the other. Nothing here reads a file or takes time to make: what does, such as
// the registry, a program makes itself when it needs it.
struct LinuxPlatform {
    LinuxPlatform();

    std::unique_ptr<PathCodec> codec;
    std::unique_ptr<FileSystem> files;
    std::unique_ptr<Sys> sys;
    std::unique_ptr<Clock> clock;
    std::unique_ptr<Processes> processes;
    std::unique_ptr<DesktopOpener> opener;
    std::unique_ptr<FileManager> fileManager;
    std::unique_ptr<WindowMessages> windows;
    std::unique_ptr<UserAccount> account;
    std::unique_ptr<SystemInfo> system;
    std::unique_ptr<CodePages> codePages;
    LinuxEnvironment environment;
    LinuxSharedMemory memory;
    LinuxSleeper sleeper;
};

}  // namespace kinsort
