#include "main/HostBackend.h"

#include <string>

#include "platform/linux/LinuxUserAccount.h"
#include "platform/linux/SqliteRegistry.h"
#include "platform/linux/UserFolders.h"

namespace kinsort {
namespace {

ReportRegistryDamage TellOn(const PathCodec& codec, Terminal& terminal) {
    return [&codec, &terminal](const RegistryDamage& damage) {
        const auto shown = [&codec](const std::string& file) { return codec.PathForPeople(codec.PathToInner(file)); };
        std::string text = "kinsort: the settings in " + shown(damage.file) + " are damaged; ";
        text += damage.setAside.empty() ? "nothing is stored until you move the file away\n"
                                        : "the file was kept as " + shown(damage.setAside) + " and a new one begun\n";
        (void)terminal.Write(Stream::kMessages, text);
    };
}

}  // namespace

HostBackend::HostBackend(LinuxPlatform& platform, Terminal& terminal)
    : registry_(MakeSqliteRegistry(RegistryFileOfThisUser(), *platform.codec, TellOn(*platform.codec, terminal))),
      settings_(*registry_, kCommandName),
      folders_({settings_, *platform.files, *platform.account, platform.environment, *platform.codec},
               FindCommandProgram(*platform.files, platform.codec->PathToInner(ExecutableFile()), kCommandName)),
      services_{*registry_, settings_, folders_, platform.memory, *platform.processes, ExecutableFile()} {}

}  // namespace kinsort
