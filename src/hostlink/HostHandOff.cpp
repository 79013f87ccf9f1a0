#include "hostlink/HostHandOff.h"

#include <optional>

#include "hostlink/LaunchDescriptor.h"
#include "hostlink/ShareMem.h"
#include "text/Numbers.h"
#include "text/Utf16Bytes.h"

namespace kinsort {
namespace {

constexpr int64_t kFirstPathField = 4;

Status ReadBlock(SharedMemory& memory, const LaunchDescriptor& descriptor, HostHandOff& handOff) {
    CShareMem shared(memory, descriptor.first, descriptor.second, descriptor.size, SharedOpening::kOpenOrCreate);
    if (!shared.GetStatus().ok()) return shared.GetStatus();
    return shared.WhileLocked([&]() -> Status {
        Result<std::vector<std::byte>> text = shared.ReadText();
        if (!text.ok()) return text.status();
        const size_t parsed = ParseHandOffBlock(*text, handOff);
        // The host can see from the block how far it was read. That it cannot takes nothing from us.
        const Status ignored = shared.Write(0, std::span(*text).first(parsed));
        return {};
    });
}

}  // namespace

void ReadHostHandOff(const Environment& environment, SharedMemory& memory, const ShowSystemText& show,
                     HostHandOff& handOff) {
    const std::optional<LaunchDescriptor> descriptor = ParseLaunchDescriptor(ReadLaunchDescriptor(environment));
    if (!descriptor) return;
    handOff.ShowMode = descriptor->showMode;
    handOff.ReturnFocus = descriptor->returnFocus;
    if (!descriptor->isShared) return;
    handOff.SharedHandOff = 1;
    const Status status = ReadBlock(memory, *descriptor, handOff);
    if (status.systemCode() != 0) show(status.systemText());
}

size_t ParseHandOffBlock(std::span<std::byte> view, HostHandOff& handOff) {
    int64_t itemCount = 0;
    int64_t tabCount = 0;
    int64_t field = 0;
    size_t parsed = 0;
    std::u16string text;
    for (size_t i = 0; i + 1 < view.size(); i += 2) {
        const char16_t unit = Utf16UnitAt(view, i);
        if (unit == u'\0') break;
        if (unit != u'\t') {
            text += unit;
            continue;
        }
        view[i] = view[i + 1] = std::byte{0};
        parsed = i + 2;
        if (field == 0)
            itemCount = ReadInt32(text);
        else if (field == 1)
            tabCount = ReadInt32(text);
        else if (field == 2)
            handOff.CurrentDir = text;
        else if (field == 3)
            handOff.Option = text;
        else if (field < kFirstPathField + itemCount)
            handOff.SelectedItems.push_back(text);
        else if (field < kFirstPathField + itemCount + tabCount)
            handOff.OtherTabFolders.push_back(text);
        text.clear();
        ++field;
    }
    return parsed;
}

}  // namespace kinsort
