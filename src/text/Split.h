// Cutting a text at separators, putting pieces together, and replacing.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kinsort {

// The pieces between separators, empty ones included: one more than there are separators, so one for the empty text.
std::vector<std::u16string> Split(std::u16string_view text, char16_t separator);

// The pieces that are not empty.
std::vector<std::u16string> SplitSkippingEmpty(std::u16string_view text, char16_t separator);

std::u16string Join(const std::vector<std::u16string>& pieces, std::u16string_view separator);

// Every occurrence of `from`, left to right, those inside of what was put in not looked at again. An empty `from`
// changes nothing.
std::u16string Replace(std::u16string_view text, std::u16string_view from, std::u16string_view to);

// The same in place. False, and nothing changed, when the text would become longer than `mostUnits`.
[[nodiscard]] bool ReplaceWithin(std::u16string& text, std::u16string_view from, std::u16string_view to,
                                 size_t mostUnits);

}  // namespace kinsort
