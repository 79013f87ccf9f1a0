#include "platform/linux/MessageInbox.h"

#include <algorithm>
#include <utility>

#include <errno.h>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include "platform/WindowMessages.h"
#include "platform/linux/LinuxError.h"

namespace kinsort {

namespace {

// Until the system is asked again for a descriptor that it did not have.
constexpr std::chrono::milliseconds kRetry{10};

// So much of its data every message may bring at once. What is larger waits for its turn: many connections together
// cannot take more memory than each of them so much.
constexpr size_t kFirstPartBytes = size_t{1} << 20;

}  // namespace

EventSet::EventSet() : set_(epoll_create1(EPOLL_CLOEXEC)) {}

Status EventSet::Add(int descriptor) {
    epoll_event event = {};
    event.events = EPOLLIN;
    return epoll_ctl(set_.get(), EPOLL_CTL_ADD, descriptor, &event) == 0 ? Status() : StatusFromErrno(errno);
}

void EventSet::Remove(int descriptor) {
    epoll_ctl(set_.get(), EPOLL_CTL_DEL, descriptor, nullptr);
}

MessageInbox::MessageInbox(const WindowFolder& folder, const MessageLimits& limits)
    : folder_(folder),
      limits_(limits),
      timer_(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)),
      waiting_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    // Without these nothing would ever arrive, which Add then says by failing.
    (void)sockets_.Add(timer_.get());
    (void)all_.Add(sockets_.get());
    (void)all_.Add(waiting_.get());
}

Status MessageInbox::Add(WindowHandle window, int socket) {
    Status status = isListening_ ? sockets_.Add(socket) : Status();
    if (status.ok()) listeners_.emplace(window, socket);
    return status;
}

void MessageInbox::Remove(WindowHandle window) {
    const auto listener = listeners_.find(window);
    sockets_.Remove(listener->second);
    listeners_.erase(listener);
    std::erase_if(incoming_, [window](const Incoming& message) { return message.window == window; });
    WatchThoseThatGoOn();
}

void MessageInbox::TakeIn() {
    const Moment now = std::chrono::steady_clock::now();
    uint64_t ignored = 0;
    if (read(timer_.get(), &ignored, sizeof ignored) < 0) {
        // It has not run out.
    }
    Accept(now);
    Read(now);
    Listen(now);
    ArmTimer();
    ShowWaiting();
}

Status MessageInbox::Post(ArrivedMessage message) {
    message.header.dataBytes = static_cast<uint32_t>(message.data.size());
    if (!HasRoomFor(message.header)) return StatusFromErrno(ENOBUFS, StatusCode::kTimedOut);
    postedBytes_ += message.data.size();
    posted_.push_back(std::move(message));
    ShowWaiting();
    return {};
}

