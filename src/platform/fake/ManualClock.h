// A clock that stands still until a test moves it.
#pragma once

#include "platform/Clock.h"

namespace kinsort {

class ManualClock final : public Clock {
  public:
    int64_t WallNanoseconds() override { return wall_; }
    int64_t SteadyNanoseconds() override { return steady_; }

    // Both readings, by as many nanoseconds; never back.
    void Advance(int64_t nanoseconds) {
        wall_ += nanoseconds;
        steady_ += nanoseconds;
    }
    // The user or the network sets the wall clock; the steady one does not notice.
    void SetWall(int64_t nanoseconds) { wall_ = nanoseconds; }

  private:
    int64_t wall_ = 1'700'000'000'000'000'000;  // some day in 2023
    int64_t steady_ = 1'000'000'000;
};

}  // namespace kinsort
