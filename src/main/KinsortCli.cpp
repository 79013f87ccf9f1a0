// The command line program: wires the Linux backend to it.
#include <clocale>
#include <cstdlib>
#include <optional>

#include "cli/CliContext.h"
#include "cli/ScriptBackend.h"
#include "framework/WorkerThreads.h"
#include "hostlink/HostHandOff.h"
#include "main/HostBackend.h"
#include "main/LinuxPlatform.h"
#include "platform/linux/IcuLocaleMap.h"
#include "platform/linux/LinuxSys.h"
#include "platform/linux/LinuxTerminal.h"
#include "platform/linux/UserFolders.h"
#include "text/Utf8.h"

namespace {

// What the host selected, when a host started the program.
std::optional<std::vector<std::u16string>> ReadHandedOverItems(kinsort::LinuxPlatform& platform,
                                                               kinsort::Terminal& terminal) {
    kinsort::HostHandOff handOff;
    const auto show = [&terminal](const std::u16string& text) {
        (void)terminal.Write(kinsort::Stream::kMessages,
                             "kinsort: the selection of the file manager: " + kinsort::ToUtf8(text) + "\n");
    };
    kinsort::ReadHostHandOff(platform.environment, platform.memory, show, handOff);
    if (handOff.SharedHandOff != 1) return std::nullopt;
    return std::move(handOff.SelectedItems);
}

}  // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_CTYPE, "");  // the language of the system's own texts
    std::setlocale(LC_MESSAGES, "");
    std::setlocale(LC_TIME, "");  // names of weekdays in scripts
    kinsort::PrepareLinuxProcess();
    const auto terminal = kinsort::MakeLinuxTerminal();
    kinsort::LinuxPlatform platform;
    std::optional<kinsort::HostBackend> host;
    const kinsort::ScriptBackend scripts{
        .processes = *platform.processes,
        .opener = *platform.opener,
        .windows = *platform.windows,
        .environment = platform.environment,
        .codePages = *platform.codePages,
        .system = *platform.system,
        .sleeper = platform.sleeper,
        .fileManager = *platform.fileManager,
    };
    kinsort::CliServices services{
        .files = *platform.files,
        .codec = *platform.codec,
        .sys = *platform.sys,
        .clock = *platform.clock,
        .terminal = *terminal,
        .environment =
            [](const char* name) {
                const char* const value = std::getenv(name);
                return std::string(value == nullptr ? "" : value);
            },
        .makeLocaleMap = kinsort::MakeIcuLocaleMap,
        .handedOverItems = [&] { return ReadHandedOverItems(platform, *terminal); },
        .host = [&]() -> kinsort::HostServices& {
            if (!host) host.emplace(platform, *terminal);
            return host->Services();
        },
        .script = scripts,
        .journalFolder = kinsort::JournalFolderOfThisUser(),
    };
    const int code = kinsort::RunKinsort(services, std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
    // A thread that hangs in a dead network disk still holds what would now be destroyed.
    if (kinsort::WorkerThreads::LeftBehind() > 0) std::_Exit(code);
    return code;
}
