#include "text/Wildcard.h"

#include <cstddef>

#include "text/AsciiCase.h"

namespace kinsort {

namespace {

// Only the last "*" ever needs to be tried again: whatever an earlier one could take, the later one can take too.
template <typename Equal>
bool Match(std::u16string_view text, std::u16string_view pattern, Equal equal) {
    size_t t = 0;
    size_t p = 0;
    size_t star = std::u16string_view::npos;  // the last "*" met
    size_t starText = 0;                      // where the text after its run begins
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == u'*') {
            star = p++;
            starText = t;
        } else if (p < pattern.size() && (pattern[p] == u'?' || equal(pattern[p], text[t]))) {
            ++p;
            ++t;
        } else if (star != std::u16string_view::npos) {
            p = star + 1;
            t = ++starText;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*')
        ++p;
    return p == pattern.size();
}

}  // namespace

bool WildcardMatch(std::u16string_view text, std::u16string_view pattern) {
    return Match(text, pattern, [](char16_t a, char16_t b) { return a == b; });
}

bool WildcardMatchNoCase(std::u16string_view text, std::u16string_view pattern) {
    return Match(text, pattern, [](char16_t a, char16_t b) { return AsciiLower(a) == AsciiLower(b); });
}

bool NameMatchesPattern(std::u16string_view name, std::u16string_view pattern) {
    return pattern == u"*.*" || WildcardMatchNoCase(name, pattern);
}

}  // namespace kinsort
