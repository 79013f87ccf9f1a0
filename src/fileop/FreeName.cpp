#include "fileop/FreeName.h"

namespace kinsort {

namespace {

// The longest front of `name` with at most `length` bytes that does not end inside a UTF-8 character.
std::string_view CutAtCharacter(std::string_view name, size_t length) {
    if (name.size() <= length) return name;
    const auto isContinuation = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
    // A character has at most three continuation bytes; more of them in a row is not UTF-8 and may be cut anywhere.
    size_t end = length;
    while (end > 0 && length - end < 3 && isContinuation(name[end]))
        --end;
    return name.substr(0, isContinuation(name[end]) ? length : end);
}

}  // namespace

std::string FindFreeName(std::string_view name, bool hasExtension,
                         const std::function<bool(const std::string&)>& isTaken) {
    const size_t dot = hasExtension ? name.find_last_of('.') : std::string_view::npos;
    const bool isSplit = dot != std::string_view::npos && dot != 0;
    std::string_view stem = isSplit ? name.substr(0, dot) : name;
    std::string_view extension = isSplit ? name.substr(dot) : std::string_view();
    constexpr size_t kRoomForNumber = 24;
    if (extension.size() + kRoomForNumber >= kLongestName) {  // not an extension in any useful sense
        stem = name;
        extension = {};
    }
    for (uint64_t number = 2;; ++number) {
        std::string tail = " (" + std::to_string(number) + ")";
        tail += extension;
        std::string candidate = std::string(CutAtCharacter(stem, kLongestName - tail.size())) + tail;
        if (!isTaken(candidate)) return candidate;
    }
}

}  // namespace kinsort
