// How a running batch shows itself and is stopped.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace kinsort {

enum class BatchPhase : uint8_t { kPlanning, kRunning, kSyncing };

struct ProgressState {
    BatchPhase phase = BatchPhase::kPlanning;
    uint64_t itemsDone = 0;
    uint64_t itemsTotal = 0;  // grows while planning
    uint64_t bytesDone = 0;
    uint64_t bytesTotal = 0;    // of copies; moves inside a volume carry none
    double bytesPerSecond = 0;  // over the last seconds; 0 while unknown
    double itemsPerSecond = 0;
    double secondsLeft = -1;     // -1 while unknown
    std::u16string currentName;  // inner form
};

// Called on the thread that runs the batch, at most every 50 ms and once at the end.
class ProgressSink {
  public:
    virtual ~ProgressSink() = default;
    virtual void Report(const ProgressState& state) = 0;
};

// Set from any thread or signal handler; the batch finishes what must not be torn and stops.
class CancelToken {
  public:
    void Cancel() { cancelled_.store(true, std::memory_order_relaxed); }
    bool isCancelled() const { return cancelled_.load(std::memory_order_relaxed); }

  private:
    std::atomic<bool> cancelled_{false};
};

}  // namespace kinsort
