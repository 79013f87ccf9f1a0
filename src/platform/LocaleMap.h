// The three text mappings that names are compared under. Each works on one UTF-16 code unit at a time, without context,
// so a caller may tabulate them.
#pragma once

#include <string>

namespace kinsort {

class LocaleMap {
  public:
    virtual ~LocaleMap() = default;

    // Simple one-to-one lower case. Units without one (U+0130, U+1E9E, U+212A, U+212B, surrogates) stay.
    virtual char16_t LowerCase(char16_t unit) const = 0;
    // Katakana U+30A1..30F6, U+30FD and U+30FE to hiragana; everything else stays.
    virtual char16_t Hiragana(char16_t unit) const = 0;
    // Full width to narrow forms; one unit can become two (a voiced katakana). Hiragana stays.
    virtual std::u16string HalfWidth(char16_t unit) const = 0;
};

}  // namespace kinsort
