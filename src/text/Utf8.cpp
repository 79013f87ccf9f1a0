#include "text/Utf8.h"

namespace kinsort {

namespace {

constexpr char32_t kReplacement = 0xFFFD;

}  // namespace

void AppendUtf8(std::string& out, char32_t point) {
    if (point < 0x80) {
        out += static_cast<char>(point);
        return;
    }
    const int more = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    constexpr unsigned char kLead[] = {0, 0xC0, 0xE0, 0xF0};
    out += static_cast<char>(kLead[more] | (point >> (6 * more)));
    for (int shift = 6 * (more - 1); shift >= 0; shift -= 6) {
        out += static_cast<char>(0x80 | ((point >> shift) & 0x3F));
    }
}

DecodedUtf8 DecodeUtf8(std::string_view bytes) {
    const auto lead = static_cast<unsigned char>(bytes[0]);
    if (lead < 0x80) return {lead, 1};
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return {};
    char32_t point = lead & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(bytes[i]);
        if ((next & 0xC0) != 0x80) return {};
        point = (point << 6) | (next & 0x3Fu);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = point >= 0xD800 && point <= 0xDFFF;
    if (point < kSmallest[length] || point > 0x10FFFF || isSurrogate) return {};
    return {point, length};
}

void AppendUtf16(std::u16string& out, char32_t point) {
    if (point < 0x10000) {
        out += static_cast<char16_t>(point);
        return;
    }
    out += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
    out += static_cast<char16_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
}

std::string ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size() + text.size() / 2);
    for (size_t i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i];
        if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            AppendUtf8(out, JoinSurrogates(unit, text[++i]));
        } else {
            AppendUtf8(out, IsHighSurrogate(unit) || IsLowSurrogate(unit) ? kReplacement : unit);
        }
    }
    return out;
}

std::u16string FromUtf8(std::string_view bytes) {
    std::u16string out;
    out.reserve(bytes.size());
    while (!bytes.empty()) {
        const DecodedUtf8 decoded = DecodeUtf8(bytes);
        AppendUtf16(out, decoded.point);
        bytes.remove_prefix(decoded.length == 0 ? 1 : decoded.length);
    }
    return out;
}

}  // namespace kinsort
