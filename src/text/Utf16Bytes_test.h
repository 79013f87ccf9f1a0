// For tests: the content of a UTF-16LE file.
#pragma once

#include <string>
#include <string_view>

namespace kinsort {

inline std::string Utf16Bytes(std::u16string_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

}  // namespace kinsort
