#include "platform/fake/FakeSharedMemory.h"

#include <algorithm>

namespace kinsort {
namespace {

class OpenFakeBlock : public SharedBlock {
  public:
    OpenFakeBlock(FakeSharedMemory& memory, std::u16string createdName, std::shared_ptr<FakeSharedMemory::Block> block)
        : memory_(memory), createdName_(std::move(createdName)), block_(std::move(block)) {}
    ~OpenFakeBlock() override {
        if (!createdName_.empty()) memory_.blocks.erase(createdName_);
    }
    OpenFakeBlock(const OpenFakeBlock&) = delete;
    OpenFakeBlock& operator=(const OpenFakeBlock&) = delete;

    Result<size_t> Read(uint64_t offset, std::span<std::byte> bytes) override {
        memory_.journal.emplace_back("read");
        if (memory_.beforeRead) memory_.beforeRead(*block_);
        const uint64_t size = block_->bytes.size();
        const size_t count = static_cast<size_t>(std::min<uint64_t>(bytes.size(), offset < size ? size - offset : 0));
        std::copy_n(block_->bytes.begin() + static_cast<ptrdiff_t>(std::min(offset, size)), count, bytes.begin());
        return count;
    }

    Status Write(uint64_t offset, std::span<const std::byte> bytes) override {
        memory_.journal.emplace_back("write");
        if (!memory_.writeFailure.ok()) return memory_.writeFailure;
        if (offset + bytes.size() > memory_.capacity) return Status::Failure(StatusCode::kNoSpace, 28, u"full");
        if (block_->bytes.size() < offset + bytes.size()) block_->bytes.resize(offset + bytes.size());
        std::copy(bytes.begin(), bytes.end(), block_->bytes.begin() + static_cast<ptrdiff_t>(offset));
        return {};
    }

  private:
    FakeSharedMemory& memory_;
    std::u16string createdName_;
    std::shared_ptr<FakeSharedMemory::Block> block_;
};

class OpenFakeMutex : public SharedMutex {
  public:
    explicit OpenFakeMutex(FakeSharedMemory& memory) : memory_(memory) {}
    Status Lock() override {
        if (memory_.lockFailure.ok()) memory_.journal.emplace_back("lock");
        return memory_.lockFailure;
    }
    void Unlock() override { memory_.journal.emplace_back("unlock"); }

  private:
    FakeSharedMemory& memory_;
};

}  // namespace

Result<std::unique_ptr<SharedBlock>> FakeSharedMemory::OpenSharedBlock(std::u16string_view name, uint32_t bytes,
                                                                       SharedOpening opening) {
    if (!blockFailure.ok()) return blockFailure;
    if (bytes == 0 || bytes > kMaxBlockBytes) return Status::Failure(StatusCode::kInvalid, 22, u"bad size");
    const auto found = blocks.find(name);
    std::u16string createdName;
    if (found == blocks.end()) {
        createdName = name;
        blocks[createdName] = std::make_shared<Block>();
        blocks[createdName]->bytes.resize(bytes);
    } else if (opening == SharedOpening::kCreateNew) {
        return Status::Failure(StatusCode::kExists, 17, u"exists");
    }
    std::shared_ptr<Block> block = blocks.find(name)->second;
    return std::unique_ptr<SharedBlock>(
        std::make_unique<OpenFakeBlock>(*this, std::move(createdName), std::move(block)));
}

Result<std::unique_ptr<SharedMutex>> FakeSharedMemory::OpenSharedMutex(std::u16string_view) {
    if (!mutexFailure.ok()) return mutexFailure;
    return std::unique_ptr<SharedMutex>(std::make_unique<OpenFakeMutex>(*this));
}

}  // namespace kinsort
