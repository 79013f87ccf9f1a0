#include "fileop/Parallel.h"

#include <algorithm>
#include <atomic>
#include <barrier>
#include <mutex>
#include <set>

#include <gtest/gtest.h>

namespace kinsort {
namespace {

TEST(ParallelTest, EveryPieceIsWorkedOnOnceWhateverTheNumbers) {
    for (const unsigned threads : {0u, 1u, 2u, 7u}) {
        for (const size_t count : {size_t{0}, size_t{1}, size_t{7}, size_t{8}, size_t{9}, size_t{1000}}) {
            std::vector<std::atomic<int>> calls(count);
            std::mutex mutex;
            std::set<std::thread::id> meanwhileOn;
            std::set<std::thread::id> workers;
            ForEachParallel(
                count, threads,
                [&](size_t i, bool isCaller) {
                    calls[i].fetch_add(1);
                    const std::lock_guard lock(mutex);
                    workers.insert(std::this_thread::get_id());
                    if (isCaller) meanwhileOn.insert(std::this_thread::get_id());
                },
                8);
            EXPECT_TRUE(std::all_of(calls.begin(), calls.end(), [](const auto& n) { return n == 1; }));
            EXPECT_LE(workers.size(), std::max(threads, 1u));
            meanwhileOn.erase(std::this_thread::get_id());
            EXPECT_TRUE(meanwhileOn.empty()) << "progress is shown on the calling thread only";
        }
    }
}

TEST(ParallelTest, TheThreadsReallyWorkAtTheSameTime) {
    std::barrier meet(2);  // the first piece of each of two threads waits for the other's
    std::atomic<int> met{0};
    ForEachParallel(
        16, 2,
        [&](size_t i, bool) {
            if (i % 8 != 0) return;
            meet.arrive_and_wait();
            ++met;
        },
        8);
    EXPECT_EQ(met, 2);
}

}  // namespace
}  // namespace kinsort
