#include "platform/linux/LinuxWindowMessages.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include <errno.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "platform/linux/LinuxError.h"
#include "platform/linux/MessageFrame.h"
#include "platform/linux/MessageInbox.h"
#include "platform/linux/RuntimeFolder.h"
#include "platform/linux/WindowFolder.h"
#include "text/AsciiCase.h"

namespace kinsort {

namespace {

using SteadyTime = std::chrono::steady_clock;
using Moment = SteadyTime::time_point;

// Between two tries when nothing announces that another one would succeed.
constexpr std::chrono::milliseconds kRetry{2};

Status WindowGone() {
    return StatusFromErrno(ESRCH, StatusCode::kNotFound);
}

Status NoAnswer() {
    return StatusFromErrno(ETIMEDOUT, StatusCode::kTimedOut);
}

class LinuxWindowMessages final : public WindowMessages {
  public:
    LinuxWindowMessages(std::string folder, uid_t owner, const MessageLimits& limits)
        : limits_(limits), folder_(std::move(folder), owner) {}
    LinuxWindowMessages(const LinuxWindowMessages&) = delete;
    LinuxWindowMessages& operator=(const LinuxWindowMessages&) = delete;

    Result<std::unique_ptr<TopLevelWindow>> RegisterTopLevel(std::u16string_view className,
                                                             MessageHandler& handler) override;
    int EventDescriptor() const override { return inbox_.allEvents(); }
    bool WaitForEvents(int32_t milliseconds) override {
        pollfd wait = {inbox_.allEvents(), POLLIN, 0};
        return poll(&wait, 1, milliseconds) > 0;
    }
    void Dispatch() override;

    WindowHandle FindTopLevel(std::u16string_view className) override;
    WindowHandle FindTopLevelOfProcess(uint32_t processId) override;
    bool IsWindowAlive(WindowHandle window) override { return windows_.contains(window) || folder_.IsAlive(window); }

    Result<int64_t> SendData(WindowHandle target, WindowHandle sender, uint64_t number,
                             std::span<const std::byte> data) override {
        return Send(target, {FrameKind::kSentData, 0, sender, number, 0, 0}, data);
    }
    Result<int64_t> SendNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) override {
        return Send(target, {FrameKind::kSentNumbers, message, kNoWindow, first, second, 0}, {});
    }
    Status PostNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) override {
        return Post(target, {FrameKind::kPostedNumbers, message, kNoWindow, first, second, 0}, {});
    }
    Status PostDrop(WindowHandle target, std::span<const std::byte> dropList) override {
        return Post(target, {FrameKind::kPostedDrop, 0, kNoWindow, 0, 0, 0}, dropList);
    }

  private:
    class Registered;

    struct OwnWindow {
        WindowFiles files;
        MessageHandler* handler;
    };

    // --- receiving
    void Unregister(WindowHandle handle);
    void HandleSent();
    std::optional<int64_t> Call(WindowHandle window, const FrameHeader& header, std::span<const std::byte> data);

    // --- sending
    Result<int64_t> Send(WindowHandle target, FrameHeader header, std::span<const std::byte> data);
    Status Post(WindowHandle target, FrameHeader header, std::span<const std::byte> data);
    Result<Descriptor> Connect(WindowHandle target, Moment deadline);
    Result<Descriptor> Transmit(WindowHandle target, FrameHeader& header, std::span<const std::byte> data);
    Status Write(int connection, std::span<const std::byte> bytes, Moment deadline);
    Result<int64_t> ReadAnswer(int connection, Moment deadline);
    bool WaitFor(int descriptor, short events, Moment deadline);

    const MessageLimits limits_;
    const WindowFolder folder_;
    MessageInbox inbox_{folder_, limits_};
    std::map<WindowHandle, OwnWindow> windows_;
};

class LinuxWindowMessages::Registered final : public TopLevelWindow {
  public:
    Registered(LinuxWindowMessages& messages, WindowHandle handle) : messages_(messages), handle_(handle) {}
    Registered(const Registered&) = delete;
    Registered& operator=(const Registered&) = delete;
    ~Registered() override { messages_.Unregister(handle_); }
    WindowHandle Handle() const override { return handle_; }

