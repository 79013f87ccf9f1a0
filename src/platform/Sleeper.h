// Waiting for time to pass.
#pragma once

#include <cstdint>

namespace kinsort {

class Sleeper {
  public:
    virtual ~Sleeper() = default;

    // Blocks the calling thread for about that long; returns at once for 0 and less. Whoever must be able to stop
    // sleeps in short slices.
    virtual void Sleep(int32_t milliseconds) = 0;
};

}  // namespace kinsort
