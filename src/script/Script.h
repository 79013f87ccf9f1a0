// Runs a script of the ExCommand language: the single entry of the engine.
//
//     ScriptCall call{.scriptPath = path, .selectedItems = items};
//     const ScriptResult result = RunScript(services, call);
//
// Everything that a script says to its user or asks of them goes through services.ui, so a run is the same from the
// dialog, a shell and a test. The engine throws nothing and keeps nothing between runs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/WindowHandle.h"
#include "script/LineOutcome.h"
#include "script/ScriptServices.h"

namespace kinsort {

class OptionTable;
class VariableTable;

constexpr uint32_t kNoForcedOpenMode = 0xFFFFFFFF;

// The class of the host's main window.
constexpr std::u16string_view kHostWindowClass = u"{6A1D93C2-4E58-4B07-9F3A-2C81D7E05B94}";

struct ScriptCall {
    std::u16string scriptPath;     // inner form, like every path here
    std::u16string currentFolder;  // the host's current folder; programs start in it unless told otherwise
    std::u16string otherFolder;    // the folder of the host's other pane
    std::vector<std::u16string>& selectedItems;   // what the script works on; it may add and remove
    uint32_t forcedOpenMode = kNoForcedOpenMode;  // the open mode, whatever the script says
    int32_t takesCommandLineOption = 1;           // 0: "commandlineoption" lines are ignored
    WindowHandle hostWindow = kNoWindow;          // gets the messages; kNoWindow: found by kHostWindowClass
    int32_t marksSelectedFile = 0;                // not 0: a "commandlineoption" line stores the text "?SelFile?"
    int32_t handedOn = 0;                         // nested runs get the same; nothing reads it
    int32_t reserved = 0;                         // 0 in nested runs
    VariableTable* variables = nullptr;           // null: the run has its own
    OptionTable* options = nullptr;               // null: the run has its own, with the defaults
};

enum class ScriptEnding : uint8_t {
    kFinished,    // the end of the script, "EOF", "exit" or "exitall"
    kDeclined,    // the user said No to a question of the run
    kError,       // a message said why the run ended
    kLimit,       // nested too deeply, too much memory, too many repetitions; a message said which
    kCancelled,   // services.cancel
    kUnreadable,  // the script could not be read; nothing was run
};

struct ScriptResult {
    int32_t code = 0;  // -1: "exitall", here or in an included script; a limit; cancelled. Else 0.
    ScriptEnding ending = ScriptEnding::kFinished;
};

ScriptResult RunScript(const ScriptServices& services, const ScriptCall& call);

// "include": runs another script in the middle of `outer`, with its variables, options, selected items and switches.
// kEndWithMinusOne when that returned -1; otherwise the outer run has read its options again and goes on.
LineOutcome RunIncludedScript(ScriptRun& outer, std::u16string_view scriptPath);

// Scripts that include each other more deeply end with a message. So do those whose variables take too much memory
// (ScriptServices::maxVariableUnits).
constexpr int kMaxIncludeDepth = 100;

}  // namespace kinsort
