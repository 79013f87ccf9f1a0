// Statements that take the host to a folder, a file, a favourite or a place of its bar.
#pragma once

#include <array>

#include "script/StatementTable.h"

namespace kinsort {

LineOutcome RunFolderJump(ScriptRun& run, const StatementCall& call);
LineOutcome RunFileJump(ScriptRun& run, const StatementCall& call);
LineOutcome RunFavoriteJump(ScriptRun& run, const StatementCall& call);
LineOutcome RunUbJump(ScriptRun& run, const StatementCall& call);

inline constexpr std::array<StatementRow, 4> kJumpStatements = {{
    {u"folderjump",
     ValueUse::kExpanded,
     RunFolderJump,
     {2, kAnyCount},
     "mode,path",
     "Has the host show a folder, in one of its ways 0 to 3."},
    {u"filejump",
     ValueUse::kExpanded,
     RunFileJump,
     {2, kAnyCount},
     "mode,path",
     "Has the host show a file in its folder, in one of its ways 0 to 3."},
    {u"favoritejump",
     ValueUse::kExpanded,
     RunFavoriteJump,
     {2, kAnyCount},
     "number,path",
     "Has the host show a folder as its favourite of that number, 0 to 9."},
    {u"ubjump",
     ValueUse::kExpanded,
     RunUbJump,
     {1, kAnyCount},
     "number,text",
     "Sends the host a text for its place of that number, 1 to 10."},
}};

}  // namespace kinsort
