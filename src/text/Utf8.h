// UTF-16 to UTF-8 and back, for the edges of the system. Never fails: what cannot be said becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace kinsort {

// A lone surrogate becomes U+FFFD.
std::string ToUtf8(std::u16string_view text);

// Each byte that is not part of well-formed UTF-8 becomes one U+FFFD.
std::u16string FromUtf8(std::string_view bytes);

}  // namespace kinsort
