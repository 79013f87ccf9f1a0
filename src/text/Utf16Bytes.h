// UTF-16LE as bytes: what the registry, shared blocks and messages between programs hold.
#pragma once

#include <bit>
#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace kinsort {

inline void AppendUtf16Bytes(std::vector<std::byte>& out, std::u16string_view text) {
    static_assert(std::endian::native == std::endian::little, "a text is its bytes");
    const std::span<const std::byte> bytes = std::as_bytes(std::span(text));
    out.insert(out.end(), bytes.begin(), bytes.end());
}

// The unit that begins at `offset`, of which both bytes are there.
inline char16_t Utf16UnitAt(std::span<const std::byte> bytes, size_t offset) {
    return static_cast<char16_t>(std::to_integer<unsigned>(bytes[offset]) | std::to_integer<unsigned>(bytes[offset + 1])
                                                                                << 8);
}

}  // namespace kinsort
