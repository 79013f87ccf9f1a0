// Sleep that takes no time: the clock of the test moves instead.
#pragma once

#include "platform/Sleeper.h"
#include "platform/fake/ManualClock.h"

namespace kinsort {

class ManualSleeper final : public Sleeper {
  public:
    explicit ManualSleeper(ManualClock& clock) : clock_(clock) {}

    void Sleep(int32_t milliseconds) override {
        if (milliseconds <= 0) return;
        slept += milliseconds;
        clock_.Advance(int64_t{milliseconds} * 1'000'000);
    }

    int64_t slept = 0;  // milliseconds in all

  private:
    ManualClock& clock_;
};

}  // namespace kinsort
