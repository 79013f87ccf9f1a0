// What the program tells the shell.
#pragma once

namespace kinsort {

enum class ExitCode : int {
    kDone = 0,
    kPartly = 1,   // some items failed, were left by default, or have no candidate
    kUsage = 2,    // the command line makes no sense; nothing was looked at
    kNothing = 3,  // nothing was done
};

}  // namespace kinsort
