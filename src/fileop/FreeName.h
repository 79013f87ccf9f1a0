// The name of an item that goes beside another of the same name.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace kinsort {

// The longest name that the volumes we know can hold, in bytes.
constexpr size_t kLongestName = 255;

// "name (2).ext", "name (3).ext" ..., the first for which `isTaken` says no. The extension starts at the last dot that
// is not the first character; of a folder (`hasExtension` false) nothing is taken for one. A name that would be too
// long loses characters before the number, never half of one.
std::string FindFreeName(std::string_view name, bool hasExtension,
                         const std::function<bool(const std::string&)>& isTaken);

}  // namespace kinsort
