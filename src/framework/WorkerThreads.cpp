#include "framework/WorkerThreads.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace kinsort {

namespace {

std::atomic<size_t> leftBehind = 0;

}  // namespace

struct WorkerThreads::Link::State {
    std::mutex mutex;
    std::condition_variable ended;
    PostTask post;             // under mutex; empty once the control goes
    size_t running = 0;        // under mutex
    bool isAbandoned = false;  // under mutex; the threads that still run are counted in leftBehind
    std::atomic<bool> isStopped = false;
};

bool WorkerThreads::Link::IsStopped() const {
    return state_->isStopped;
}

void WorkerThreads::Link::Post(std::function<void()> task) const {
    const std::lock_guard lock(state_->mutex);
    if (!state_->post) return;
    state_->post([weak = std::weak_ptr(state_), task = std::move(task)] {
        const auto state = weak.lock();
        if (state != nullptr && !state->isStopped) task();
    });
}

WorkerThreads::WorkerThreads(PostTask post, size_t maxThreads)
    : maxThreads_(maxThreads), state_(std::make_shared<Link::State>()) {
    state_->post = std::move(post);
}

WorkerThreads::~WorkerThreads() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->isStopped = true;
        state_->post = nullptr;
    }
    if (WaitForAll(kPatience)) return;
    const std::lock_guard lock(state_->mutex);
    state_->isAbandoned = true;
    leftBehind += state_->running;
}

bool WorkerThreads::Start(std::function<void(const Link& link)> work) {
    {
        const std::lock_guard lock(state_->mutex);
        if (state_->running == maxThreads_) return false;
        ++state_->running;
    }
    const auto run = [work = std::move(work), link = Link(state_)]() mutable {
        work(link);
        work = nullptr;  // whatever it shares goes before anybody is told of its end
        const std::lock_guard lock(link.state_->mutex);
        --link.state_->running;
        if (link.state_->isAbandoned) --leftBehind;
        link.state_->ended.notify_all();
    };
    try {
        std::thread(run).detach();  // the destructor waits for it all the same
    } catch (const std::system_error&) {
        const std::lock_guard lock(state_->mutex);
        --state_->running;
        return false;
    }
    return true;
}

bool WorkerThreads::WaitForAll(std::chrono::milliseconds limit) {
    std::unique_lock lock(state_->mutex);
    return state_->ended.wait_for(lock, limit, [this] { return state_->running == 0; });
}

size_t WorkerThreads::LeftBehind() {
    return leftBehind;
}

}  // namespace kinsort
