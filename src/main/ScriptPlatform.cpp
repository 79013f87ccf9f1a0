#include "main/ScriptPlatform.h"

#include "platform/linux/IcuCodePages.h"
#include "platform/linux/IcuLocaleMap.h"
#include "platform/linux/LinuxDesktopOpener.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxSystemInfo.h"
#include "platform/linux/LinuxWindowMessages.h"

namespace kinsort {

ScriptPlatform::ScriptPlatform(const PathCodec& codec, FileSystem& files, HostServices& host)
    : opener_(MakeLinuxDesktopOpener(host.processes, files, codec)),
      fileManager_(MakeLinuxFileManager(host.processes, *opener_, files, codec)),
      windows_(MakeLinuxWindowMessages()),
      codePages_(MakeIcuCodePages()),
      system_(MakeLinuxSystemInfo()),
      locale_(MakeIcuLocaleMap()),
      backend_{.processes = host.processes,
               .opener = *opener_,
               .windows = *windows_,
               .environment = environment_,
               .codePages = *codePages_,
               .system = *system_,
               .locale = *locale_,
               .sleeper = sleeper_,
               .fileManager = *fileManager_} {}

}  // namespace kinsort
