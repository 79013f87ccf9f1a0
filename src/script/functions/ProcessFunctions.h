// Functions that start programs.
#pragma once

#include <array>

#include "script/FunctionTable.h"

namespace kinsort {

// In any order.
inline constexpr std::array<FunctionRow, 0> kProcessFunctions = {};

}  // namespace kinsort
