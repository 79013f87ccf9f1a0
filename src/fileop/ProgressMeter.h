// Counts what a running batch has done and tells the sink about it, not too often, with a rate over the last seconds.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>

#include "fileop/Progress.h"
#include "platform/Clock.h"

namespace kinsort {

class ProgressMeter {
  public:
    // `sink` may be null.
    ProgressMeter(Clock& clock, ProgressSink* sink) : clock_(clock), sink_(sink) {}

    // From any thread.
    void AddItems(uint64_t count) { items_.fetch_add(count, std::memory_order_relaxed); }
    void AddBytes(uint64_t count) { bytes_.fetch_add(count, std::memory_order_relaxed); }
    void SetPhase(BatchPhase phase) { phase_.store(phase, std::memory_order_relaxed); }

    // On the thread that runs the batch. The name is asked for only when it is about to be shown.
    void SetTotals(uint64_t items, uint64_t bytes);
    template <typename NameOf>
    void Tick(const NameOf& nameOf) {
        if (sink_ == nullptr) return;
        const int64_t now = clock_.SteadyNanoseconds();
        if (hasReported_ && now - lastReport_ < kInterval) return;
        Report(now, nameOf());
    }
    void ReportEnd();

  private:
    static constexpr int64_t kInterval = 50'000'000;       // nanoseconds between two reports
    static constexpr int64_t kRateWindow = 5'000'000'000;  // nanoseconds that a rate looks back

    struct Sample {
        int64_t at;
        uint64_t items;
        uint64_t bytes;
    };

    void Report(int64_t now, std::u16string name);

    Clock& clock_;
    ProgressSink* sink_;
    std::atomic<BatchPhase> phase_ = BatchPhase::kPlanning;
    uint64_t itemsTotal_ = 0;
    uint64_t bytesTotal_ = 0;
    std::atomic<uint64_t> items_{0};
    std::atomic<uint64_t> bytes_{0};
    int64_t lastReport_ = 0;
    bool hasReported_ = false;
    std::deque<Sample> samples_;
};

}  // namespace kinsort
