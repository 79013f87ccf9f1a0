// What comes in for the windows of one thread: accepts connections, reads messages piece by piece and keeps the whole
// ones until somebody asks for them. Calls nobody, so nothing changes under its hands.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <map>
#include <optional>
#include <vector>

#include "platform/Status.h"
#include "platform/WindowHandle.h"
#include "platform/linux/Descriptor.h"
#include "platform/linux/LinuxWindowMessages.h"
#include "platform/linux/MessageFrame.h"
#include "platform/linux/WindowFolder.h"

namespace kinsort {

// A message that has come in wholly.
struct ArrivedMessage {
    WindowHandle window;
    FrameHeader header;
    std::vector<std::byte> data;
    Descriptor connection;  // for the answer; not open for what was posted
};

// Readable when one of its descriptors is.
class EventSet {
  public:
    EventSet();
    int get() const { return set_.get(); }
    Status Add(int descriptor);
    void Remove(int descriptor);

  private:
    Descriptor set_;
};

class MessageInbox {
  public:
    // Both outlive it.
    MessageInbox(const WindowFolder& folder, const MessageLimits& limits);

    // From now on listens at the window's socket, which stays open until Remove.
    Status Add(WindowHandle window, int socket);
    // Whoever is still sending to the window sees the connection close.
    void Remove(WindowHandle window);

    // Readable when something has come to a socket that TakeIn has not seen.
    int socketEvents() const { return sockets_.get(); }
    // The same, and also while a whole message waits here.
    int allEvents() const { return all_.get(); }

    // Accepts and reads all that is there, without waiting.
    void TakeIn();
    // Messages in the order in which they came.
    std::optional<ArrivedMessage> NextSent() { return Next(sent_); }
    std::optional<ArrivedMessage> NextPosted() { return Next(posted_); }
    size_t postedCount() const { return posted_.size(); }
    // Puts a message of our own behind the posted ones; kTimedOut when there is no room.
    Status Post(ArrivedMessage message);

  private:
    using Moment = std::chrono::steady_clock::time_point;
    // A message on its way in.
    struct Incoming {
        WindowHandle window;
        FrameReader reader;
        Moment deadline;
        bool isWatched = true;  // an event tells that more of it has come
    };

    void Accept(Moment now);
    void Read(Moment now);
    bool MayGrow(const Incoming& message) const;
    void WatchThoseThatGoOn();
    void Keep(Incoming& message);
    bool HasRoomFor(const FrameHeader& header) const;
    void Listen(Moment now);
    void ArmTimer();
    void ShowWaiting();
    std::optional<ArrivedMessage> Next(std::deque<ArrivedMessage>& queue);

    const WindowFolder& folder_;
    const MessageLimits& limits_;
    // While its thread waits for an answer it is to see what is sent to it, but not what waits to be dispatched.
    EventSet sockets_;
    EventSet all_;
    Descriptor timer_;
    Descriptor waiting_;  // an eventfd: not 0 while messages wait
    std::map<WindowHandle, int> listeners_;
    std::vector<Incoming> incoming_;  // in the order in which they were accepted
    std::deque<ArrivedMessage> sent_;
    std::deque<ArrivedMessage> posted_;
    size_t postedBytes_ = 0;
    bool isListening_ = true;
    std::optional<Moment> listenAgain_;  // after the system could give us no descriptor
};

}  // namespace kinsort
