// Functions that only work out a value: text, numbers, paths.
#pragma once

#include <array>

#include "script/FunctionTable.h"

namespace kinsort {

// In any order.
inline constexpr std::array<FunctionRow, 0> kValueFunctions = {};

}  // namespace kinsort
