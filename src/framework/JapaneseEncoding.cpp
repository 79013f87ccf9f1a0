#include "framework/JapaneseEncoding.h"

#include <algorithm>
#include <cstddef>

#include "platform/CodePages.h"

namespace kinsort {
namespace {

constexpr uint8_t kEscape = 0x1B;

// The byte at `i`, 0 beyond the end: 0 is part of no character here.
uint8_t At(std::string_view bytes, size_t i) {
    return i < bytes.size() ? static_cast<uint8_t>(bytes[i]) : uint8_t{0};
}

constexpr bool IsIn(uint8_t byte, uint8_t first, uint8_t last) {
    return byte >= first && byte <= last;
}

// Each returns how many bytes from `i` on are one multi-byte character of the encoding, 0 when none begins there.
size_t ShiftJisCharacter(std::string_view bytes, size_t i) {
    const uint8_t lead = At(bytes, i);
    const uint8_t trail = At(bytes, i + 1);
    const bool isPair =
        (IsIn(lead, 0x81, 0x9F) || IsIn(lead, 0xE0, 0xFC)) && (IsIn(trail, 0x40, 0x7E) || IsIn(trail, 0x80, 0xFC));
    return isPair ? 2 : 0;
}

size_t EucJpCharacter(std::string_view bytes, size_t i) {
    const uint8_t lead = At(bytes, i);
    const uint8_t second = At(bytes, i + 1);
    if (IsIn(lead, 0xA1, 0xFE) && IsIn(second, 0xA1, 0xFE)) return 2;
    if (lead == 0x8E && IsIn(second, 0xA1, 0xDF)) return 2;
    if (lead == 0x8F && IsIn(second, 0xA1, 0xFE) && IsIn(At(bytes, i + 2), 0xA1, 0xFE)) return 3;
    return 0;
}

// Up to three bytes: the longer ones are no Japanese.
size_t Utf8Character(std::string_view bytes, size_t i) {
    const uint8_t lead = At(bytes, i);
    if (!IsIn(At(bytes, i + 1), 0x80, 0xBF)) return 0;
    if (IsIn(lead, 0xC0, 0xDF)) return 2;
    if (IsIn(lead, 0xE0, 0xEF) && IsIn(At(bytes, i + 2), 0x80, 0xBF)) return 3;
    return 0;
}

// How many bytes are part of multi-byte characters.
template <typename CharacterAt>
size_t Score(std::string_view bytes, CharacterAt characterAt) {
    size_t score = 0;
    for (size_t i = 0; i < bytes.size();) {
        const size_t length = characterAt(bytes, i);
        score += length;
        i += std::max<size_t>(length, 1);
    }
    return score;
}

bool HasJapaneseEscape(std::string_view bytes) {
    // To add one: what follows the escape.
    constexpr std::string_view kSequences[] = {"$@", "$B", "(B", "(I", "(J", "$(D", "&@\x1B$B"};
    for (size_t at = bytes.find(kEscape); at != std::string_view::npos; at = bytes.find(kEscape, at + 1)) {
        const std::string_view rest = bytes.substr(at + 1);
        const auto follows = [&](std::string_view sequence) { return rest.starts_with(sequence); };
        if (std::any_of(std::begin(kSequences), std::end(kSequences), follows)) return true;
    }
    return false;
}

bool IsNoText(char c) {
    const auto byte = static_cast<uint8_t>(c);
    return byte < 0x07 || byte == 0x7F || byte == 0xFF;
}

}  // namespace

uint32_t DetectJapaneseEncoding(std::string_view bytes) {
    if (std::any_of(bytes.begin(), bytes.end(), IsNoText)) return 0;
    if (HasJapaneseEscape(bytes)) return kCodePageIso2022Jp;
    const size_t eucJp = Score(bytes, EucJpCharacter);
    const size_t shiftJis = Score(bytes, ShiftJisCharacter);
    const size_t utf8 = Score(bytes, Utf8Character);
    if (eucJp > shiftJis && eucJp > utf8) return kCodePageEucJp;
    if (shiftJis > eucJp && shiftJis > utf8) return kCodePageShiftJis;
    if (utf8 > eucJp && utf8 > shiftJis) return kCodePageUtf8;
    return 0;
}

}  // namespace kinsort
