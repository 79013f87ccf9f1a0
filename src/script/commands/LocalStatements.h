// Statements that touch what is on this machine: files, clipboard, registry, message boxes, other scripts.
#pragma once

#include <array>

#include "script/StatementTable.h"

namespace kinsort {

// In any order.
inline constexpr std::array<StatementRow, 0> kLocalStatements = {};

}  // namespace kinsort
