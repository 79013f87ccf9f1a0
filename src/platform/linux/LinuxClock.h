// The system's real-time and monotonic clocks.
#pragma once

#include <memory>

#include "platform/Clock.h"

namespace kinsort {

std::unique_ptr<Clock> MakeLinuxClock();

}  // namespace kinsort
