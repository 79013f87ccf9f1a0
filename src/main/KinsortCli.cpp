// The command line program: wires the Linux backend to it.
#include <clocale>
#include <cstdlib>
#include <memory>

#include "cli/CliContext.h"
#include "hostlink/HostHandOff.h"
#include "main/HostBackend.h"
#include "main/ScriptPlatform.h"
#include "platform/linux/IcuLocaleMap.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxEnvironment.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/LinuxSharedMemory.h"
#include "platform/linux/LinuxSys.h"
#include "platform/linux/LinuxTerminal.h"
#include "platform/linux/UserFolders.h"
#include "text/Utf8.h"

namespace {

// What the host selected, when a host started the program.
std::optional<std::vector<std::u16string>> ReadHandedOverItems(kinsort::Terminal& terminal) {
    const kinsort::LinuxEnvironment environment;
    kinsort::LinuxSharedMemory memory;
    kinsort::HostHandOff handOff;
    const auto show = [&terminal](const std::u16string& text) {
        (void)terminal.Write(kinsort::Stream::kMessages,
                             "kinsort: the selection of the file manager: " + kinsort::ToUtf8(text) + "\n");
    };
    kinsort::ReadHostHandOff(environment, memory, show, handOff);
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
    const auto codec = kinsort::MakeLinuxPathCodec(kinsort::DrivesFolderOfThisUser());
    const auto files = kinsort::MakeLinuxFileSystem(*codec);
    const auto sys = kinsort::MakeLinuxSys();
    const auto clock = kinsort::MakeLinuxClock();
    std::unique_ptr<kinsort::HostBackend> host;
    const auto hostServices = [&]() -> kinsort::HostServices& {
        if (!host) host = std::make_unique<kinsort::HostBackend>(*codec, *files, *terminal);
        return host->Services();
    };
    std::unique_ptr<kinsort::ScriptPlatform> scripts;
    kinsort::CliServices services{
        .files = *files,
        .codec = *codec,
        .sys = *sys,
        .clock = *clock,
        .terminal = *terminal,
        .environment =
            [](const char* name) {
                const char* const value = std::getenv(name);
                return std::string(value == nullptr ? "" : value);
            },
        .makeLocaleMap = kinsort::MakeIcuLocaleMap,
        .handedOverItems = [&terminal] { return ReadHandedOverItems(*terminal); },
        .host = hostServices,
        .script = [&]() -> const kinsort::ScriptBackend& {
            if (!scripts) scripts = std::make_unique<kinsort::ScriptPlatform>(*codec, *files, hostServices());
            return scripts->Backend();
        },
        .journalFolder = kinsort::JournalFolderOfThisUser(),
    };
    return kinsort::RunKinsort(services, std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
