#include "framework/CopyData.h"

#include "text/Numbers.h"
#include "text/Utf16Bytes.h"

namespace kinsort {

std::vector<std::byte> CopyDataBytes(std::u16string_view text) {
    std::vector<std::byte> bytes;
    AppendUtf16Bytes(bytes, text);
    bytes.resize(bytes.size() + 2);
    return bytes;
}

Result<int64_t> SendCopyData(WindowMessages& messages, UserInterface& ui, WindowHandle target, std::u16string_view text,
                             uint32_t number) {
    return messages.SendData(target, ui.MainWindow(), number, CopyDataBytes(text));
}

Result<int64_t> SendCommandText(WindowMessages& messages, UserInterface& ui, WindowHandle target,
                                std::u16string_view text, int32_t command, uint32_t number) {
    return SendCopyData(messages, ui, target, FormatInteger(command).append(u"/").append(text), number);
}

}  // namespace kinsort
