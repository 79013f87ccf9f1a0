// Statements that change the list of selected items.
#pragma once

#include <array>

#include "script/StatementTable.h"

namespace kinsort {

LineOutcome RunAppendSelectItem(ScriptRun& run, const StatementCall& call);
LineOutcome RunAppendCsvSelectItem(ScriptRun& run, const StatementCall& call);
LineOutcome RunGetSelectItems(ScriptRun& run, const StatementCall& call);
LineOutcome RunRemoveSelectItemsLike(ScriptRun& run, const StatementCall& call);

inline constexpr std::array<StatementRow, 4> kItemStatements = {{
    {u"appendselectitem",
     ValueUse::kExpanded,
     RunAppendSelectItem,
     {0, kAnyCount},
     "item",
     "Adds an item to the selected ones."},
    {u"appendcsvselectitem",
     ValueUse::kExpanded,
     RunAppendCsvSelectItem,
     {0, kAnyCount},
     "item,item...",
     "Adds items to the selected ones."},
    {u"getselectitems",
     ValueUse::kExpanded,
     RunGetSelectItems,
     {1, kAnyCount},
     "folder or pattern",
     "Adds what a folder holds, or what matches a pattern, until there are more than 1000 items."},
    {u"removeselectitems",
     ValueUse::kRaw,
     RunRemoveSelectItemsLike,
     {0, kAnyCount},
     "pattern;pattern...",
     "Takes the items off that match a pattern; with ! in front, those that match none. Nothing is expanded."},
}};

}  // namespace kinsort
