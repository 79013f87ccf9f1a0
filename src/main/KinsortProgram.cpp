#include "main/KinsortProgram.h"

#include <cstdlib>
#include <utility>

#include "app/ScriptStop.h"
#include "framework/MessageNumbers.h"
#include "platform/linux/IcuCodePages.h"
#include "platform/linux/IcuLocaleMap.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxDesktopOpener.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/LinuxSys.h"
#include "platform/linux/LinuxSystemInfo.h"
#include "platform/linux/LinuxUserAccount.h"
#include "platform/linux/LinuxWindowMessages.h"
#include "platform/linux/UserFolders.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr std::u16string_view kCommandName = u"Kinsort";  // in the registry

std::string HomeFolder() {
    const char* const home = std::getenv("HOME");
    return home == nullptr ? std::string() : std::string(home);
}

}  // namespace

LinuxPlatform::LinuxPlatform()
    : codec(MakeLinuxPathCodec(DrivesFolderOfThisUser())),
      files(MakeLinuxFileSystem(*codec)),
      sys(MakeLinuxSys()),
      clock(MakeLinuxClock()),
      processes(MakeLinuxProcesses(*codec, *files)),
      opener(MakeLinuxDesktopOpener(*processes, *files, *codec)),
      windows(MakeLinuxWindowMessages()),
      account(MakeLinuxUserAccount(*codec)),
      system(MakeLinuxSystemInfo()),
      codePages(MakeIcuCodePages()),
      locale(MakeIcuLocaleMap()),
      registry(MakeSqliteRegistry(RegistryFileOfThisUser(), *codec,
                                  [this](const RegistryDamage& what) { damage = what; })) {}

LinuxPlatform::~LinuxPlatform() = default;

KinsortProgram::KinsortProgram(QtProgram& toolkit, const std::string& programFile)
    : normalizing_(std::async(std::launch::async, [this] { return NameNormalizer(*platform_.locale); })),
      settings_(*platform_.registry, kCommandName),
      folders_({settings_, *platform_.files, *platform_.account, platform_.environment, *platform_.codec},
               platform_.codec->PathToInner(programFile)),
      windowTexts_(LanguageOfSuffix(settings_.LanguageSuffix())),
      ui_(*platform_.codec, windowTexts_),
      messages_(settings_, folders_, *platform_.files, ui_),
      folderText_(*platform_.codec, HomeFolder()),
      processes_{*platform_.processes,  *platform_.opener, ui_, *platform_.files,
                 platform_.environment, *platform_.codec,  {}},
      operationView_(windowTexts_),
      operation_(Engine(), operationView_, messages_, *platform_.codec),
      icons_(*platform_.files),
      view_({*platform_.windows, ui_, *platform_.codec, icons_}) {
    toolkit.SetLanguage(windowTexts_.Language());
    toolkit.OnEndRequest([this] {
        operation_.CancelRunning();
        operationView_.WithdrawOffer();
        QtProgram::CloseWindows();
    });
}

KinsortProgram::~KinsortProgram() = default;

std::optional<FileOperationServices> KinsortProgram::Engine() {
    std::string journal = JournalFolderOfThisUser();
    if (journal.empty()) return std::nullopt;
    return FileOperationServices{*platform_.sys, *platform_.codec, *platform_.clock, std::move(journal)};
}

// When the dialog stands there: the settings were read before anything could be shown.
void KinsortProgram::TellOfDamage() {
    if (!platform_.damage) return;
    const RegistryDamage& damage = *platform_.damage;
    const uint16_t number = damage.setAside.empty() ? kMsgRegistryDamaged : kMsgRegistrySetAside;
    ui_.ShowMessage({.text = messages_.GetMessageText(number, {FromUtf8(damage.file), FromUtf8(damage.setAside)}),
                     .title = std::u16string(kProgramTitle),
                     .icon = MessageIcon::kWarning});
}

void KinsortProgram::Run(std::vector<std::string> arguments) {
    const ScriptServices scripts{*platform_.files,   ui_,
                                 *platform_.windows, *platform_.processes,
                                 *platform_.opener,  platform_.environment,
                                 *platform_.codec,   *platform_.codePages,
                                 settings_,          folders_,
                                 messages_,          *platform_.clock,
                                 platform_.sleeper,  launches_,
                                 *platform_.system,  *platform_.locale};
    const NameNormalizer normalizer = normalizing_.get();
    const KinsortDlgServices dialog{
        .ui = ui_,
        .windows = *platform_.windows,
        .files = *platform_.files,
        .icons = icons_,
        .clock = *platform_.clock,
        .normalizer = normalizer,
        .folderText = folderText_,
        .settings = settings_,
        .messages = messages_,
        .folders = folders_,
        .processes = processes_,
        .handOff = handOff_,
        .operation = operation_,
        .runScript =
            [&](const ScriptCall& call) {
                ScriptStop stop(*platform_.clock, messages_, scriptStop_, folderText_.ToShown(call.scriptPath));
                ScriptServices stoppable = scripts;
                stoppable.pulse = &stop;
                stoppable.cancel = &stop.token();
                (void)RunScript(stoppable, call);
            },
    };
    view_.CallSoon([this] { TellOfDamage(); });
    CKinsortApp application({view_, dialog, platform_.memory, platform_.environment, *platform_.codec, HomeFolder()},
                            std::move(arguments));
    application.InitInstance();
    // A thread that hangs in a dead network disk still holds what would now be destroyed.
    if (WorkerThreads::LeftBehind() > 0) std::_Exit(EXIT_SUCCESS);
}

}  // namespace kinsort
