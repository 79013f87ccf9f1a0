#include "main/KinsortProgram.h"

#include <cstdlib>
#include <utility>

#include "app/ScriptStop.h"
#include "framework/LaunchBatch.h"
#include "framework/MessageNumbers.h"
#include "platform/linux/IcuLocaleMap.h"
#include "platform/linux/UserFolders.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

std::string HomeFolder() {
    const char* const home = std::getenv("HOME");
    return home == nullptr ? std::string() : std::string(home);
}

}  // namespace

KinsortProgram::KinsortProgram(QtProgram& toolkit, const std::string& programFile)
    : locale_(MakeIcuLocaleMap()),
      registry_(MakeSqliteRegistry(RegistryFileOfThisUser(), *platform_.codec,
                                   [this](const RegistryDamage& what) { damage_ = what; })),
      normalizing_(std::async(std::launch::async, [this] { return NameNormalizer(*locale_); })),
      settings_(*registry_, kCommandName),
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
    if (!damage_) return;
    const RegistryDamage& damage = *damage_;
    const uint16_t number = damage.setAside.empty() ? kMsgRegistryDamaged : kMsgRegistrySetAside;
    ui_.ShowMessage({.text = messages_.GetMessageText(number, {FromUtf8(damage.file), FromUtf8(damage.setAside)}),
                     .title = std::u16string(kProgramTitle),
                     .icon = MessageIcon::kWarning});
}

void KinsortProgram::Run(std::vector<std::string> arguments) {
    RunDialog(std::move(arguments));
    // A thread that hangs in a dead network disk still holds what would now be destroyed.
    if (WorkerThreads::LeftBehind() > 0) std::_Exit(EXIT_SUCCESS);
}

void KinsortProgram::RunDialog(std::vector<std::string> arguments) {
    LaunchWorkers launches;
    const ScriptServices scripts{*platform_.files,   ui_,
                                 *platform_.windows, *platform_.processes,
                                 *platform_.opener,  platform_.environment,
                                 *platform_.codec,   *platform_.codePages,
                                 settings_,          folders_,
                                 messages_,          *platform_.clock,
                                 platform_.sleeper,  launches,
                                 *platform_.system,  *locale_};
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
}

}  // namespace kinsort
