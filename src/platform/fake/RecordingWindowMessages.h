// Windows that exist because a test says so, and a list of what was sent to them.
#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "platform/WindowMessages.h"
#include "text/AsciiCase.h"

namespace kinsort {

struct SentMessage {
    WindowHandle target = kNoWindow;
    WindowHandle sender = kNoWindow;
    bool isPosted = false;
    uint32_t message = 0;  // 0 for data and for drops
    uint64_t first = 0;    // the number that data carries
    int64_t second = 0;
    std::vector<std::byte> data;
};

class RecordingWindowMessages final : public WindowMessages {
  public:
    std::map<WindowHandle, std::u16string> windows;  // with their classes
    int64_t answer = 0;                              // to everything that waits for one
    std::vector<SentMessage> sent;

    WindowHandle FindTopLevel(std::u16string_view className) override {
        const auto found = std::find_if(windows.begin(), windows.end(),
                                        [&](const auto& window) { return EqualNoCase(window.second, className); });
        return found == windows.end() ? kNoWindow : found->first;
    }
    bool IsWindowAlive(WindowHandle window) override { return windows.contains(window); }

    Result<int64_t> SendData(WindowHandle target, WindowHandle sender, uint64_t number,
                             std::span<const std::byte> data) override {
        return Keep({target, sender, false, 0, number, 0, {data.begin(), data.end()}});
    }
    Result<int64_t> SendNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) override {
        return Keep({target, kNoWindow, false, message, first, second, {}});
    }
    Status PostNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) override {
        return Keep({target, kNoWindow, true, message, first, second, {}}).status();
    }
    Status PostDrop(WindowHandle target, std::span<const std::byte> dropList) override {
        return Keep({target, kNoWindow, true, 0, 0, 0, {dropList.begin(), dropList.end()}}).status();
    }

  private:
    Result<int64_t> Keep(SentMessage message) {
        if (!IsWindowAlive(message.target)) return Status::Failure(StatusCode::kNotFound);
        sent.push_back(std::move(message));
        return answer;
    }
};

}  // namespace kinsort
