#include "platform/linux/MessageFrame.h"

#include <algorithm>

#include <errno.h>
#include <sys/socket.h>

#include "platform/WindowMessages.h"

namespace kinsort {

namespace {

constexpr uint32_t kHeaderMagic = 0x314D'4C56;  // "VLM1"
constexpr uint32_t kAnswerMagic = 0x3141'4C56;  // "VLA1"
constexpr size_t kPieceBytes = 65'536;

template <typename T>
void Put(std::byte*& at, T value) {
    for (size_t i = 0; i < sizeof(T); ++i)
        *at++ = static_cast<std::byte>((value >> (8 * i)) & 0xFF);
}

template <typename T>
T Get(const std::byte*& at) {
    T value = 0;
    for (size_t i = 0; i < sizeof(T); ++i)
        value |= static_cast<T>(std::to_integer<T>(*at++) << (8 * i));
    return value;
}

bool MayHave(FrameKind kind, uint32_t dataBytes) {
    switch (kind) {
        case FrameKind::kSentData:
        case FrameKind::kPostedDrop:
            return dataBytes <= kMaxMessageBytes;
        case FrameKind::kSentNumbers:
        case FrameKind::kPostedNumbers:
            return dataBytes == 0;
    }
    return false;
}

// Nothing for bytes that are no header, of an unknown kind, or that announce more data than the kind may have.
std::optional<FrameHeader> DecodeHeader(std::span<const std::byte, kFrameHeaderBytes> bytes) {
    const std::byte* at = bytes.data();
    if (Get<uint32_t>(at) != kHeaderMagic) return std::nullopt;
    FrameHeader header;
    header.kind = static_cast<FrameKind>(Get<uint32_t>(at));
    header.message = Get<uint32_t>(at);
    header.dataBytes = Get<uint32_t>(at);
    header.sender = Get<uint64_t>(at);
    header.first = Get<uint64_t>(at);
    header.second = static_cast<int64_t>(Get<uint64_t>(at));
    if (!MayHave(header.kind, header.dataBytes)) return std::nullopt;
    return header;
}

}  // namespace

std::array<std::byte, kFrameHeaderBytes> EncodeHeader(const FrameHeader& header) {
    std::array<std::byte, kFrameHeaderBytes> bytes;
    std::byte* at = bytes.data();
    Put(at, kHeaderMagic);
    Put(at, static_cast<uint32_t>(header.kind));
    Put(at, header.message);
    Put(at, header.dataBytes);
    Put(at, header.sender);
    Put(at, header.first);
    Put(at, static_cast<uint64_t>(header.second));
    return bytes;
}

std::array<std::byte, kFrameAnswerBytes> EncodeAnswer(std::optional<int64_t> answer) {
    std::array<std::byte, kFrameAnswerBytes> bytes;
    std::byte* at = bytes.data();
    Put(at, kAnswerMagic);
    Put(at, uint32_t{answer ? 0u : 1u});
    Put(at, static_cast<uint64_t>(answer.value_or(0)));
    return bytes;
}

std::optional<FrameAnswer> DecodeAnswer(std::span<const std::byte, kFrameAnswerBytes> bytes) {
    const std::byte* at = bytes.data();
    if (Get<uint32_t>(at) != kAnswerMagic) return std::nullopt;
    FrameAnswer answer;
    answer.isWindowGone = Get<uint32_t>(at) != 0;
    answer.answer = static_cast<int64_t>(Get<uint64_t>(at));
    return answer;
}

FrameReader::State FrameReader::Read(size_t mostData) {
    while (state_ == State::kWaiting) {
        const bool isHeader = !header_;
        std::byte* into = headerBytes_.data() + headerCount_;
        size_t wanted = kFrameHeaderBytes - headerCount_;
        const size_t before = data_.size();
        if (!isHeader) {
            if (before >= mostData) return state_;
            wanted = std::min({kPieceBytes, size_t{header_->dataBytes} - before, mostData - before});
            data_.resize(before + wanted);
            into = data_.data() + before;
        }
        const ssize_t got = recv(connection_.get(), into, wanted, MSG_DONTWAIT);
        const int error = errno;
        const size_t count = got > 0 ? static_cast<size_t>(got) : 0;
        if (!isHeader) data_.resize(before + count);
        if (got < 0 && error == EINTR) continue;
        if (got < 0 && error == EAGAIN) return state_;
        if (got <= 0) return state_ = State::kBroken;
        if (isHeader) {
            headerCount_ += count;
            if (headerCount_ < kFrameHeaderBytes) continue;
            header_ = DecodeHeader(headerBytes_);
            if (!header_) return state_ = State::kBroken;
        }
        if (data_.size() == header_->dataBytes) state_ = State::kComplete;
    }
    return state_;
}

}  // namespace kinsort
