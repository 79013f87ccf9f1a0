#include "framework/FileDropList.h"

#include <cstdint>

#include "text/Utf16Bytes.h"

namespace kinsort {

namespace {

constexpr uint32_t kHeaderSize = 20;
constexpr size_t kWideOffset = 16;

void PutNumber(std::vector<std::byte>& out, size_t offset, uint32_t value) {
    for (size_t i = 0; i < 4; ++i)
        out[offset + i] = static_cast<std::byte>((value >> (8 * i)) & 0xFF);
}

uint32_t GetNumber(std::span<const std::byte> block, size_t offset) {
    uint32_t value = 0;
    for (size_t i = 0; i < 4; ++i)
        value |= std::to_integer<uint32_t>(block[offset + i]) << (8 * i);
    return value;
}

}  // namespace

std::vector<std::byte> BuildFileDropList(const std::vector<std::u16string>& paths) {
    std::vector<std::byte> out(kHeaderSize);
    PutNumber(out, 0, kHeaderSize);
    PutNumber(out, kWideOffset, 1);
    for (const std::u16string& path : paths) {
        AppendUtf16Bytes(out, std::u16string_view(path).substr(0, path.find(u'\0')));
        out.resize(out.size() + 2);
    }
    out.resize(out.size() + 2);
    return out;
}

std::optional<std::vector<std::u16string>> ParseFileDropList(std::span<const std::byte> block) {
    if (block.size() < kHeaderSize || GetNumber(block, kWideOffset) == 0) return std::nullopt;
    const uint32_t offset = GetNumber(block, 0);
    if (offset < kHeaderSize || offset > block.size()) return std::nullopt;
    std::vector<std::u16string> paths;
    std::u16string path;
    for (std::span<const std::byte> rest = block.subspan(offset); rest.size() >= 2; rest = rest.subspan(2)) {
        if (const char16_t unit = Utf16UnitAt(rest, 0); unit != 0) {
            path += unit;
        } else if (path.empty()) {
            return paths;
        } else {
            paths.push_back(std::move(path));
            path.clear();
        }
    }
    return std::nullopt;
}

}  // namespace kinsort
