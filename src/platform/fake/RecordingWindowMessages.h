// Windows that exist because a test says so, and a list of what was sent to them. A registered window's handler is
// called too: at once for what is sent, in Dispatch() for what is posted.
#pragma once

#include <algorithm>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <utility>
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
    std::map<WindowHandle, std::u16string> windows;   // with their classes; the newest has the highest handle
    std::map<uint32_t, WindowHandle> processWindows;  // by process
    int64_t answer = 0;                               // to everything that waits for one
    std::vector<SentMessage> sent;
    Status registering;  // a failure: no window can be registered

    Result<std::unique_ptr<TopLevelWindow>> RegisterTopLevel(std::u16string_view className,
                                                             MessageHandler& handler) override {
        if (!registering.ok()) return registering;
        const WindowHandle handle = windows.empty() ? 1 : windows.rbegin()->first + 1;
        windows[handle] = className;
        handlers_[handle] = &handler;
        return std::unique_ptr<TopLevelWindow>(std::make_unique<Registered>(*this, handle));
    }
    int EventDescriptor() const override { return -1; }
    bool WaitForEvents(int32_t) override { return !posted_.empty(); }
    void Dispatch() override {
        for (size_t count = posted_.size(); count > 0 && !posted_.empty(); --count) {
            const SentMessage message = std::move(posted_.front());
            posted_.pop_front();
            const auto found = handlers_.find(message.target);
            if (found == handlers_.end()) continue;
            if (message.data.empty())
                found->second->OnNumbers(message.message, message.first, message.second);
            else
                found->second->OnDrop(message.data);
        }
    }

    WindowHandle FindTopLevel(std::u16string_view className) override {
        const auto found = std::find_if(windows.rbegin(), windows.rend(),
                                        [&](const auto& window) { return EqualNoCase(window.second, className); });
        return found == windows.rend() ? kNoWindow : found->first;
    }
    WindowHandle FindTopLevelOfProcess(uint32_t processId) override {
        const auto found = processWindows.find(processId);
        return found == processWindows.end() ? kNoWindow : found->second;
    }
    bool IsWindowAlive(WindowHandle window) override { return windows.contains(window); }

    Result<int64_t> SendData(WindowHandle target, WindowHandle sender, uint64_t number,
                             std::span<const std::byte> data) override {
        if (!IsWindowAlive(target)) return Status::Failure(StatusCode::kNotFound);
        sent.push_back({target, sender, false, 0, number, 0, {data.begin(), data.end()}});
        const auto found = handlers_.find(target);
        return found == handlers_.end() ? answer : found->second->OnData(sender, number, data);
    }
    Result<int64_t> SendNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) override {
        if (!IsWindowAlive(target)) return Status::Failure(StatusCode::kNotFound);
        sent.push_back({target, kNoWindow, false, message, first, second, {}});
        const auto found = handlers_.find(target);
        return found == handlers_.end() ? answer : found->second->OnNumbers(message, first, second);
    }
    Status PostNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) override {
        return Post({target, kNoWindow, true, message, first, second, {}});
    }
    Status PostDrop(WindowHandle target, std::span<const std::byte> dropList) override {
        return Post({target, kNoWindow, true, 0, 0, 0, {dropList.begin(), dropList.end()}});
    }

  private:
    class Registered final : public TopLevelWindow {
      public:
        Registered(RecordingWindowMessages& messages, WindowHandle handle) : messages_(messages), handle_(handle) {}
        ~Registered() override {
            messages_.windows.erase(handle_);
            messages_.handlers_.erase(handle_);
        }
        Registered(const Registered&) = delete;
        Registered& operator=(const Registered&) = delete;
        WindowHandle Handle() const override { return handle_; }

      private:
        RecordingWindowMessages& messages_;
        WindowHandle handle_;
    };

    Status Post(SentMessage message) {
        if (!IsWindowAlive(message.target)) return Status::Failure(StatusCode::kNotFound);
        sent.push_back(message);
        posted_.push_back(std::move(message));
        return {};
    }

    std::map<WindowHandle, MessageHandler*> handlers_;
    std::deque<SentMessage> posted_;
};

}  // namespace kinsort
