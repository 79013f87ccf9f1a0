// For tests: another program, as far as window messages are concerned.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include "platform/WindowMessages.h"
#include "platform/linux/Descriptor.h"
#include "platform/linux/LinuxWindowMessages.h"

namespace kinsort {

using Bytes = std::vector<std::byte>;

inline Bytes Pattern(size_t size) {
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::byte>((i * 31 + (i >> 8)) & 0xFF);
    return bytes;
}

struct Got {
    char kind = ' ';  // d, n or p
    uint64_t first = 0;
    int64_t second = 0;
    uint64_t other = 0;  // the message, or the sender
    Bytes data = {};
    bool operator==(const Got&) const = default;
};

struct Recorder : MessageHandler {
    std::vector<Got> got;
    std::function<int64_t()> answer = [] { return 0; };

    int64_t OnData(WindowHandle sender, uint64_t number, std::span<const std::byte> data) override {
        got.push_back({'d', number, 0, sender, {data.begin(), data.end()}});
        return answer();
    }
    int64_t OnNumbers(uint32_t message, uint64_t first, int64_t second) override {
        got.push_back({'n', first, second, message, {}});
        return answer();
    }
    void OnDrop(std::span<const std::byte> list) override { got.push_back({'p', 0, 0, 0, {list.begin(), list.end()}}); }
};

// Of the windows in `folder`.
inline std::unique_ptr<WindowMessages> MakeWindowMessagesIn(const std::string& folder) {
    return MakeLinuxWindowMessages(folder, geteuid(), {});
}

inline bool WaitReadable(int descriptor) {
    pollfd wait = {descriptor, POLLIN, 0};
    return poll(&wait, 1, 60'000) == 1;
}

// A program of its own, as far as messages are concerned: a thread with a window and an event loop.
class OtherProgram {
  public:
    OtherProgram(std::function<std::unique_ptr<WindowMessages>()> make, Recorder& recorder,
                 std::function<void(WindowMessages&)> begin = {}, std::u16string className = u"Other") {
        std::promise<WindowHandle> made;
        std::future<WindowHandle> handle = made.get_future();
        thread_ = std::thread([this, make, &recorder, begin, className, &made] {
            const std::unique_ptr<WindowMessages> messages = make();
            const auto window = messages->RegisterTopLevel(className, recorder);
            made.set_value((*window)->Handle());
            if (begin) begin(*messages);
            std::array<pollfd, 2> waits = {pollfd{messages->EventDescriptor(), POLLIN, 0},
                                           pollfd{stop_.get(), POLLIN, 0}};
            while (poll(waits.data(), waits.size(), -1) > 0 && waits[1].revents == 0)
                messages->Dispatch();
            messages->Dispatch();
        });
        handle_ = handle.get();
    }
    ~OtherProgram() { Stop(); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    WindowHandle handle() const { return handle_; }
    // After this the recorder may be read.
    void Stop() {
        eventfd_write(stop_.get(), 1);
        if (thread_.joinable()) thread_.join();
    }

  private:
    Descriptor stop_{eventfd(0, EFD_CLOEXEC)};
    WindowHandle handle_ = kNoWindow;
    std::thread thread_;
};

}  // namespace kinsort
