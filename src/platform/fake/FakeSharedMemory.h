// Shared blocks in the memory of one program, with doors through which a test plays the other side.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/SharedMemory.h"

namespace kinsort {

class FakeSharedMemory : public SharedMemory {
  public:
    struct Block {
        std::vector<std::byte> bytes;
    };
    using Blocks = std::map<std::u16string, std::shared_ptr<Block>, std::less<>>;

    Blocks blocks;                     // what exists now, by name
    std::vector<std::string> journal;  // "lock", "unlock", "read", "write" in the order of the calls
    // Called before each read: the other side has its chance to meddle.
    std::function<void(Block&)> beforeRead;
    // What the next calls of the kind return; success lets them through.
    Status blockFailure, mutexFailure, lockFailure, writeFailure;
    uint64_t capacity = kMaxBlockBytes;  // bytes that can be written before the memory is full

    Result<std::unique_ptr<SharedBlock>> OpenSharedBlock(std::u16string_view name, uint32_t bytes,
                                                         SharedOpening opening) override;
    Result<std::unique_ptr<SharedMutex>> OpenSharedMutex(std::u16string_view name) override;
    int32_t ProgramNumber() const override { return 4120; }
};

}  // namespace kinsort