void MessageInbox::Accept(Moment now) {
    for (const auto& [window, socket] : listeners_) {
        while (incoming_.size() < limits_.connections) {
            Descriptor connection(accept4(socket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
            if (!connection.isOpen()) {
                if (errno == EINTR || errno == ECONNABORTED) continue;
                if (errno != EAGAIN) listenAgain_ = now + kRetry;
                break;
            }
            if (!folder_.IsPeerOwner(connection.get()) || !sockets_.Add(connection.get()).ok()) continue;
            incoming_.push_back(
                {window, FrameReader(std::move(connection)), now + std::chrono::milliseconds(limits_.frameMs)});
        }
    }
}

bool MessageInbox::HasRoomFor(const FrameHeader& header) const {
    if (!IsPosted(header.kind) || posted_.empty()) return true;
    return posted_.size() < limits_.posted && postedBytes_ + header.dataBytes <= kMaxMessageBytes;
}

void MessageInbox::Read(Moment now) {
    using State = FrameReader::State;
    bool hasKeptLarge = false;  // which somebody should handle before there is another one
    for (Incoming& message : incoming_) {
        FrameReader& reader = message.reader;
        if (reader.state() == State::kWaiting) {
            const size_t most = !hasKeptLarge && MayGrow(message) ? kMaxMessageBytes : kFirstPartBytes;
            if (reader.Read(most) == State::kWaiting) continue;
            sockets_.Remove(reader.descriptor());  // nothing more to come; that it closes is no event either
        }
        // One without room stays here, and those that wait behind it in the system's queue stay there.
        if (reader.state() != State::kComplete || !HasRoomFor(reader.header())) continue;
        hasKeptLarge |= reader.dataCount() > kFirstPartBytes;
        Keep(message);
    }
    std::erase_if(incoming_, [now](const Incoming& message) {
        const bool isTaken = message.reader.descriptor() < 0;
        const bool isLate = message.reader.state() == State::kWaiting && message.deadline <= now;
        return isTaken || isLate || message.reader.state() == State::kBroken;
    });
    WatchThoseThatGoOn();
}

// Beyond the first part goes one message that is sent and one that is posted at a time: posted ones, which may have to
// wait for room, do not keep those from coming whose sender waits.
bool MessageInbox::MayGrow(const Incoming& message) const {
    if (message.reader.dataCount() < kFirstPartBytes) return false;
    return std::ranges::none_of(incoming_, [&message](const Incoming& other) {
        return &other != &message && other.reader.dataCount() > kFirstPartBytes &&
               IsPosted(other.reader.header().kind) == IsPosted(message.reader.header().kind);
    });
}

// One that has to wait for its turn would wake us all the time.
void MessageInbox::WatchThoseThatGoOn() {
    for (Incoming& message : incoming_) {
        if (message.reader.state() != FrameReader::State::kWaiting) continue;
        const bool goesOn = message.reader.dataCount() < kFirstPartBytes || MayGrow(message);
        if (goesOn == message.isWatched) continue;
        if (goesOn)
            (void)sockets_.Add(message.reader.descriptor());
        else
            sockets_.Remove(message.reader.descriptor());
        message.isWatched = goesOn;
    }
}

void MessageInbox::Keep(Incoming& message) {
    const FrameHeader header = message.reader.header();
    ArrivedMessage arrived{message.window, header, message.reader.TakeData(), message.reader.TakeConnection()};
    if (!IsPosted(header.kind)) {
        sent_.push_back(std::move(arrived));
        return;
    }
    arrived.connection.Close();
    postedBytes_ += arrived.data.size();
    posted_.push_back(std::move(arrived));
}

// Stops listening while there is no room, or the system has no descriptors: a socket with somebody at the door would
// wake us all the time.
void MessageInbox::Listen(Moment now) {
    if (listenAgain_ && *listenAgain_ <= now) listenAgain_.reset();
    const bool shouldListen = incoming_.size() < limits_.connections && !listenAgain_;
    if (shouldListen == isListening_) return;
    isListening_ = shouldListen;
    for (const auto& [window, socket] : listeners_) {
        if (shouldListen)
            (void)sockets_.Add(socket);
        else
            sockets_.Remove(socket);
    }
}

// For the first of the moments at which something is to be done although nothing has come.
void MessageInbox::ArmTimer() {
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

// Also in the middle of a dispatch, whose handler may run an event loop of its own.
void MessageInbox::ShowWaiting() {
    eventfd_t ignored = 0;
    if (sent_.empty() && posted_.empty())
        eventfd_read(waiting_.get(), &ignored);
    else
        eventfd_write(waiting_.get(), 1);
}

std::optional<ArrivedMessage> MessageInbox::Next(std::deque<ArrivedMessage>& queue) {
    if (queue.empty()) return std::nullopt;
    ArrivedMessage message = std::move(queue.front());
    queue.pop_front();
    if (&queue == &posted_) postedBytes_ -= message.data.size();
    ShowWaiting();
    return message;
}

}  // namespace kinsort
