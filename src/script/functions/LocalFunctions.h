// Functions that read what is on this machine: files, code pages, clipboard, message boxes.
#pragma once

#include <array>

#include "script/FunctionTable.h"

namespace kinsort {

// In any order.
inline constexpr std::array<FunctionRow, 0> kLocalFunctions = {};

}  // namespace kinsort
