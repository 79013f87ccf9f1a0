// The user that the process runs as, and the program file it runs.
#pragma once

#include <memory>
#include <string>

#include "platform/PathCodec.h"
#include "platform/UserAccount.h"

namespace kinsort {

// Local data lies where UserFolders.h says. The login name is that of the effective user. `codec` outlives it.
std::unique_ptr<UserAccount> MakeLinuxUserAccount(const PathCodec& codec);

// The stored path of the program that runs, links resolved; empty when the system does not tell.
std::string ExecutableFile();

}  // namespace kinsort
