// Functions that start programs.
#pragma once

#include <array>

#include "script/FunctionTable.h"

namespace kinsort {

FunctionResult CallCall(ScriptRun& run, const FunctionCall& call);
FunctionResult CallExec(ScriptRun& run, const FunctionCall& call);

// In any order.
inline constexpr std::array<FunctionRow, 2> kProcessFunctions = {{
    {u"Call", 2, TooFewPieces::kOrdinaryValue, CallCall, "command line",
     "Starts a program, waits for its end and gives its exit code."},
    {u"Exec", 2, TooFewPieces::kOrdinaryValue, CallExec, "command line",
     "Starts a program without waiting and gives 259, or its exit code if it has ended already."},
}};

}  // namespace kinsort
