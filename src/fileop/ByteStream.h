// Numbers and texts to bytes and back, little-endian, for the journal.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace kinsort {

// Appends to a string that outlives it.
class ByteWriter {
  public:
    explicit ByteWriter(std::string& out) : bytes_(out) {}

    template <typename Number>
    void Put(Number number) {
        static_assert(std::is_integral_v<Number> || std::is_enum_v<Number>);
        auto bits = static_cast<uint64_t>(number);
        char bytes[sizeof(Number)];
        for (char& byte : bytes) {
            byte = static_cast<char>(bits & 0xFF);
            bits >>= 8;
        }
        bytes_.append(bytes, sizeof(Number));
    }
    // A 32-bit length, then the bytes.
    void PutText(std::string_view text) {
        Put(static_cast<uint32_t>(text.size()));
        bytes_ += text;
    }
    void PutBytes(std::string_view bytes) { bytes_ += bytes; }

  private:
    std::string& bytes_;
};

// Reads what a ByteWriter wrote. Reading past the end, or a length beyond it, gives zeros and empty texts and turns
// `ok` off for good.
class ByteReader {
  public:
    explicit ByteReader(std::string_view bytes) : rest_(bytes) {}

    template <typename Number>
    Number Take() {
        if (rest_.size() < sizeof(Number)) {
            Fail();
            return Number{};
        }
        uint64_t bits = 0;
        for (size_t i = sizeof(Number); i-- > 0;)
            bits = (bits << 8) | static_cast<unsigned char>(rest_[i]);
        rest_.remove_prefix(sizeof(Number));
        return static_cast<Number>(bits);
    }
    std::string_view TakeText() {
        const auto length = Take<uint32_t>();
        if (!ok_ || length > rest_.size()) {
            Fail();
            return {};
        }
        const std::string_view text = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return text;
    }

    bool ok() const { return ok_; }
    bool atEnd() const { return rest_.empty(); }
    void Fail() {
        ok_ = false;
        rest_ = {};
    }

  private:
    std::string_view rest_;
    bool ok_ = true;
};

}  // namespace kinsort
