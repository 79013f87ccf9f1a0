// Messages between the top-level windows of this and other programs of the same user: text and other data, pairs of
// numbers, dropped files. A window is registered under a class name, by which others find it.
//
//   Result<std::unique_ptr<TopLevelWindow>> window = messages.RegisterTopLevel(u"{class}", handler);
//   QSocketNotifier notifier(messages.EventDescriptor(), QSocketNotifier::Read);   // or poll()
//   // when it is readable:
//   messages.Dispatch();
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "platform/Status.h"
#include "platform/WindowHandle.h"

namespace kinsort {

// The largest block of data that can be sent, and the longest class name.
constexpr size_t kMaxMessageBytes = size_t{64} << 20;
constexpr size_t kMaxClassNameUnits = 256;

// What a window does with messages. The bytes are valid during the call only, and come from another program: they are
// to be read with care.
class MessageHandler {
  public:
    virtual ~MessageHandler() = default;

    // A block of data with its number; the sender waits for the answer. `sender` is what the sender says of itself.
    virtual int64_t OnData(WindowHandle sender, uint64_t number, std::span<const std::byte> data) = 0;
    // A message of two numbers. Nobody gets the answer to one that was posted.
    virtual int64_t OnNumbers(uint32_t message, uint64_t first, int64_t second) = 0;
    // A list of dropped files (framework/FileDropList.h).
    virtual void OnDrop(std::span<const std::byte> dropList) = 0;
};

// A window that others can find and send messages to, for as long as this lives.
class TopLevelWindow {
  public:
    virtual ~TopLevelWindow() = default;
    virtual WindowHandle Handle() const = 0;
};

// Used from one thread, the one that made it; a program can have one for each of its threads.
class WindowMessages {
  public:
    virtual ~WindowMessages() = default;

    // --- receiving ---------------------------------------------------------------------------------------------------

    // Makes a window known. Messages that reach it go to `handler`, which outlives the result, as does this object:
    // those that are sent also while this thread waits for an answer of its own, so that two windows may send to each
    // other; those that are posted only in Dispatch(). kInvalid for a class name that is empty, too long or has a NUL.
    virtual Result<std::unique_ptr<TopLevelWindow>> RegisterTopLevel(std::u16string_view className,
                                                                     MessageHandler& handler) = 0;
    // A descriptor that becomes readable when there is something to dispatch; nobody reads from it. Valid as long as
    // this object; -1 when nothing ever comes.
    virtual int EventDescriptor() const = 0;
    // For a program without an event loop: blocks until there is something to dispatch, at most so long. False when
    // there is not.
    virtual bool WaitForEvents(int32_t milliseconds) = 0;
    // Hands on what has arrived, without waiting for more. A handler may call anything here, Dispatch() too, and may
    // take its window off.
    virtual void Dispatch() = 0;

    // --- finding -----------------------------------------------------------------------------------------------------

    // A top-level window of that class, upper and lower case alike: the newest; kNoWindow when there is none.
    virtual WindowHandle FindTopLevel(std::u16string_view className) = 0;
    // The newest top-level window of a process; kNoWindow when it has none.
    virtual WindowHandle FindTopLevelOfProcess(uint32_t processId) = 0;
    virtual bool IsWindowAlive(WindowHandle window) = 0;

    // --- sending -----------------------------------------------------------------------------------------------------
    // To a window registered here, sending is a plain call of its handler. kNotFound when the window is gone or goes
    // before it has answered, kTimedOut when it does not answer, kInvalid for more than kMaxMessageBytes.

    // Sends a block of data with a number and waits for the receiver's answer, which is returned. `sender` may be
    // kNoWindow.
    virtual Result<int64_t> SendData(WindowHandle target, WindowHandle sender, uint64_t number,
                                     std::span<const std::byte> data) = 0;
    // Sends a message of two numbers and waits for the answer.
    virtual Result<int64_t> SendNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) = 0;
    // The same without waiting: success means that the message is on its way. What is posted to one window arrives in
    // the order in which it was posted.
    virtual Status PostNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) = 0;
    // Posts a list of dropped files (framework/FileDropList.h).
    virtual Status PostDrop(WindowHandle target, std::span<const std::byte> dropList) = 0;
};

}  // namespace kinsort
