// The short-lived threads of one owner, a control of the dialog for example: they look at disks that may be slow or
// dead, while the window stays alive.
//
// A thread that hangs in a call to a dead network disk cannot be ended. So a worker owns, or shares, everything of its
// owner that it touches; when the owner goes, its workers are told, waited for up to a limit, and then left behind.
// The services of main/ that they were calling are the one thing that they do not own: a program asks LeftBehind()
// before it destroys those, and if a thread is left it ends with std::_Exit instead.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>

namespace kinsort {

class WorkerThreads {
  public:
    // Queues a task for the thread of the user interface, from any thread, and returns at once.
    using PostTask = std::function<void(std::function<void()> task)>;
    static constexpr std::chrono::milliseconds kPatience{1000};

    // What a worker holds in its hand; copies are alike.
    class Link {
      public:
        // True once the owner goes: to be asked before each step.
        bool IsStopped() const;
        // Has the task run on the thread of the user interface, unless the owner is gone by then.
        void Post(std::function<void()> task) const;

      private:
        friend class WorkerThreads;
        struct State;
        explicit Link(std::shared_ptr<State> state) : state_(std::move(state)) {}
        std::shared_ptr<State> state_;
    };

    // `post` is called until the destructor has begun, never after; it may be empty when nobody posts. All of the class
    // is for the thread of the owner.
    WorkerThreads(PostTask post, size_t maxThreads);
    // Stops, and waits for kPatience.
    ~WorkerThreads();
    WorkerThreads(const WorkerThreads&) = delete;
    WorkerThreads& operator=(const WorkerThreads&) = delete;

    // False when maxThreads are running, or the system has no thread to give.
    bool Start(std::function<void(const Link& link)> work);
    // What Link::Post does, for the owner itself.
    void Post(std::function<void()> task) { Link(state_).Post(std::move(task)); }
    // Returns when no worker runs, true, or when the limit is over, false. Tasks that they posted have yet to run.
    bool WaitForAll(std::chrono::milliseconds limit);

    // The workers of all owners that went without waiting for their end and that still run.
    static size_t LeftBehind();

  private:
    const size_t maxThreads_;
    std::shared_ptr<Link::State> state_;
};

}  // namespace kinsort
