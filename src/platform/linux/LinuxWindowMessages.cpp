#include "platform/linux/LinuxWindowMessages.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <deque>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include <errno.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include "platform/linux/LinuxError.h"
#include "platform/linux/MessageFrame.h"
#include "platform/linux/RuntimeFolder.h"
#include "platform/linux/WindowFolder.h"
#include "text/AsciiCase.h"

namespace kinsort {

namespace {

using SteadyTime = std::chrono::steady_clock;
using Moment = SteadyTime::time_point;

// Between two tries when nothing announces that another one would succeed.
constexpr std::chrono::milliseconds kRetry{10};

Status WindowGone() {
    return StatusFromErrno(ESRCH, StatusCode::kNotFound);
}

Status NoAnswer() {
    return StatusFromErrno(ETIMEDOUT, StatusCode::kTimedOut);
}

// Readable when one of its descriptors has an event.
class EventSet {
  public:
    EventSet() : set_(epoll_create1(EPOLL_CLOEXEC)) {}
    int get() const { return set_.get(); }
    bool Add(int descriptor) {
        epoll_event event = {};
        event.events = EPOLLIN;
        return epoll_ctl(set_.get(), EPOLL_CTL_ADD, descriptor, &event) == 0;
    }
    void Remove(int descriptor) { epoll_ctl(set_.get(), EPOLL_CTL_DEL, descriptor, nullptr); }

  private:
    Descriptor set_;
};

class LinuxWindowMessages final : public WindowMessages {
  public:
    LinuxWindowMessages(std::string folder, uid_t owner, const MessageLimits& limits)
        : limits_(limits), folder_(std::move(folder), owner) {
        sockets_.Add(timer_.get());
        all_.Add(sockets_.get());
        all_.Add(wake_.get());
    }
    LinuxWindowMessages(const LinuxWindowMessages&) = delete;
    LinuxWindowMessages& operator=(const LinuxWindowMessages&) = delete;

