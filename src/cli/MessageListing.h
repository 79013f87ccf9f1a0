// Lists the messages that reach a window: in words for people, or as one JSON object a line for programs. Texts come
// from other programs; nothing in them reaches the terminal as it is.
#pragma once

#include <string>
#include <vector>

#include "cli/CliContext.h"
#include "platform/WindowMessages.h"

namespace kinsort {

class MessageListing final : public MessageHandler {
  public:
    MessageListing(CliContext& context, bool asJson) : context_(context), asJson_(asJson) {}

    // Each message is printed at once and answered with 1: it was dealt with.
    int64_t OnData(WindowHandle sender, uint64_t number, std::span<const std::byte> data) override;
    int64_t OnNumbers(uint32_t message, uint64_t first, int64_t second) override;
    void OnDrop(std::span<const std::byte> dropList) override;

    // A place that the sender wants to be shown.
    struct Jump {
        std::u16string path;
        bool isFile;
    };
    // Those that came since the last call.
    std::vector<Jump> TakeJumps() { return std::exchange(jumps_, {}); }

  private:
    CliContext& context_;
    bool asJson_;
    std::vector<Jump> jumps_;
};

}  // namespace kinsort
