#include "platform/linux/ChildReaper.h"

#include <utility>

#include <poll.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <sys/wait.h>

namespace kinsort {

ChildReaper::ChildReaper() : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

ChildReaper::~ChildReaper() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    eventfd_write(wake_.get(), 1);
    if (thread_.joinable()) thread_.join();
}

void ChildReaper::Adopt(pid_t child, Descriptor handle) {
    const std::lock_guard lock(mutex_);
    children_.push_back({child, std::move(handle)});
    if (thread_.joinable()) {
        eventfd_write(wake_.get(), 1);
        return;
    }
    // A new thread takes over which signals are blocked: all of them, they are for others to handle.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    thread_ = std::thread([this] { Run(); });
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void ChildReaper::Run() {
    std::vector<pollfd> waits;
    while (true) {
        {
            const std::lock_guard lock(mutex_);
            std::erase_if(children_, [](const Child& child) { return waitpid(child.id, nullptr, WNOHANG) != 0; });
            if (stopping_) return;
            waits.assign(1, {wake_.get(), POLLIN, 0});
            for (const Child& child : children_)
                waits.push_back({child.handle.get(), POLLIN, 0});
        }
        poll(waits.data(), waits.size(), -1);
        eventfd_t ignored;
        eventfd_read(wake_.get(), &ignored);
    }
}

}  // namespace kinsort
