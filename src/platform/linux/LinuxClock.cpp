#include "platform/linux/LinuxClock.h"

#include <time.h>

namespace kinsort {

namespace {

int64_t Read(clockid_t clock) {
    timespec now = {};
    clock_gettime(clock, &now);  // cannot fail for these two clocks
    return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

class LinuxClock final : public Clock {
  public:
    int64_t WallNanoseconds() override { return Read(CLOCK_REALTIME); }
    int64_t SteadyNanoseconds() override { return Read(CLOCK_MONOTONIC); }
};

}  // namespace

std::unique_ptr<Clock> MakeLinuxClock() {
    return std::make_unique<LinuxClock>();
}

}  // namespace kinsort