    Result<std::unique_ptr<TopLevelWindow>> RegisterTopLevel(std::u16string_view className,
                                                             MessageHandler& handler) override;
    int EventDescriptor() const override { return all_.get(); }
    bool WaitForEvents(int32_t milliseconds) override {
        pollfd wait = {all_.get(), POLLIN, 0};
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
    // A message on its way in.
    struct Incoming {
        WindowHandle window;
        FrameReader reader;
        Moment deadline;
    };
    // A message that has come in wholly.
    struct Arrived {
        WindowHandle window;
        FrameHeader header;
        std::vector<std::byte> data;
        Descriptor connection;  // for the answer; not open for what was posted
    };

    // --- receiving
    void Unregister(WindowHandle handle);
    void TakeIn();
    void Accept(Moment now);
    void Read(Moment now);
    bool HasRoomFor(const FrameHeader& header) const;
    void Listen(Moment now);
    void ArmTimer();
    void HandleSent();
    void Wake() { eventfd_write(wake_.get(), 1); }
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
    WindowFolder folder_;
    // What is sent can arrive while we wait for an answer, so it has a set of its own; what is posted waits.
    EventSet sockets_;
    EventSet all_;
    Descriptor timer_{timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)};
    Descriptor wake_{eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    std::map<WindowHandle, OwnWindow> windows_;
    std::vector<Incoming> incoming_;  // in the order in which they were accepted
    std::deque<Arrived> sent_;
    std::deque<Arrived> posted_;
    size_t postedBytes_ = 0;
    bool isListening_ = true;
    std::optional<Moment> listenAgain_;  // after the system could give us no descriptor
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
    if (isListening_ && !sockets_.Add(files->socket())) return StatusFromErrno(errno);
    windows_.emplace(handle, OwnWindow{std::move(*files), &handler});
    return std::unique_ptr<TopLevelWindow>(std::make_unique<Registered>(*this, handle));
}

void LinuxWindowMessages::Unregister(WindowHandle handle) {
    const auto window = windows_.find(handle);
    sockets_.Remove(window->second.files.socket());
    windows_.erase(window);
    // Whoever is still sending sees the connection close; what has arrived is answered when its turn comes.
    std::erase_if(incoming_, [handle](const Incoming& message) { return message.window == handle; });
}

void LinuxWindowMessages::Dispatch() {
    eventfd_t ignored = 0;
    eventfd_read(wake_.get(), &ignored);
    TakeIn();
    HandleSent();
    // Not what the handlers post meanwhile: that is for the next time, so that this one ends.
    for (size_t count = posted_.size(); count > 0 && !posted_.empty(); --count) {
        const Arrived message = std::move(posted_.front());
        posted_.pop_front();
        postedBytes_ -= message.data.size();
        if (!posted_.empty()) Wake();  // the handler may run an event loop of its own
        (void)Call(message.window, message.header, message.data);
    }
    TakeIn();  // what had no room before
    if (posted_.empty() && sent_.empty())
        eventfd_read(wake_.get(), &ignored);
    else
        Wake();
}

// Accepts and reads all that is there, without calling anybody.
void LinuxWindowMessages::TakeIn() {
    const Moment now = SteadyTime::now();
    uint64_t ignored = 0;
    if (read(timer_.get(), &ignored, sizeof ignored) < 0) {
        // It has not run out.
    }
    Accept(now);
    Read(now);
    Listen(now);
    ArmTimer();
}

void LinuxWindowMessages::Accept(Moment now) {
    for (const auto& [handle, window] : windows_) {
        while (incoming_.size() < limits_.connections) {
            Descriptor connection(accept4(window.files.socket(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
            if (!connection.isOpen()) {
                if (errno == EINTR || errno == ECONNABORTED) continue;
                if (errno != EAGAIN) listenAgain_ = now + kRetry;
                break;
            }
            if (!folder_.IsPeerOwner(connection.get())) continue;
            if (!sockets_.Add(connection.get())) continue;
            incoming_.push_back(
                {handle, FrameReader(std::move(connection)), now + std::chrono::milliseconds(limits_.frameMs)});
        }
    }
}

bool LinuxWindowMessages::HasRoomFor(const FrameHeader& header) const {
    if (!IsPosted(header.kind)) return true;
    const bool fits = header.dataBytes <= kMaxMessageBytes - std::min(postedBytes_, kMaxMessageBytes);
    return posted_.empty() || (posted_.size() < limits_.posted && fits);
}

void LinuxWindowMessages::Read(Moment now) {
    using State = FrameReader::State;
    for (Incoming& message : incoming_) {
        FrameReader& reader = message.reader;
        if (reader.state() == State::kWaiting) {
            if (reader.Read() == State::kWaiting) continue;
            sockets_.Remove(reader.descriptor());  // nothing more to come; closing it is no event either
        }
        // One without room stays here, and those that wait behind it in the system's queue stay there.
        if (reader.state() != State::kComplete || !HasRoomFor(reader.header())) continue;
        const FrameHeader header = reader.header();
        Descriptor connection = reader.TakeConnection();
        if (IsPosted(header.kind)) {
            connection.Close();
            postedBytes_ += header.dataBytes;
            if (posted_.empty()) Wake();
        }
        std::deque<Arrived>& queue = IsPosted(header.kind) ? posted_ : sent_;
        queue.push_back({message.window, header, reader.TakeData(), std::move(connection)});
    }
    std::erase_if(incoming_, [now](const Incoming& message) {
        const bool isTaken = message.reader.descriptor() < 0;
        const bool isLate = message.reader.state() == State::kWaiting && message.deadline <= now;
        return isTaken || isLate || message.reader.state() == State::kBroken;
    });
}

// Stops listening while there is no room, or the system has no descriptors: a socket with somebody at the door would
// wake us all the time.
void LinuxWindowMessages::Listen(Moment now) {
    if (listenAgain_ && *listenAgain_ <= now) listenAgain_.reset();
    const bool shouldListen = incoming_.size() < limits_.connections && !listenAgain_;
    if (shouldListen == isListening_) return;
    isListening_ = shouldListen;
    for (const auto& [handle, window] : windows_) {
        if (shouldListen)
            sockets_.Add(window.files.socket());
        else
            sockets_.Remove(window.files.socket());
    }
}

// For the first of the moments at which something is to be done although nothing has come.
void LinuxWindowMessages::ArmTimer() {
    std::optional<Moment> first = listenAgain_;
    for (const Incoming& message : incoming_) {
        if (message.reader.state() != FrameReader::State::kWaiting) continue;
        if (!first || message.deadline < *first) first = message.deadline;
    }
    itimerspec setting = {};
    if (first) {
        const int64_t ns = std::chrono::nanoseconds(first->time_since_epoch()).count();
        setting.it_value = {ns / 1'000'000'000, ns % 1'000'000'000};
    }
    timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &setting, nullptr);
}

// Hands on what waits for an answer. A handler may send and thereby come back to here.
void LinuxWindowMessages::HandleSent() {
    while (!sent_.empty()) {
        const Arrived message = std::move(sent_.front());
        sent_.pop_front();
        if (!sent_.empty()) Wake();
        const auto answer = EncodeAnswer(Call(message.window, message.header, message.data));
        // A new connection has room for so few bytes; a sender that has gone needs none.
        (void)send(message.connection.get(), answer.data(), answer.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
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
    header.dataBytes = static_cast<uint32_t>(std::min(data.size(), kMaxMessageBytes));
    if (data.size() > kMaxMessageBytes) return StatusFromErrno(EMSGSIZE, StatusCode::kInvalid);
    if (!HasRoomFor(header)) return StatusFromErrno(ENOBUFS, StatusCode::kTimedOut);
    if (posted_.empty()) Wake();
    postedBytes_ += data.size();
    posted_.push_back({target, header, {data.begin(), data.end()}, Descriptor()});
    return {};
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
        std::array<pollfd, 2> waits = {pollfd{descriptor, events, 0}, pollfd{sockets_.get(), POLLIN, 0}};
        const int ready = poll(waits.data(), waits.size(), static_cast<int>(std::max<int64_t>(left, 0)));
        if (waits[0].revents != 0) return true;
        if (ready > 0 && waits[1].revents != 0) {
            TakeIn();
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
