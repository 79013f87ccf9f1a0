// What a verb works with: the services of the platform, the console and the token that Ctrl-C sets.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Console.h"
#include "fileop/FileOperation.h"
#include "fileop/UndoHistory.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/LocaleMap.h"
#include "platform/PathCodec.h"
#include "platform/Sys.h"
#include "platform/Terminal.h"

namespace kinsort {

struct HostServices;
struct ScriptBackend;

// All references outlive the run. What costs time is made only when a verb needs it.
struct CliServices {
    FileSystem& files;
    const PathCodec& codec;
    Sys& sys;
    Clock& clock;
    Terminal& terminal;
    EnvironmentLookup environment;
    std::function<std::unique_ptr<LocaleMap>()> makeLocaleMap;
    // The items that the host selected, inner form; nothing when no host started the program.
    std::function<std::optional<std::vector<std::u16string>>()> handedOverItems;
    std::function<HostServices&()> host;
    const ScriptBackend& script;
    std::string journalFolder = {};  // of the undo journal, stored path; empty when there is no place for it
};

class CliContext {
  public:
    explicit CliContext(CliServices& platform) : services(platform), console(platform.terminal, platform.environment) {}

    // The native path as stored: for programs.
    std::string NativePath(std::u16string_view innerPath) const;
    // The native path as a terminal can show it: for people.
    std::string ShownPath(std::u16string_view innerPath) const;

    // The services of the batch engine. Nothing, after a message, when there is no place for the undo journal.
    std::optional<FileOperationServices> EngineServices();

    // One line on standard error for each batch that a crash left unfinished. Returns the newest of them, 0 when there
    // is none.
    BatchId WarnOfUnfinishedBatches(FileOperationServices& engine);

    CliServices& services;
    Console console;
    CancelToken cancel;
};

// Runs the program and returns its exit code. `arguments` is what follows the program's name.
int RunKinsort(CliServices& services, const std::vector<std::string>& arguments);

// The program's version, "0.1.0".
std::string_view KinsortVersion();

}  // namespace kinsort
