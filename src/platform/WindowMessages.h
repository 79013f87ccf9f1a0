// Messages between the top-level windows of this and other programs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "platform/Status.h"
#include "platform/WindowHandle.h"

namespace kinsort {

class WindowMessages {
  public:
    virtual ~WindowMessages() = default;

    // The first top-level window of that class, upper and lower case alike; kNoWindow when there is none.
    virtual WindowHandle FindTopLevel(std::u16string_view className) = 0;
    virtual bool IsWindowAlive(WindowHandle window) = 0;

    // Sends a block of data with a number and waits for the receiver's answer, which is returned. kNotFound when the
    // window is gone, kTimedOut when it does not answer. `sender` may be kNoWindow.
    virtual Result<int64_t> SendData(WindowHandle target, WindowHandle sender, uint64_t number,
                                     std::span<const std::byte> data) = 0;
    // Sends a message of two numbers and waits for the answer.
    virtual Result<int64_t> SendNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) = 0;
    // The same without waiting: success means that the message is on its way.
    virtual Status PostNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) = 0;
    // Posts a list of dropped files (framework/FileDropList.h).
    virtual Status PostDrop(WindowHandle target, std::span<const std::byte> dropList) = 0;
};

}  // namespace kinsort
