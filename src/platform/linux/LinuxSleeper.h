#pragma once

#include <chrono>
#include <thread>

#include "platform/Sleeper.h"

namespace kinsort {

class LinuxSleeper final : public Sleeper {
  public:
    void Sleep(int32_t milliseconds) override {
        if (milliseconds > 0) std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
    }
};

}  // namespace kinsort
