#include "fileop/ProgressMeter.h"

#include <algorithm>
#include <utility>

namespace kinsort {

void ProgressMeter::SetTotals(uint64_t items, uint64_t bytes) {
    itemsTotal_ = items;
    bytesTotal_ = bytes;
}

void ProgressMeter::Report(int64_t now, std::u16string name) {
    hasReported_ = true;
    lastReport_ = now;
    ProgressState state;
    state.phase = phase_.load(std::memory_order_relaxed);
    state.itemsDone = items_.load(std::memory_order_relaxed);
    state.itemsTotal = std::max(itemsTotal_, state.itemsDone);
    state.bytesDone = bytes_.load(std::memory_order_relaxed);
    state.bytesTotal = std::max(bytesTotal_, state.bytesDone);
    state.currentName = std::move(name);

    samples_.push_back({now, state.itemsDone, state.bytesDone});
    while (samples_.size() > 2 && now - samples_.front().at > kRateWindow)
        samples_.pop_front();
    const Sample& oldest = samples_.front();
    if (const double seconds = static_cast<double>(now - oldest.at) / 1e9; seconds > 0) {
        state.itemsPerSecond = static_cast<double>(state.itemsDone - oldest.items) / seconds;
        state.bytesPerSecond = static_cast<double>(state.bytesDone - oldest.bytes) / seconds;
        const auto timeFor = [](uint64_t left, double rate) {
            return rate > 0 ? static_cast<double>(left) / rate : -1;
        };
        // The slower of the two ways to see it: many small files are a matter of items, large ones of bytes.
        state.secondsLeft = std::max(timeFor(state.itemsTotal - state.itemsDone, state.itemsPerSecond),
                                     timeFor(state.bytesTotal - state.bytesDone, state.bytesPerSecond));
    }
    sink_->Report(state);
}

void ProgressMeter::ReportEnd() {
    if (sink_ != nullptr) Report(clock_.SteadyNanoseconds(), {});
}

}  // namespace kinsort
