#include "cli/ShownText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

namespace kinsort {
namespace {

constexpr std::string_view kEllipsis = "\u2026";
constexpr char32_t kNoCharacter = 0xFFFFFFFF;

struct Decoded {
    char32_t character = kNoCharacter;  // kNoCharacter: the byte is not part of well-formed UTF-8
    size_t length = 1;                  // bytes
};

Decoded DecodeFirst(std::string_view bytes) {
    const auto lead = static_cast<uint8_t>(bytes[0]);
    if (lead < 0x80) return {lead, 1};
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return {};
    char32_t character = lead & (0x7FU >> length);
    for (size_t i = 1; i < length; ++i) {
        const auto next = static_cast<uint8_t>(bytes[i]);
        if ((next & 0xC0) != 0x80) return {};
        character = (character << 6) | (next & 0x3FU);
    }
    constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    if (character < kSmallest[length] || character > 0x10FFFF || isSurrogate) return {};
    return {character, length};
}

bool IsControl(char32_t c) {
    return c < 0x20 || c == 0x7F;
}

// C1 controls, separators of lines and paragraphs, embeddings, overrides and isolates.
bool DisturbsLine(char32_t c) {
    return (c >= 0x80 && c <= 0x9F) || (c >= 0x2028 && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

bool IsPlain(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= 0x20 && c < 0x7F; });
}

}  // namespace

std::string ShownText(std::string_view bytes) {
    if (IsPlain(bytes)) return std::string(bytes);
    std::string shown;
    while (!bytes.empty()) {
        const Decoded decoded = DecodeFirst(bytes);
        std::array<char, 12> escape{};
        if (decoded.character == kNoCharacter || IsControl(decoded.character)) {
            std::snprintf(escape.data(), escape.size(), "\\x%02x",
                          static_cast<unsigned>(static_cast<uint8_t>(bytes[0])));
            shown += escape.data();
        } else if (DisturbsLine(decoded.character)) {
            std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(decoded.character));
            shown += escape.data();
        } else {
            shown += bytes.substr(0, decoded.length);
        }
        bytes.remove_prefix(decoded.length);
    }
    return shown;
}

size_t ColumnsOf(const Terminal& terminal, std::string_view shown) {
    if (IsPlain(shown)) return shown.size();
    size_t columns = 0;
    while (!shown.empty()) {
        const Decoded decoded = DecodeFirst(shown);
        columns += static_cast<size_t>(terminal.CharacterColumns(decoded.character));
        shown.remove_prefix(decoded.length);
    }
    return columns;
}

std::string CutToColumns(const Terminal& terminal, std::string_view shown, size_t columns) {
    if (ColumnsOf(terminal, shown) <= columns) return std::string(shown);
    if (columns == 0) return {};
    size_t used = 0;
    size_t bytes = 0;
    while (bytes < shown.size()) {
        const Decoded decoded = DecodeFirst(shown.substr(bytes));
        const auto width = static_cast<size_t>(terminal.CharacterColumns(decoded.character));
        if (used + width > columns - 1) break;
        used += width;
        bytes += decoded.length;
    }
    return std::string(shown.substr(0, bytes)) + std::string(kEllipsis);
}

}  // namespace kinsort
