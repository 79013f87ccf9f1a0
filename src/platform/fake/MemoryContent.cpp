#include "platform/fake/MemoryContent.h"

#include <algorithm>
#include <cstring>

namespace kinsort {

uint64_t MemoryContent::CountPages(uint64_t index) const {
    return static_cast<uint64_t>(std::distance(pages_.lower_bound(index), pages_.end()));
}

MemoryContent::Page MemoryContent::CopyPage(uint64_t index) const {
    const auto found = pages_.find(index);
    return found == pages_.end() ? Page{} : *found->second;
}

size_t MemoryContent::Read(uint64_t offset, std::span<std::byte> buffer) const {
    if (offset >= size_) return 0;
    const size_t total = static_cast<size_t>(std::min<uint64_t>(buffer.size(), size_ - offset));
    for (size_t done = 0; done < total;) {
        const uint64_t within = (offset + done) % kPageSize;
        const size_t length = static_cast<size_t>(std::min<uint64_t>(kPageSize - within, total - done));
        const auto found = pages_.find((offset + done) / kPageSize);
        if (found == pages_.end()) {
            std::memset(buffer.data() + done, 0, length);
        } else {
            std::memcpy(buffer.data() + done, found->second->data() + within, length);
        }
        done += length;
    }
    return total;
}

void MemoryContent::Write(uint64_t offset, std::span<const std::byte> data) {
    for (size_t done = 0; done < data.size();) {
        const uint64_t index = (offset + done) / kPageSize;
        const uint64_t within = (offset + done) % kPageSize;
        const size_t length = static_cast<size_t>(std::min<uint64_t>(kPageSize - within, data.size() - done));
        Page page = CopyPage(index);
        std::memcpy(page.data() + within, data.data() + done, length);
        pages_[index] = std::make_shared<const Page>(page);
        done += length;
    }
    if (!data.empty()) size_ = std::max<uint64_t>(size_, offset + data.size());
}

void MemoryContent::SetSize(uint64_t size) {
    if (size < size_) {
        pages_.erase(pages_.lower_bound((size + kPageSize - 1) / kPageSize), pages_.end());
        const uint64_t last = size / kPageSize;
        if (size % kPageSize != 0 && HasPage(last)) {
            Page page = CopyPage(last);
            std::fill(page.begin() + static_cast<ptrdiff_t>(size % kPageSize), page.end(), std::byte{0});
            pages_[last] = std::make_shared<const Page>(page);
        }
    }
    size_ = size;
}

uint64_t MemoryContent::NextData(uint64_t offset) const {
    const auto found = pages_.lower_bound(offset / kPageSize);
    return found == pages_.end() ? size_ : std::min(size_, std::max(offset, found->first * kPageSize));
}

uint64_t MemoryContent::NextHole(uint64_t offset) const {
    uint64_t index = offset / kPageSize;
    while (HasPage(index))
        ++index;
    return std::min(size_, std::max(offset, index * kPageSize));
}

std::string MemoryContent::ToText() const {
    std::string text(static_cast<size_t>(size_), '\0');
    (void)Read(0, std::as_writable_bytes(std::span(text)));
    return text;
}

MemoryContent MemoryContent::MixSectors(const MemoryContent& synced, const MemoryContent& latest,
                                        std::mt19937_64& random) {
    constexpr size_t kSectorSize = 512;
    MemoryContent mixed = latest;
    for (const auto& [index, page] : synced.pages_)
        mixed.pages_.try_emplace(index, page);
    for (auto& [index, page] : mixed.pages_) {
        const Page older = synced.CopyPage(index);
        Page torn = latest.CopyPage(index);
        for (size_t at = 0; at < kPageSize; at += kSectorSize) {
            if (random() % 2 == 0) std::memcpy(torn.data() + at, older.data() + at, kSectorSize);
        }
        page = std::make_shared<const Page>(torn);
    }
    mixed.size_ = std::max(synced.size_, latest.size_);
    mixed.SetSize(random() % 2 == 0 ? latest.size_ : std::max(synced.size_, latest.size_));
    return mixed;
}

MemoryContent MemoryContent::AfterPowerCut(const MemoryContent& synced, const MemoryContent& latest,
                                           std::mt19937_64& random) {
    switch (random() % 5) {
        case 0:
            return latest;
        case 1:
            return synced;
        case 2: {  // cut short
            MemoryContent cut = latest;
            if (latest.size_ > synced.size_) cut.SetSize(synced.size_ + random() % (latest.size_ - synced.size_ + 1));
            return cut;
        }
        case 3: {  // the size was written, the data was not
            MemoryContent grown = synced;
            grown.SetSize(latest.size_);
            return grown;
        }
        default:
            return MixSectors(synced, latest, random);
    }
}

}  // namespace kinsort
