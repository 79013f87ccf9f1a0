// Opens things through the desktop: programs are started, everything else goes to the desktop's own opener.
#pragma once

#include <memory>
#include <string>

#include "platform/DesktopOpener.h"
#include "platform/FileSystem.h"
#include "platform/PathCodec.h"
#include "platform/Processes.h"

namespace kinsort {

// The programs that do the work, each a name to be looked up or an absolute path of the inner language.
struct DesktopPrograms {
    std::u16string opener = u"xdg-open";  // gets one native path or URL
    std::u16string elevator = u"pkexec";  // gets --keep-cwd, a program and its arguments
};

// A file whose execute permission is set is a program, unless the system says that it is none; so is a bare name that
// stands for no file in the start folder but for a program in the user's program folders. All references outlive the
// result.
std::unique_ptr<DesktopOpener> MakeLinuxDesktopOpener(Processes& processes, FileSystem& files, const PathCodec& codec,
                                                      DesktopPrograms programs = {});

}  // namespace kinsort
