#include "main/HostBackend.h"

#include <string>

#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/LinuxUserAccount.h"
#include "platform/linux/SqliteRegistry.h"
#include "platform/linux/UserFolders.h"

namespace kinsort {
namespace {

constexpr std::u16string_view kCommandName = u"Kinsort";

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

HostBackend::HostBackend(const PathCodec& codec, FileSystem& files, Terminal& terminal)
    : registry_(MakeSqliteRegistry(RegistryFileOfThisUser(), codec, TellOn(codec, terminal))),
      account_(MakeLinuxUserAccount(codec)),
      processes_(MakeLinuxProcesses(codec, files)),
      settings_(*registry_, kCommandName),
      folders_({settings_, files, *account_, environment_, codec},
               FindCommandProgram(files, codec.PathToInner(ExecutableFile()), kCommandName)),
      services_{*registry_, settings_, folders_, memory_, *processes_, ExecutableFile()} {}

}  // namespace kinsort
