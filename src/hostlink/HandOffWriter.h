// The host's side of the hand-off: the block filled and named in a launch descriptor, ready for a program to be started
// with.
#pragma once

#include <string>

#include "hostlink/HostHandOff.h"
#include "hostlink/ShareMem.h"
#include "platform/SharedMemory.h"
#include "platform/Status.h"

namespace kinsort {

// Keep it until the started program has ended, or has read the block at least.
struct WrittenHandOff {
    std::u16string descriptor;  // value of kLaunchDescriptorVariable for the program
    CShareMem shared;
};

// Writes `handOff` to a new block, as large as it takes. Its SharedHandOff is not looked at: there is a block now.
// Fails with nothing left behind: kInvalid for a text with a TAB or NUL in it, which the failure names as its path;
// kFileTooLarge beyond SharedMemory::kMaxBlockBytes; or with what the system says.
Result<WrittenHandOff> WriteHandOff(SharedMemory& memory, const HostHandOff& handOff);

}  // namespace kinsort
