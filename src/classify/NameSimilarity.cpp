#include "classify/NameSimilarity.h"

namespace kinsort {
namespace {

constexpr std::u16string_view kNoise = u" \"$%&'()0123456789:;=[]_\x3000「」【】｢｣";

// A mapping holds the first unit in its low half and the second, or 0, in its high half. A unit never maps to a second
// unit U+FFFF, so this value is free to say that the unit is dropped.
constexpr uint32_t kDropped = 0xFFFFFFFF;

bool IsNoise(char16_t unit) {
    return kNoise.find(unit) != std::u16string_view::npos;
}

}  // namespace

std::u16string RemoveNameNoise(std::u16string_view name) {
    std::u16string kept;
    for (const char16_t unit : name) {
        if (!IsNoise(unit)) kept += unit;
    }
    return kept;
}

NameNormalizer::NameNormalizer(const LocaleMap& locale) : mappings_(0x10000) {
    for (uint32_t unit = 0; unit < mappings_.size(); ++unit) {
        const char16_t folded = locale.Hiragana(locale.LowerCase(static_cast<char16_t>(unit)));
        const std::u16string units = RemoveNameNoise(locale.HalfWidth(folded));
        mappings_[unit] = units.empty() ? kDropped : units[0];
        if (units.size() > 1) mappings_[unit] |= static_cast<uint32_t>(units[1]) << 16;
    }
}

std::u16string NameNormalizer::Normalize(std::u16string_view name) const {
    std::u16string normalized(name.size() * 2, u'\0');
    normalized.resize(static_cast<size_t>(NormalizeInto(name, normalized.data()) - normalized.data()));
    return normalized;
}

char16_t* NameNormalizer::NormalizeInto(std::u16string_view name, char16_t* out) const {
    // Both units are always written and the end moves by as many as count, without a branch: whether a unit is noise is
    // hard to predict. Writing two is safe, because a unit never moved the end by more than two.
    for (const char16_t unit : name) {
        const uint32_t mapping = mappings_[unit];
        const uint32_t second = mapping >> 16;
        out[0] = static_cast<char16_t>(mapping);
        out[1] = static_cast<char16_t>(second);
        const uint32_t hasSecond = (second + 0xFFFF) >> 16;  // 1 unless it is 0
        const uint32_t isDropped = (second + 1) >> 16;       // 1 when it is 0xFFFF
        out += 1 + hasSecond - isDropped * 2;
    }
    return out;
}

int CountSharedPieces(std::u16string_view normalizedFile, std::u16string_view normalizedFolder) {
    int found = 0;
    for (size_t i = 0; i + 1 < normalizedFile.size(); ++i) {
        if (normalizedFolder.find(normalizedFile.substr(i, 2)) != std::u16string_view::npos) ++found;
    }
    return found;
}

int GetNameSimilarity(const NameNormalizer& normalizer, std::u16string_view fileName, std::u16string_view folderName) {
    return CountSharedPieces(normalizer.Normalize(fileName), normalizer.Normalize(folderName));
}

int PickCandidateFolder(const NameNormalizer& normalizer, std::u16string_view fileName,
                        std::span<const std::u16string> folderNames) {
    int best = -1;
    int highest = 0;
    for (size_t folder = 0; folder < folderNames.size(); ++folder) {
        const int score = GetNameSimilarity(normalizer, fileName, folderNames[folder]);
        if (score <= highest) continue;
        highest = score;
        best = static_cast<int>(folder);
    }
    return best;
}

}  // namespace kinsort
