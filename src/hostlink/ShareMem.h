// One open hand-off block with its mutex.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "platform/SharedMemory.h"

namespace kinsort {

class CShareMem {
  public:
    // Opens block and mutex under the names that the two numbers give; GetStatus says whether that went well. Of a
    // negative size and of one beyond SharedMemory::kMaxBlockBytes no block is made.
    CShareMem(SharedMemory& memory, int32_t first, int32_t second, int32_t size, SharedOpening opening);
    // Closes both, the block first.
    ~CShareMem();
    CShareMem(CShareMem&&) = default;
    CShareMem& operator=(CShareMem&&) = delete;

    // When this is a failure, there is nothing else to call.
    const Status& GetStatus() const { return m_status; }

    // Runs `work` while the mutex is held, which is waited for as long as it takes; its status, or why the mutex could
    // not be had.
    template <typename Work>
    Status WhileLocked(Work work) {
        Status status = m_pMutex->Lock();
        if (!status.ok()) return status;
        status = work();
        m_pMutex->Unlock();
        return status;
    }
    // A private copy of the block from its start up to its first NUL unit or a little beyond; never more than its
    // size, and less when it has shrunk.
    Result<std::vector<std::byte>> ReadText();
    Status Write(uint64_t offset, std::span<const std::byte> bytes) { return m_pBlock->Write(offset, bytes); }

  private:
    uint32_t m_nSize;  // bytes
    std::unique_ptr<SharedBlock> m_pBlock;
    std::unique_ptr<SharedMutex> m_pMutex;
    std::u16string m_strName;
    std::u16string m_strMutexName;
    Status m_status;
};

}  // namespace kinsort
