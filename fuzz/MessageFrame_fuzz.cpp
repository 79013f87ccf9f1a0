// Any bytes from another program's socket: either a message that encodes to the same bytes again, or nothing.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include <sys/socket.h>

#include "platform/WindowMessages.h"
#include "platform/linux/MessageFrame.h"

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

void CheckMessage(kinsort::FrameReader& reader, const uint8_t* data, size_t size) {
    using namespace kinsort;
    const FrameHeader header = reader.header();
    const std::vector<std::byte> content = reader.TakeData();
    const auto encoded = EncodeHeader(header);
    Require(content.size() == header.dataBytes && content.size() <= kMaxMessageBytes);
    Require(size >= encoded.size() + content.size());
    const auto* bytes = reinterpret_cast<const std::byte*>(data);
    Require(std::equal(encoded.begin(), encoded.end(), bytes));
    Require(std::equal(content.begin(), content.end(), bytes + encoded.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace kinsort;
    int ends[2];
    Require(socketpair(AF_UNIX, SOCK_STREAM, 0, ends) == 0);
    Descriptor sender(ends[0]);
    FrameReader reader{Descriptor(ends[1])};
    // In two pieces, cut where the first byte says.
    const size_t cut = size == 0 ? 0 : std::min<size_t>(data[0], size);
    for (const auto& [begin, end] : {std::pair<size_t, size_t>{0, cut}, {cut, size}}) {
        const auto length = static_cast<ssize_t>(end - begin);
        Require(send(sender.get(), data + begin, end - begin, MSG_DONTWAIT | MSG_NOSIGNAL) == length);
        (void)reader.Read();
    }
    sender.Close();
    if (reader.Read() == FrameReader::State::kComplete)
        CheckMessage(reader, data, size);
    else
        Require(reader.state() == FrameReader::State::kBroken);
    if (size >= kFrameAnswerBytes) {
        const auto* bytes = reinterpret_cast<const std::byte*>(data);
        (void)DecodeAnswer(std::span<const std::byte, kFrameAnswerBytes>(bytes, kFrameAnswerBytes));
    }
    return 0;
}
