// Time, as two readings that must not be mixed: one to show people, one to measure with.
#pragma once

#include <cstdint>

namespace kinsort {

class Clock {
  public:
    virtual ~Clock() = default;

    // Nanoseconds since 1970-01-01 UTC. May jump; nothing is decided by it.
    virtual int64_t WallNanoseconds() = 0;
    // Nanoseconds since some moment; never goes back.
    virtual int64_t SteadyNanoseconds() = 0;
};

}  // namespace kinsort
