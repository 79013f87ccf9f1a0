// Texts that are sent to another program's window, the host's above all.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Status.h"
#include "platform/UserInterface.h"
#include "platform/WindowMessages.h"

namespace kinsort {

// The text in UTF-16LE with its NUL: what such a message carries.
std::vector<std::byte> CopyDataBytes(std::u16string_view text);

// Sends the text with `number` in the name of the program's main window and waits for the answer, which is returned.
Result<int64_t> SendCopyData(WindowMessages& messages, UserInterface& ui, WindowHandle target, std::u16string_view text,
                             uint32_t number);

// The same with the text "command/text".
Result<int64_t> SendCommandText(WindowMessages& messages, UserInterface& ui, WindowHandle target,
                                std::u16string_view text, int32_t command, uint32_t number);

}  // namespace kinsort
