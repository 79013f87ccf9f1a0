// What the scripts of the command line work with, made when one is run.
#pragma once

#include <memory>

#include "cli/HostServices.h"
#include "cli/ScriptBackend.h"
#include "platform/FileSystem.h"
#include "platform/PathCodec.h"
#include "platform/linux/LinuxEnvironment.h"
#include "platform/linux/LinuxSleeper.h"

namespace kinsort {

class ScriptPlatform {
  public:
    // All outlive it.
    ScriptPlatform(const PathCodec& codec, FileSystem& files, HostServices& host);

    const ScriptBackend& Backend() const { return backend_; }

  private:
    std::unique_ptr<DesktopOpener> opener_;
    std::unique_ptr<FileManager> fileManager_;
    std::unique_ptr<WindowMessages> windows_;
    std::unique_ptr<CodePages> codePages_;
    std::unique_ptr<SystemInfo> system_;
    std::unique_ptr<LocaleMap> locale_;
    LinuxEnvironment environment_;
    LinuxSleeper sleeper_;
    ScriptBackend backend_;
};

}  // namespace kinsort
