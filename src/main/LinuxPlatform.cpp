#include "main/LinuxPlatform.h"

#include "platform/linux/IcuCodePages.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxDesktopOpener.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/LinuxSys.h"
#include "platform/linux/LinuxSystemInfo.h"
#include "platform/linux/LinuxUserAccount.h"
#include "platform/linux/LinuxWindowMessages.h"
#include "platform/linux/UserFolders.h"

namespace kinsort {

LinuxPlatform::LinuxPlatform()
    : codec(MakeLinuxPathCodec(DrivesFolderOfThisUser())),
      files(MakeLinuxFileSystem(*codec)),
      sys(MakeLinuxSys()),
      clock(MakeLinuxClock()),
      processes(MakeLinuxProcesses(*codec, *files)),
      opener(MakeLinuxDesktopOpener(*processes, *files, *codec)),
      fileManager(MakeLinuxFileManager(*processes, *opener, *files, *codec)),
      windows(MakeLinuxWindowMessages()),
      account(MakeLinuxUserAccount(*codec)),
      system(MakeLinuxSystemInfo()),
      codePages(MakeIcuCodePages()) {}

}  // namespace kinsort
