// What goes through a window's socket: one connection carries one message, a header and its data, and for those that
// are sent the answer comes back. Numbers are little-endian; both ends are programs of this machine and this version.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "platform/WindowHandle.h"
#include "platform/linux/Descriptor.h"

namespace kinsort {

enum class FrameKind : uint32_t { kSentData = 1, kSentNumbers = 2, kPostedNumbers = 3, kPostedDrop = 4 };

constexpr bool IsPosted(FrameKind kind) {
    return kind == FrameKind::kPostedNumbers || kind == FrameKind::kPostedDrop;
}

struct FrameHeader {
    FrameKind kind = FrameKind::kSentData;
    uint32_t message = 0;             // of numbers
    WindowHandle sender = kNoWindow;  // of data
    uint64_t first = 0;               // the number that data carries
    int64_t second = 0;
    uint32_t dataBytes = 0;  // that follow

    bool operator==(const FrameHeader&) const = default;
};

constexpr size_t kFrameHeaderBytes = 40;
constexpr size_t kFrameAnswerBytes = 16;

std::array<std::byte, kFrameHeaderBytes> EncodeHeader(const FrameHeader& header);

// No answer: the window is gone.
std::array<std::byte, kFrameAnswerBytes> EncodeAnswer(std::optional<int64_t> answer);
struct FrameAnswer {
    bool isWindowGone = false;
    int64_t answer = 0;
};
std::optional<FrameAnswer> DecodeAnswer(std::span<const std::byte, kFrameAnswerBytes> bytes);

// A message that comes in piece by piece. Memory grows with what has come, not with what was announced.
class FrameReader {
  public:
    explicit FrameReader(Descriptor connection) : connection_(std::move(connection)) {}

    enum class State : uint8_t { kWaiting, kComplete, kBroken };
    // Reads what is there, without waiting, until it holds `mostData` bytes of data; what follows a complete message is
    // left alone.
    State Read(size_t mostData = SIZE_MAX);
    State state() const { return state_; }

    int descriptor() const { return connection_.get(); }
    // Bytes of data that are held; none before the header is.
    size_t dataCount() const { return data_.size(); }
    const FrameHeader& header() const { return *header_; }
    std::vector<std::byte> TakeData() { return std::move(data_); }
    Descriptor TakeConnection() { return std::move(connection_); }

  private:
    Descriptor connection_;
    std::array<std::byte, kFrameHeaderBytes> headerBytes_ = {};
    size_t headerCount_ = 0;
    std::optional<FrameHeader> header_;
    std::vector<std::byte> data_;
    State state_ = State::kWaiting;
};

}  // namespace kinsort
