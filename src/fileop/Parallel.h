// Runs independent pieces of work on a few threads, the calling one among them.
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

namespace kinsort {

// Calls work(i, isCaller) once for each i below `count`, on up to `threads` threads, and returns when all calls have
// returned. `isCaller` is whether it is called on the calling thread: the one that may show how far things are. A
// thread takes `grain` neighbours at a time, at least 1: they are often in the same folder.
inline void ForEachParallel(size_t count, unsigned threads, const std::function<void(size_t, bool)>& work,
                            size_t grain = 64) {
    std::atomic<size_t> next{0};
    const auto takeRuns = [&](bool isCaller) {
        for (size_t begin = next.fetch_add(grain); begin < count; begin = next.fetch_add(grain)) {
            for (size_t i = begin; i < count && i < begin + grain; ++i)
                work(i, isCaller);
        }
    };
    std::vector<std::jthread> helpers;
    for (unsigned i = 1; i < threads && i * grain < count; ++i) {
        helpers.emplace_back([&takeRuns] { takeRuns(false); });
    }
    takeRuns(true);
}

}  // namespace kinsort
