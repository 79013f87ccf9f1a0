// A Linux system as SystemInfo describes one: no 8.3 names, and a shell that counts as version 10.0.
#pragma once

#include <memory>

#include "platform/SystemInfo.h"

namespace kinsort {

std::unique_ptr<SystemInfo> MakeLinuxSystemInfo();

}  // namespace kinsort
