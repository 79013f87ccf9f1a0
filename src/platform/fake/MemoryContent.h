// The bytes of one file of the in-memory disk: pages that are shared between copies until they change, holes where
// nothing was written, and what a power cut can make of two versions.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <span>
#include <string>

namespace kinsort {

class MemoryContent {
  public:
    static constexpr uint64_t kPageSize = 4096;

    uint64_t size() const { return size_; }
    bool HasPage(uint64_t index) const { return pages_.contains(index); }
    // Pages that hold data, from page `index` on.
    uint64_t CountPages(uint64_t index = 0) const;

    // Bytes copied into `buffer`: fewer than asked for only at the end.
    size_t Read(uint64_t offset, std::span<std::byte> buffer) const;
    void Write(uint64_t offset, std::span<const std::byte> data);
    void SetSize(uint64_t size);
    // As in Sys: the next place with data, or without; the size at the latest.
    uint64_t NextData(uint64_t offset) const;
    uint64_t NextHole(uint64_t offset) const;
    std::string ToText() const;

    // What may be found after a power cut in a file whose content was `synced` at the last sync and `latest` when the
    // power went: either of them, the newer one cut short somewhere beyond what was synced, its size with the older
    // one's data, or a mixture by sectors. What both versions share is always there.
    static MemoryContent AfterPowerCut(const MemoryContent& synced, const MemoryContent& latest,
                                       std::mt19937_64& random);

  private:
    using Page = std::array<std::byte, kPageSize>;

    // A copy of the page, zeros for a hole.
    Page CopyPage(uint64_t index) const;
    static MemoryContent MixSectors(const MemoryContent& synced, const MemoryContent& latest, std::mt19937_64& random);

    std::map<uint64_t, std::shared_ptr<const Page>> pages_;  // by index; bytes beyond the size are zero
    uint64_t size_ = 0;
};

}  // namespace kinsort
