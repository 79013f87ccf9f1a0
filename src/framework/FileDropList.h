// The block of bytes that stands for a list of dropped files: a header of 20 bytes (32-bit numbers: offset of the list,
// point, flags, wide characters), then each path in UTF-16LE with its NUL, then one more NUL.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace kinsort {

// 22 bytes plus, for each path, its bytes and 2 more. A path ends at the first NUL in it.
std::vector<std::byte> BuildFileDropList(const std::vector<std::u16string>& paths);

// The paths of a block that another program made; nothing when it is not one: shorter than it says, not in wide
// characters, without its end.
std::optional<std::vector<std::u16string>> ParseFileDropList(std::span<const std::byte> block);

}  // namespace kinsort
