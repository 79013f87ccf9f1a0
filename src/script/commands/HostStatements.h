// Statements that talk to the host's window, change the list of selected items and start programs.
#pragma once

#include "script/SortedTable.h"
#include "script/commands/HostMessages.h"
#include "script/commands/Jumps.h"
#include "script/commands/Programs.h"
#include "script/commands/SelectedItems.h"

namespace kinsort {

inline constexpr auto kHostStatements =
    JoinSlices(&StatementRow::keyword, kMessageStatements, kJumpStatements, kItemStatements, kProgramStatements);

}  // namespace kinsort
