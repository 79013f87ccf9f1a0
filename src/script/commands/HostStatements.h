// Statements that talk to the host's window, change the list of selected items and start programs.
#pragma once

#include <array>

#include "script/StatementTable.h"

namespace kinsort {

// In any order.
inline constexpr std::array<StatementRow, 0> kHostStatements = {};

}  // namespace kinsort
