// Blocks of bytes and mutexes that programs of one user share by name. The other side is never trusted: a block is
// copied, not looked at in place, so that nothing it does meanwhile can change what was checked or take the program
// down.
//
// Names are short texts of letters, digits, "_", "-" and "."; anything else is kInvalid. Only objects of the same user
// that nobody else can write to are opened; what does not look like that gives kAccessDenied.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/Status.h"

namespace kinsort {

// Closes its end when it goes; who created the block takes the name away with it, others keep what they have open.
class SharedBlock {
  public:
    virtual ~SharedBlock() = default;

    // Copies bytes from `offset` on into `bytes` and returns how many there were: fewer than asked for at the end of
    // the block, 0 beyond it. The end can come earlier than at the time of opening.
    virtual Result<size_t> Read(uint64_t offset, std::span<std::byte> bytes) = 0;
    // Writes all of `bytes` or fails, kNoSpace above all.
    virtual Status Write(uint64_t offset, std::span<const std::byte> bytes) = 0;
};

// Free when created. A holder that ends, in whatever way, frees it. Not recursive; used from one thread.
class SharedMutex {
  public:
    virtual ~SharedMutex() = default;  // frees it if held

    virtual Status Lock() = 0;  // waits as long as it takes
    virtual void Unlock() = 0;
};

enum class SharedOpening : uint8_t {
    kOpenOrCreate,
    kCreateNew,  // kExists when the name is taken
};

class SharedMemory {
  public:
    // Larger blocks are refused: no hand-off comes near, and a size of garbage must not fill the memory.
    static constexpr uint32_t kMaxBlockBytes = 1u << 30;

    virtual ~SharedMemory() = default;

    // A created block is `bytes` long and all zero; an existing one keeps its size. kInvalid for a size of 0 or above
    // kMaxBlockBytes.
    virtual Result<std::unique_ptr<SharedBlock>> OpenSharedBlock(std::u16string_view name, uint32_t bytes,
                                                                 SharedOpening opening) = 0;
    virtual Result<std::unique_ptr<SharedMutex>> OpenSharedMutex(std::u16string_view name) = 0;

    // A number that no other program has at this moment; for names of one's own.
    virtual int32_t ProgramNumber() const = 0;
};

}  // namespace kinsort
