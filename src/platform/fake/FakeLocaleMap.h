// Locale mappings small enough to see through, for tests of what is built on them: ASCII letters, the katakana that
// have a hiragana, full-width ASCII, the ideographic space, the corner brackets, and one unit that becomes two.
#pragma once

#include "platform/LocaleMap.h"

namespace kinsort {

class FakeLocaleMap : public LocaleMap {
  public:
    char16_t LowerCase(char16_t unit) const override {
        const bool upper = (unit >= u'A' && unit <= u'Z') || (unit >= u'Ａ' && unit <= u'Ｚ');
        return upper ? static_cast<char16_t>(unit + 0x20) : unit;
    }
    char16_t Hiragana(char16_t unit) const override {
        return unit >= 0x30A1 && unit <= 0x30F6 ? static_cast<char16_t>(unit - 0x60) : unit;
    }
    std::u16string HalfWidth(char16_t unit) const override {
        if (unit >= 0xFF01 && unit <= 0xFF5E) return std::u16string(1, static_cast<char16_t>(unit - 0xFEE0));
        switch (unit) {
            case 0x3000:
                return u" ";
            case u'「':
                return u"｢";
            case u'」':
                return u"｣";
            case u'ヷ':
                return u"ﾜﾞ";
        }
        return std::u16string(1, unit);
    }
};

}  // namespace kinsort
