// The outside world as a script sees it. Whoever runs scripts fills one in: the dialog, the command line, a test. A
// dry run is the same engine on services that only say what they would do.
#pragma once

#include "fileop/Progress.h"  // CancelToken
#include "platform/Clock.h"
#include "platform/CodePages.h"
#include "platform/DesktopOpener.h"
#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/LocaleMap.h"
#include "platform/PathCodec.h"
#include "platform/Processes.h"
#include "platform/Sleeper.h"
#include "platform/SystemInfo.h"
#include "platform/UserInterface.h"
#include "platform/WindowMessages.h"

namespace kinsort {

class LaunchWorkers;
class Messages;
class Settings;
class VelFolders;
struct ScriptLine;
struct ScriptRun;

// Looks over the shoulder of a run; changes nothing.
class ScriptObserver {
  public:
    virtual ~ScriptObserver() = default;
    // Before each line that is executed; skipped blocks, comments and empty lines are not.
    virtual void OnLine(ScriptRun& run, const ScriptLine& line) = 0;
};

// Somebody who must get a turn while a script runs.
class ScriptPulse {
  public:
    virtual ~ScriptPulse() = default;
    // Before every line and many times a second while the script waits, on its thread; never while it waits for an
    // answer of its user. May cancel the run.
    virtual void OnPulse() = 0;
};

// Of all names and values of variables together: 256 MB, which no sound script meets.
constexpr size_t kMaxVariableUnits = size_t{128} << 20;

// All of it outlives the run, nested runs included.
struct ScriptServices {
    FileSystem& files;
    UserInterface& ui;
    WindowMessages& windows;
    Processes& processes;
    DesktopOpener& opener;
    const Environment& environment;
    const PathCodec& codec;
    const CodePages& codePages;
    Settings& settings;  // the registry, too
    VelFolders& folders;
    Messages& messages;
    Clock& clock;
    Sleeper& sleeper;
    LaunchWorkers& launchWorkers;  // threads of programs that start in the background; goes before all the others
    const SystemInfo& system;
    const LocaleMap& locale;
    ScriptObserver* observer = nullptr;   // optional
    const CancelToken* cancel = nullptr;  // optional; looked at before every line and while waiting
    ScriptPulse* pulse = nullptr;         // optional
    size_t maxVariableUnits = kMaxVariableUnits;
};

}  // namespace kinsort
