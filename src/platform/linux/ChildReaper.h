// Waits for the child processes that nobody else waits for any more, so that none of them stays behind as a zombie.
#pragma once

#include <mutex>
#include <thread>
#include <vector>

#include <sys/types.h>

#include "platform/linux/Descriptor.h"

namespace kinsort {

class ChildReaper {
  public:
    ChildReaper();
    // Ends the waiting; children that still run are left to the system.
    ~ChildReaper();
    ChildReaper(const ChildReaper&) = delete;
    ChildReaper& operator=(const ChildReaper&) = delete;

    // Takes the child over. `handle` is its pidfd. From any thread.
    void Adopt(pid_t child, Descriptor handle);

  private:
    struct Child {
        pid_t id;
        Descriptor handle;
    };

    void Run();

    std::mutex mutex_;
    std::vector<Child> children_;  // under mutex_
    bool stopping_ = false;        // under mutex_
    Descriptor wake_;              // an eventfd
    std::thread thread_;           // begins with the first child
};

}  // namespace kinsort
