// One run of one script file: everything that its statements and functions read and change. A nested run ("include")
// has a frame of its own and shares what is a reference here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "framework/Processes.h"
#include "framework/TextFile.h"
#include "hostlink/CommandOptions.h"
#include "script/DeferredRun.h"
#include "script/ExpandLine.h"
#include "script/FlowState.h"
#include "script/LineOutcome.h"
#include "script/Script.h"
#include "script/ScriptError.h"
#include "script/ScriptSource.h"
#include "script/VariableTable.h"

namespace kinsort {

// What a run shares with the runs that it includes.
struct ScriptSession {
    const ScriptServices& services;
    int depth = 0;  // of includes; 0 in the script that was asked for
    ScriptEnding ending = ScriptEnding::kFinished;
};

struct ScriptRun {
    ScriptRun(ScriptSession& theSession, const ScriptCall& theCall, VariableTable& theVariables,
              OptionTable& theOptionTable);
    ScriptRun(const ScriptRun&) = delete;
    ScriptRun& operator=(const ScriptRun&) = delete;

    // --- what the run was called with --------------------------------------------------------------------------------

    ScriptSession& session;
    const ScriptServices& services;
    const ScriptCall& call;  // paths, switches
    WindowHandle hostWindow;
    const size_t itemsAtStart;  // what "?SelectedCount?" says, whatever becomes of the list

    // --- shared with nested runs -------------------------------------------------------------------------------------

    std::vector<std::u16string>& selectedItems;
    VariableTable& variables;
    // An option line changes both of these. Whoever changes `options` alone changes it until the next "include" only.
    OptionTable& optionTable;
    CommandOptions options;  // the table's texts, read; the run's own

    // --- the run's own -----------------------------------------------------------------------------------------------

    ScriptSource source;
    RunTokens tokens;
    // What ExpandLine needs; scope.forIndex is the current item of a running "for" loop, -1 outside of one.
    ExpansionScope scope;
    FlowState flow;
    ProcessContext processes;  // for framework/Processes.h

    std::unique_ptr<OutputFile> output;  // of "fileopen"; none when it is not open
    bool overwritesNextFile = false;     // set by "fileopenmode", used up by the next "fileopen"
    bool writesByteOrderMark = false;    // set by "bomout", used up by the next "filewritew"
    uint16_t readCodePage = 1200;        // of "fileread" and "fileallread"
    CTextFile readFile;                  // of these two; stays open between lines

    std::vector<DeferredRun> deferredRuns;

    // --- telling the user --------------------------------------------------------------------------------------------
    // The run's own boxes belong to no window. A function of an assignment calls one of these and returns
    // FunctionResult::Ended(); a statement returns what they give.

    // The error's text and `text` behind it; the run ends.
    LineOutcome Fail(ScriptError error, std::u16string_view text);
    // A text of its own; the run ends.
    LineOutcome FailWith(std::u16string_view message);
    // ExpandLine or ExpandVariables gave nothing for a part of this statement.
    LineOutcome FailTooLong(std::u16string_view statement);
    // The run goes on afterwards.
    void Tell(std::u16string_view message);
    // The user said No: the run ends without another word.
    LineOutcome Decline();

    // --- waiting -----------------------------------------------------------------------------------------------------

    // Lets services.pulse have its turn, too: who waits asks this again and again.
    bool isCancelled() const;
    // Waits that long, unless the run is cancelled meanwhile; nothing for 0 and less.
    void Pause(int32_t milliseconds);
};

}  // namespace kinsort
