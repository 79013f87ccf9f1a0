// A path made to fit: "/home/me/Pictures/2024/summer/" becomes "/home/me/P…/summer/".
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kinsort {

// Cuts out of the middle what is too much; the last name stays whole, even if it is too wide by itself. `widthOf` tells
// the pixels of a text. A path that fits, or has nothing before its last name, comes back unchanged.
std::u16string ShortenPath(std::u16string_view path, int width,
                           const std::function<int(std::u16string_view text)>& widthOf);

}  // namespace kinsort
