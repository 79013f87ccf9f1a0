// The queue of a user interface that runs when a test says so.
#pragma once

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
    std::deque<std::function<void()>> tasks_;
};

}  // namespace kinsort
