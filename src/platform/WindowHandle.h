// A window of this or another program, as a number that means something to the platform only.
#pragma once

#include <cstdint>

namespace kinsort {

using WindowHandle = uint64_t;
constexpr WindowHandle kNoWindow = 0;

}  // namespace kinsort
