// The functions behind the rows of StatementTable.cpp, by the file that holds them. Those that only send the host a
// message are in HostMessages.h.
#pragma once

#include "script/StatementTable.h"

namespace kinsort {

// CallPrograms.cpp
LineOutcome RunCall(ScriptRun& run, const StatementCall& call);
LineOutcome RunExec(ScriptRun& run, const StatementCall& call);
LineOutcome RunWait(ScriptRun& run, const StatementCall& call);

// Clipboard.cpp
LineOutcome RunSetClipboardText(ScriptRun& run, const StatementCall& call);

// DeferredRunner.cpp
LineOutcome RunExRun(ScriptRun& run, const StatementCall& call);

// Include.cpp
LineOutcome RunInclude(ScriptRun& run, const StatementCall& call);

// Jumps.cpp
LineOutcome RunFolderJump(ScriptRun& run, const StatementCall& call);
LineOutcome RunFileJump(ScriptRun& run, const StatementCall& call);
LineOutcome RunFavoriteJump(ScriptRun& run, const StatementCall& call);
LineOutcome RunUbJump(ScriptRun& run, const StatementCall& call);

// MessageBoxes.cpp
LineOutcome RunMessageBox(ScriptRun& run, const StatementCall& call);
LineOutcome RunMessageBoxOk(ScriptRun& run, const StatementCall& call);
LineOutcome RunMessageBoxYesNo(ScriptRun& run, const StatementCall& call);

// OutputFile.cpp
LineOutcome RunFileOpenMode(ScriptRun& run, const StatementCall& call);
LineOutcome RunFileOpen(ScriptRun& run, const StatementCall& call);
LineOutcome RunBomOut(ScriptRun& run, const StatementCall& call);
LineOutcome RunFileWriteW(ScriptRun& run, const StatementCall& call);
LineOutcome RunFileWriteA(ScriptRun& run, const StatementCall& call);

// ReadFile.cpp
LineOutcome RunSetCodePage(ScriptRun& run, const StatementCall& call);

// RegistryValues.cpp
LineOutcome RunWriteRegNum(ScriptRun& run, const StatementCall& call);
LineOutcome RunWriteRegString(ScriptRun& run, const StatementCall& call);

// SelectedItems.cpp
LineOutcome RunAppendSelectItem(ScriptRun& run, const StatementCall& call);
LineOutcome RunAppendCsvSelectItem(ScriptRun& run, const StatementCall& call);
LineOutcome RunGetSelectItems(ScriptRun& run, const StatementCall& call);
LineOutcome RunRemoveSelectItemsLike(ScriptRun& run, const StatementCall& call);

// ShellTarget.cpp; "shell" and "run" differ in what is done to their value only.
LineOutcome RunShell(ScriptRun& run, const StatementCall& call);

// Speech.cpp
LineOutcome RunSpeech(ScriptRun& run, const StatementCall& call);

}  // namespace kinsort