  private:
    LinuxWindowMessages& messages_;
    WindowHandle handle_;
};

// --- receiving -------------------------------------------------------------------------------------------------------

Result<std::unique_ptr<TopLevelWindow>> LinuxWindowMessages::RegisterTopLevel(std::u16string_view className,
                                                                              MessageHandler& handler) {
    Result<WindowFiles> files = folder_.Create(className);
    if (!files.ok()) return files.status();
    const WindowHandle handle = files->handle();
    Status status = inbox_.Add(handle, files->socket());
    if (!status.ok()) return status;
    windows_.emplace(handle, OwnWindow{std::move(*files), &handler});
    return std::unique_ptr<TopLevelWindow>(std::make_unique<Registered>(*this, handle));
}

void LinuxWindowMessages::Unregister(WindowHandle handle) {
    inbox_.Remove(handle);
    windows_.erase(handle);
}

void LinuxWindowMessages::Dispatch() {
    inbox_.TakeIn();
    HandleSent();
    // Not what the handlers post meanwhile: that is for the next time, so that this one ends.
    for (size_t count = inbox_.postedCount(); count > 0; --count) {
        const std::optional<ArrivedMessage> message = inbox_.NextPosted();
        if (!message) break;
        (void)Call(message->window, message->header, message->data);
    }
    inbox_.TakeIn();  // what had no room before
}

