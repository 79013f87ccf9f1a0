// Statements that start programs, or have the host open folders.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "script/StatementTable.h"

namespace kinsort {

LineOutcome RunCall(ScriptRun& run, const StatementCall& call);
LineOutcome RunExec(ScriptRun& run, const StatementCall& call);
LineOutcome RunWait(ScriptRun& run, const StatementCall& call);
// "shell" and "run" differ in what is done to their value only.
LineOutcome RunShell(ScriptRun& run, const StatementCall& call);
LineOutcome RunExRun(ScriptRun& run, const StatementCall& call);

inline constexpr std::array<StatementRow, 6> kProgramStatements = {{
    {u"call",
     ValueUse::kExpanded,
     RunCall,
     {1, kAnyCount},
     "command line",
     "Starts a program and waits for its end; after the time-out, asks whether to end it."},
    {u"exec", ValueUse::kExpanded, RunExec, {1, kAnyCount}, "command line", "Starts a program without waiting."},
    {u"wait", ValueUse::kExpanded, RunWait, {1, 1}, "milliseconds", "Pauses the script."},
    {u"shell",
     ValueUse::kExpanded,
     RunShell,
     {1, kAnyCount},
     "target",
     "Starts a program or opens a document; what becomes of a folder is what openmode says."},
    {u"run", ValueUse::kRaw, RunShell, {1, kAnyCount}, "target", "The same as shell, but nothing is expanded."},
    {u"exrun",
     ValueUse::kRaw,
     RunExRun,
     {1, kAnyCount},
     "program|program...",
     "Starts a program for each selected item at the end of the script; of several, the user chooses one."},
}};

// --- what these have in common ---------------------------------------------------------------------------------------

// The folder in which something stands, without its separator unless it is a drive root; empty for a bare name.
std::u16string FolderOf(std::u16string_view path);
// Where a target starts when "bootdir" is empty or "1"; the option itself otherwise.
std::u16string WorkingFolderOf(ScriptRun& run, std::u16string_view target);

}  // namespace kinsort
