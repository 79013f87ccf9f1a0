#include "controls/PathEllipsis.h"

#include "text/PathSyntax.h"
#include "text/Utf8.h"

namespace kinsort {

namespace {

constexpr char16_t kEllipsis = u'\u2026';

// Where the last name begins, with the separator before it. A separator at the end belongs to the name.
size_t TailOffset(std::u16string_view path) {
    size_t at = path.size() < 2 ? 0 : path.size() - 1;
    while (at > 0 && !IsSeparator(path[at - 1]))
        --at;
    return at > 0 ? at - 1 : 0;
}

}  // namespace

std::u16string ShortenPath(std::u16string_view path, int width,
                           const std::function<int(std::u16string_view text)>& widthOf) {
    const size_t tail = TailOffset(path);
    if (tail == 0 || widthOf(path) <= width) return std::u16string(path);
    const auto shortened = [&](size_t kept) {
        if (kept > 0 && IsHighSurrogate(path[kept - 1])) --kept;
        std::u16string text(path.substr(0, kept));
        text += kEllipsis;
        return text.append(path.substr(tail));
    };
    size_t fits = 0;
    for (size_t tooMuch = tail; fits + 1 < tooMuch;) {
        const size_t middle = (fits + tooMuch) / 2;
        (widthOf(shortened(middle)) <= width ? fits : tooMuch) = middle;
    }
    return shortened(fits);
}

}  // namespace kinsort
