// The queue of a user interface that runs when a test says so.
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

namespace kinsort {

class PostedTasks {
  public:
    // Any thread.
    void Post(std::function<void()> task) {
        const std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
        arrived_.notify_one();
    }
    // Waits for a task where there is none.
    void RunNext() {
        {
            std::unique_lock lock(mutex_);
            arrived_.wait(lock, [this] { return !tasks_.empty(); });
        }
        Take()();
    }
    // Runs what was posted, also by the tasks themselves; how many that were.
    int RunAll() {
        int count = 0;
        for (; std::function<void()> task = Take(); ++count)
            task();
        return count;
    }

  private:
    std::function<void()> Take() {
        const std::lock_guard lock(mutex_);
        if (tasks_.empty()) return nullptr;
        std::function<void()> task = std::move(tasks_.front());
        tasks_.pop_front();
        return task;
    }

    std::mutex mutex_;
    std::condition_variable arrived_;
    std::deque<std::function<void()>> tasks_;
};

}  // namespace kinsort
