// What the host hands over when it starts the program: how to show itself, and the folder, the option, the selected
// items and the folders of the host's other tabs. Read once, early in start-up; the program keeps one record.
//
//   HostHandOff handOff;
//   ReadHostHandOff(environment, memory, showText, handOff);
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "platform/Environment.h"
#include "platform/SharedMemory.h"

namespace kinsort {

// All zero or empty where nothing was handed over. Folders and items are full paths in the inner form.
struct HostHandOff {
    int32_t ShowMode = 0;                              // 1 to 4 have a meaning to the dialog; anything else is like 0
    int32_t ReturnFocus = 0;                           // 1: the host's window comes to the front when the program ends
    int32_t SharedHandOff = 0;                         // 1: a block was announced, and what follows was read from it
    std::u16string CurrentDir = {};                    // of the host
    std::u16string Option = {};                        // free text for this program
    std::vector<std::u16string> SelectedItems = {};    // in the host's order
    std::vector<std::u16string> OtherTabFolders = {};  // in the host's order

    bool operator==(const HostHandOff&) const = default;
};

// Shows a text of the system to the user and waits until it was read.
using ShowSystemText = std::function<void(const std::u16string& text)>;

// Fills `handOff`, which is as it was made. Without a proper launch descriptor it stays so. When the announced block
// cannot be opened, `show` is given the system's text and the lists stay empty.
void ReadHostHandOff(const Environment& environment, SharedMemory& memory, const ShowSystemText& show,
                     HostHandOff& handOff);

// Reads the text of a block: UTF-16LE, up to the first NUL or the end, fields that each end with a TAB: the number of
// items, the number of other tabs, current folder, option, the items, the folders of the tabs. Announced paths that are
// not there are missing, further ones are ignored; text behind the last TAB, and half a unit at the end, are no field.
// Paths are appended. The TABs that were read are overwritten with NUL in `view`; returns how many bytes that concerns,
// which is the end of the last field.
size_t ParseHandOffBlock(std::span<std::byte> view, HostHandOff& handOff);

}  // namespace kinsort
