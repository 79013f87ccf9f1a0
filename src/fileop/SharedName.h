// A name that many places of a batch mention and nobody changes: copies share one allocation.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace kinsort {

class SharedName {
  public:
    SharedName() = default;                                   // empty
    SharedName(std::string_view name) : size_(name.size()) {  // NOLINT(google-explicit-constructor): a kind of string
        if (name.empty()) return;
        auto bytes = std::make_shared_for_overwrite<char[]>(size_);
        std::memcpy(bytes.get(), name.data(), size_);
        bytes_ = std::move(bytes);
    }
    SharedName(const std::string& name) : SharedName(std::string_view(name)) {}  // NOLINT: as above
    SharedName(const char* name) : SharedName(std::string_view(name)) {}         // NOLINT: as above

    SharedName(const SharedName&) = default;
    SharedName& operator=(const SharedName&) = default;
    SharedName(SharedName&& other) noexcept
        : bytes_(std::move(other.bytes_)), size_(std::exchange(other.size_, size_t{0})) {}
    SharedName& operator=(SharedName&& other) noexcept {
        bytes_ = std::move(other.bytes_);
        size_ = std::exchange(other.size_, size_t{0});
        return *this;
    }
    ~SharedName() = default;

    std::string_view view() const { return {bytes_.get(), size_}; }
    operator std::string_view() const { return view(); }  // NOLINT(google-explicit-constructor)
    bool empty() const { return size_ == 0; }

    friend bool operator==(const SharedName& a, const SharedName& b) { return a.view() == b.view(); }

  private:
    std::shared_ptr<const char[]> bytes_;
    size_t size_ = 0;
};

}  // namespace kinsort
