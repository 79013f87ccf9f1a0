// The functions behind the rows of FunctionTable.cpp, by the file that holds them. Arguments are used as they stand,
// blanks included; numbers among them are read by text/Numbers.h.
#pragma once

#include "script/FunctionTable.h"

namespace kinsort {

// functions/PathFunctions.cpp
FunctionResult GetPathFolder(ScriptRun& run, const FunctionCall& call);
FunctionResult GetPathName(ScriptRun& run, const FunctionCall& call);
FunctionResult GetPathExtension(ScriptRun& run, const FunctionCall& call);
FunctionResult RemoveLastSeparator(ScriptRun& run, const FunctionCall& call);

// functions/TextFunctions.cpp
FunctionResult CountUnits(ScriptRun& run, const FunctionCall& call);
FunctionResult TakeSubString(ScriptRun& run, const FunctionCall& call);
FunctionResult TakeLeft(ScriptRun& run, const FunctionCall& call);
FunctionResult TakeRight(ScriptRun& run, const FunctionCall& call);
FunctionResult FindText(ScriptRun& run, const FunctionCall& call);
FunctionResult ReplaceText(ScriptRun& run, const FunctionCall& call);
FunctionResult TakeCsvField(ScriptRun& run, const FunctionCall& call);
FunctionResult KeepText(ScriptRun& run, const FunctionCall& call);
FunctionResult PadWithZeros(ScriptRun& run, const FunctionCall& call);
FunctionResult TrimCharacterRight(ScriptRun& run, const FunctionCall& call);
FunctionResult TrimCharacterLeft(ScriptRun& run, const FunctionCall& call);

// functions/NumberFunctions.cpp
FunctionResult EvaluateDouble(ScriptRun& run, const FunctionCall& call);
FunctionResult KeepWindowPosition(ScriptRun& run, const FunctionCall& call);

// commands/Clipboard.cpp
FunctionResult CallGetClipboardText(ScriptRun& run, const FunctionCall& call);

// commands/MessageBoxes.cpp
FunctionResult CallMessageBox(ScriptRun& run, const FunctionCall& call);
FunctionResult CallMessageBoxOk(ScriptRun& run, const FunctionCall& call);
FunctionResult CallMessageBoxYesNo(ScriptRun& run, const FunctionCall& call);

// commands/PathQuestions.cpp
FunctionResult CallExist(ScriptRun& run, const FunctionCall& call);
FunctionResult CallIsDirectory(ScriptRun& run, const FunctionCall& call);
FunctionResult CallIsFile(ScriptRun& run, const FunctionCall& call);
FunctionResult CallRandom(ScriptRun& run, const FunctionCall& call);

// commands/ReadFile.cpp
FunctionResult CallFileRead(ScriptRun& run, const FunctionCall& call);
FunctionResult CallFileAllRead(ScriptRun& run, const FunctionCall& call);
FunctionResult CallDetectCodePage(ScriptRun& run, const FunctionCall& call);

// commands/SystemMetrics.cpp
FunctionResult CallGetSystemMetrics(ScriptRun& run, const FunctionCall& call);

// commands/CallPrograms.cpp
FunctionResult CallCall(ScriptRun& run, const FunctionCall& call);
FunctionResult CallExec(ScriptRun& run, const FunctionCall& call);

}  // namespace kinsort