// Hands on what waits for an answer. A handler may send and thereby come back to here.
void LinuxWindowMessages::HandleSent() {
    while (const std::optional<ArrivedMessage> message = inbox_.NextSent()) {
        const auto answer = EncodeAnswer(Call(message->window, message->header, message->data));
        // A new connection has room for so few bytes; a sender that has gone needs none.
        (void)send(message->connection.get(), answer.data(), answer.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }
}

std::optional<int64_t> LinuxWindowMessages::Call(WindowHandle window, const FrameHeader& header,
                                                 std::span<const std::byte> data) {
    const auto found = windows_.find(window);
    if (found == windows_.end()) return std::nullopt;
    MessageHandler& handler = *found->second.handler;
    switch (header.kind) {
        case FrameKind::kSentData:
            return handler.OnData(header.sender, header.first, data);
        case FrameKind::kSentNumbers:
        case FrameKind::kPostedNumbers:
            return handler.OnNumbers(header.message, header.first, header.second);
        case FrameKind::kPostedDrop:
            handler.OnDrop(data);
            return 0;
    }
    return std::nullopt;
}

// --- finding ---------------------------------------------------------------------------------------------------------

WindowHandle LinuxWindowMessages::FindTopLevel(std::u16string_view className) {
    const std::vector<WindowRecord> windows = folder_.List();
    const auto found = std::ranges::find_if(
        windows, [className](const WindowRecord& window) { return EqualNoCase(window.className, className); });
    return found == windows.end() ? kNoWindow : found->handle;
}

WindowHandle LinuxWindowMessages::FindTopLevelOfProcess(uint32_t processId) {
    const std::vector<WindowRecord> windows = folder_.List();
    const auto found = std::ranges::find(windows, processId, &WindowRecord::processId);
    return found == windows.end() ? kNoWindow : found->handle;
}

// --- sending ---------------------------------------------------------------------------------------------------------

Result<int64_t> LinuxWindowMessages::Send(WindowHandle target, FrameHeader header, std::span<const std::byte> data) {
    if (windows_.contains(target)) {
        if (data.size() > kMaxMessageBytes) return StatusFromErrno(EMSGSIZE, StatusCode::kInvalid);
        return *Call(target, header, data);
    }
    const Result<Descriptor> connection = Transmit(target, header, data);
    if (!connection.ok()) return connection.status();
    return ReadAnswer(connection->get(), SteadyTime::now() + std::chrono::milliseconds(limits_.answerMs));
}

Status LinuxWindowMessages::Post(WindowHandle target, FrameHeader header, std::span<const std::byte> data) {
    if (!windows_.contains(target)) return Transmit(target, header, data).status();
    if (data.size() > kMaxMessageBytes) return StatusFromErrno(EMSGSIZE, StatusCode::kInvalid);
    return inbox_.Post({target, header, {data.begin(), data.end()}, Descriptor()});
}

// The connection over which the whole message has gone.
Result<Descriptor> LinuxWindowMessages::Transmit(WindowHandle target, FrameHeader& header,
                                                 std::span<const std::byte> data) {
    if (data.size() > kMaxMessageBytes) return StatusFromErrno(EMSGSIZE, StatusCode::kInvalid);
    header.dataBytes = static_cast<uint32_t>(data.size());
    const Moment deadline = SteadyTime::now() + std::chrono::milliseconds(limits_.frameMs);
    Result<Descriptor> connection = Connect(target, deadline);
    if (!connection.ok()) return connection;
    Status status = Write(connection->get(), EncodeHeader(header), deadline);
    if (status.ok()) status = Write(connection->get(), data, deadline);
    if (!status.ok()) return status;
    return connection;
}

Result<Descriptor> LinuxWindowMessages::Connect(WindowHandle target, Moment deadline) {
    while (true) {
        Result<Descriptor> connection = folder_.Connect(target);
        if (connection.code() != StatusCode::kBusy) return connection;
        if (SteadyTime::now() >= deadline) return NoAnswer();
        WaitFor(-1, 0, std::min(deadline, SteadyTime::now() + kRetry));
    }
}

Status LinuxWindowMessages::Write(int connection, std::span<const std::byte> bytes, Moment deadline) {
    while (!bytes.empty()) {
        const ssize_t put = send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (put >= 0) {
            bytes = bytes.subspan(static_cast<size_t>(put));
        } else if (errno == EAGAIN) {
            if (!WaitFor(connection, POLLOUT, deadline)) return NoAnswer();
        } else if (errno == EPIPE || errno == ECONNRESET) {
            return WindowGone();
        } else if (errno != EINTR) {
            return StatusFromErrno(errno);
        }
    }
    return {};
}

Result<int64_t> LinuxWindowMessages::ReadAnswer(int connection, Moment deadline) {
    std::array<std::byte, kFrameAnswerBytes> bytes;
    for (size_t count = 0; count < bytes.size();) {
        const ssize_t got = recv(connection, bytes.data() + count, bytes.size() - count, MSG_DONTWAIT);
        if (got > 0) {
            count += static_cast<size_t>(got);
        } else if (got == 0 || errno == ECONNRESET) {
            return WindowGone();
        } else if (errno == EAGAIN) {
            if (!WaitFor(connection, POLLIN, deadline)) return NoAnswer();
        } else if (errno != EINTR) {
            return StatusFromErrno(errno);
        }
    }
    const std::optional<FrameAnswer> answer = DecodeAnswer(bytes);
    if (!answer) return StatusFromErrno(EPROTO, StatusCode::kCorrupt);
    if (answer->isWindowGone) return WindowGone();
    return answer->answer;
}

// Waits for the descriptor, and meanwhile answers what is sent to our own windows. False when the time is over.
bool LinuxWindowMessages::WaitFor(int descriptor, short events, Moment deadline) {
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyTime::now()).count();
        std::array<pollfd, 2> waits = {pollfd{descriptor, events, 0}, pollfd{inbox_.socketEvents(), POLLIN, 0}};
        const int ready = poll(waits.data(), waits.size(), static_cast<int>(std::max<int64_t>(left, 0)));
        if (waits[0].revents != 0) return true;
        if (ready > 0 && waits[1].revents != 0) {
            inbox_.TakeIn();
            HandleSent();
        }
        if (left <= 0) return false;
    }
}

}  // namespace

std::unique_ptr<WindowMessages> MakeLinuxWindowMessages() {
    return MakeLinuxWindowMessages(FindRuntimeFolder(), geteuid(), {});
}

std::unique_ptr<WindowMessages> MakeLinuxWindowMessages(std::string folder, uid_t owner, const MessageLimits& limits) {
    return std::make_unique<LinuxWindowMessages>(std::move(folder), owner, limits);
}

}  // namespace kinsort
