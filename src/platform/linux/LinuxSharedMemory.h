// Shared blocks and mutexes as files in the runtime folder: 0600, the mutex is a lock on its file.
#pragma once

#include <string>

#include <sys/types.h>

#include "platform/SharedMemory.h"

namespace kinsort {

class LinuxSharedMemory : public SharedMemory {
  public:
    LinuxSharedMemory();  // in the runtime folder, for the user the program runs as
    // In `folder`, which is created when it is missing; what belongs to others than `owner` is refused.
    explicit LinuxSharedMemory(std::string folder);
    LinuxSharedMemory(std::string folder, uid_t owner);

    Result<std::unique_ptr<SharedBlock>> OpenSharedBlock(std::u16string_view name, uint32_t bytes,
                                                         SharedOpening opening) override;
    Result<std::unique_ptr<SharedMutex>> OpenSharedMutex(std::u16string_view name) override;
    int32_t ProgramNumber() const override;

  private:
    std::string folder_;
    uid_t owner_;
};

}  // namespace kinsort
