#include "platform/linux/IcuLocaleMap.h"

#include <unordered_map>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

namespace kinsort {
namespace {

constexpr char16_t kVoicedMark = 0x3099;
constexpr char16_t kSemiVoicedMark = 0x309A;

// The raw decomposition of a unit, empty when it has none.
std::u16string Decompose(const UNormalizer2* normalizer, char16_t unit) {
    char16_t buffer[8];
    UErrorCode error = U_ZERO_ERROR;
    const int32_t length = unorm2_getRawDecomposition(normalizer, unit, buffer, 8, &error);
    if (U_FAILURE(error) || length <= 0) return {};
    return std::u16string(buffer, static_cast<size_t>(length));
}

// The narrow form of every unit that has one, read backwards from the Unicode decompositions: a unit that is the <wide>
// form of another narrows to it, and a unit whose <narrow> form exists narrows to that.
std::unordered_map<char16_t, std::u16string> NarrowForms() {
    std::unordered_map<char16_t, std::u16string> forms;
    UErrorCode error = U_ZERO_ERROR;
    const UNormalizer2* compatibility = unorm2_getNFKDInstance(&error);
    const UNormalizer2* canonical = unorm2_getNFDInstance(&error);
    if (U_FAILURE(error)) return forms;

    const auto addWide = [&](char16_t first, char16_t last) {
        for (char16_t unit = first; unit <= last; ++unit)
            forms[unit] = Decompose(compatibility, unit);
    };
    addWide(0x3000, 0x3000);
    addWide(0xFF01, 0xFF5E);
    addWide(0xFFE0, 0xFFE6);
    forms.erase(0xFF3C);  // the wide backslash stays: a narrow one would become a path separator

    const auto addNarrow = [&](char16_t first, char16_t last) {
        for (char16_t unit = first; unit <= last; ++unit) {
            const std::u16string wide = Decompose(compatibility, unit);
            if (wide.size() == 1) forms[wide[0]] = unit;
        }
    };
    addNarrow(0xFF61, 0xFFDC);
    addNarrow(0xFFE8, 0xFFEE);
    forms[0x309B] = forms[kVoicedMark];  // the spacing marks share the narrow forms of the combining ones
    forms[0x309C] = forms[kSemiVoicedMark];

    // A voiced katakana is its base and the mark, where both have narrow forms.
    for (char16_t unit = 0x30A1; unit <= 0x30FE; ++unit) {
        const std::u16string parts = Decompose(canonical, unit);
        if (parts.size() != 2 || !forms.contains(parts[0]) || !forms.contains(parts[1])) continue;
        forms[unit] = forms[parts[0]] + forms[parts[1]];
    }
    return forms;
}

class IcuLocaleMap : public LocaleMap {
  public:
    IcuLocaleMap() : narrowForms_(NarrowForms()) {}

    char16_t LowerCase(char16_t unit) const override {
        switch (unit) {
            case 0x0130:  // capital I with dot: its lower case is two characters
            case 0x1E9E:  // capital sharp s
            case 0x212A:  // Kelvin sign
            case 0x212B:  // Angstrom sign
                return unit;
        }
        const UChar32 lower = u_tolower(unit);
        return lower > 0xFFFF ? unit : static_cast<char16_t>(lower);
    }

    char16_t Hiragana(char16_t unit) const override {
        const bool hasHiragana = (unit >= 0x30A1 && unit <= 0x30F6) || unit == 0x30FD || unit == 0x30FE;
        return hasHiragana ? static_cast<char16_t>(unit - 0x60) : unit;
    }

    std::u16string HalfWidth(char16_t unit) const override {
        const auto form = narrowForms_.find(unit);
        return form == narrowForms_.end() ? std::u16string(1, unit) : form->second;
    }

  private:
    std::unordered_map<char16_t, std::u16string> narrowForms_;
};

}  // namespace

std::unique_ptr<LocaleMap> MakeIcuLocaleMap() {
    return std::make_unique<IcuLocaleMap>();
}

}  // namespace kinsort
