// The dialog's program: wires the Linux backend and the windows to it.
#include <clocale>
#include <cstdlib>
#include <future>
#include <optional>

#include "app/KinsortApp.h"
#include "app/OperationPresenter.h"
#include "framework/LaunchBatch.h"
#include "framework/MessageNumbers.h"
#include "platform/linux/IcuCodePages.h"
#include "platform/linux/IcuLocaleMap.h"
#include "platform/linux/JournalFolder.h"
#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxDesktopOpener.h"
#include "platform/linux/LinuxEnvironment.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/LinuxProcesses.h"
#include "platform/linux/LinuxSharedMemory.h"
#include "platform/linux/LinuxSleeper.h"
#include "platform/linux/LinuxSys.h"
#include "platform/linux/LinuxSystemInfo.h"
#include "platform/linux/LinuxUserAccount.h"
#include "platform/linux/LinuxWindowMessages.h"
#include "platform/linux/SqliteRegistry.h"
#include "text/Utf8.h"
#include "ui/qt/QtIcons.h"
#include "ui/qt/QtKinsortDlgView.h"
#include "ui/qt/QtOperationView.h"
#include "ui/qt/QtProgram.h"

namespace kinsort {
namespace {

constexpr const char* kProgramName = "Kinsort";

std::string HomeFolder() {
    const char* const home = std::getenv("HOME");
    return home == nullptr ? std::string() : std::string(home);
}

// What the system offers, in the order in which one builds on the other.
struct Platform {
    std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec(DrivesFolderOfThisUser());
    std::unique_ptr<FileSystem> files = MakeLinuxFileSystem(*codec);
    std::unique_ptr<Sys> sys = MakeLinuxSys();
    std::unique_ptr<Clock> clock = MakeLinuxClock();
    std::unique_ptr<Processes> processes = MakeLinuxProcesses(*codec, *files);
    std::unique_ptr<DesktopOpener> opener = MakeLinuxDesktopOpener(*processes, *files, *codec);
    std::unique_ptr<WindowMessages> windows = MakeLinuxWindowMessages();
    std::unique_ptr<UserAccount> account = MakeLinuxUserAccount(*codec);
    std::unique_ptr<SystemInfo> system = MakeLinuxSystemInfo();
    std::unique_ptr<CodePages> codePages = MakeIcuCodePages();
    LinuxEnvironment environment;
    LinuxSharedMemory memory;
    LinuxSleeper sleeper;
    std::optional<RegistryDamage> damage;
    std::unique_ptr<Registry> registry =
        MakeSqliteRegistry(RegistryFileOfThisUser(), *codec, [this](const RegistryDamage& what) { damage = what; });
};

std::optional<FileOperationServices> Engine(Platform& platform) {
    std::string journal = JournalFolderOfThisUser();
    if (journal.empty()) return std::nullopt;
    return FileOperationServices{*platform.sys, *platform.codec, *platform.clock, std::move(journal)};
}

// Once, when the dialog stands there, since the settings were read long before anything could be shown.
void TellOfDamage(Platform& platform, Messages& messages, UserInterface& ui) {
    if (!platform.damage) return;
    const RegistryDamage& damage = *platform.damage;
    const uint16_t number = damage.setAside.empty() ? kMsgRegistryDamaged : kMsgRegistrySetAside;
    ui.ShowMessage({.text = messages.GetMessageText(number, {FromUtf8(damage.file), FromUtf8(damage.setAside)}),
                    .title = std::u16string(kProgramTitle),
                    .icon = MessageIcon::kWarning});
}

int Run(std::vector<std::string> arguments) {
    PrepareLinuxProcess();
    QtProgram program(kProgramName);
    Platform platform;
    // Two tables of the locale for 65,536 characters: made beside the start of the window.
    const auto locale = MakeIcuLocaleMap();
    auto normalizing = std::async(std::launch::async, [&locale] { return NameNormalizer(*locale); });

    Settings settings(*platform.registry, FromUtf8(kProgramName));
    VelFolders folders({settings, *platform.files, *platform.account, platform.environment, *platform.codec},
                       platform.codec->PathToInner(ExecutableFile()));
    const WindowTexts windowTexts(LanguageOfSuffix(settings.LanguageSuffix()));
    program.SetLanguage(windowTexts.Language());
    QtUserInterface ui(*platform.codec, windowTexts);
    Messages messages(settings, folders, *platform.files, ui);
    const FolderText folderText(*platform.codec, HomeFolder());
    ProcessContext processes{*platform.processes,  *platform.opener, ui, *platform.files,
                             platform.environment, *platform.codec,  {}};
    QtOperationView operationView(windowTexts);
    OperationPresenter operation(Engine(platform), operationView, messages, *platform.codec);
    QtIcons icons(*platform.files);
    QtKinsortDlgView view({*platform.windows, ui, *platform.codec, icons});
    LaunchWorkers launches;
    const ScriptServices scripts{*platform.files,   ui,
                                 *platform.windows, *platform.processes,
                                 *platform.opener,  platform.environment,
                                 *platform.codec,   *platform.codePages,
                                 settings,          folders,
                                 messages,          *platform.clock,
                                 platform.sleeper,  launches,
                                 *platform.system,  *locale};
    HostHandOff handOff;
    const NameNormalizer normalizer = normalizing.get();
    const KinsortDlgServices dialog{
        .ui = ui,
        .windows = *platform.windows,
        .files = *platform.files,
        .icons = icons,
        .clock = *platform.clock,
        .normalizer = normalizer,
        .folderText = folderText,
        .settings = settings,
        .messages = messages,
        .folders = folders,
        .processes = processes,
        .handOff = handOff,
        .operation = operation,
        .runScript = [&scripts](const ScriptCall& call) { (void)RunScript(scripts, call); },
    };
    view.CallSoon([&] { TellOfDamage(platform, messages, ui); });
    program.OnEndRequest([&operation] {
        operation.CancelRunning();
        QtProgram::CloseWindows();
    });
    CKinsortApp application({view, dialog, platform.memory, platform.environment, *platform.codec, HomeFolder()},
                            std::move(arguments));
    application.InitInstance();
    // A thread that hangs in a dead network disk still holds what would now be destroyed.
    if (WorkerThreads::LeftBehind() > 0) std::_Exit(EXIT_SUCCESS);
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace kinsort

int main(int argc, char** argv) {
    std::setlocale(LC_CTYPE, "");  // the language of the system's own texts
    std::setlocale(LC_MESSAGES, "");
    return kinsort::Run(std::vector<std::string>(argv + (argc > 0 ? 1 : 0), argv + argc));
}
