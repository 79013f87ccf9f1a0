// Everything that the dialog's program is made of, wired to the Linux backend and to the windows of Qt. A test runs it
// as the program does.
#pragma once

#include <future>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/KinsortApp.h"
#include "app/OperationPresenter.h"
#include "framework/LaunchBatch.h"
#include "platform/linux/LinuxEnvironment.h"
#include "platform/linux/LinuxSharedMemory.h"
#include "platform/linux/LinuxSleeper.h"
#include "platform/linux/SqliteRegistry.h"
#include "ui/qt/QtIcons.h"
#include "ui/qt/QtKinsortDlgView.h"
#include "ui/qt/QtOperationView.h"
#include "ui/qt/QtProgram.h"
#include "ui/qt/ScriptStopWindow.h"

namespace kinsort {

// What the system offers, in the order in which one builds on the other.
struct LinuxPlatform {
    LinuxPlatform();
    ~LinuxPlatform();

    std::unique_ptr<PathCodec> codec;
    std::unique_ptr<FileSystem> files;
    std::unique_ptr<Sys> sys;
    std::unique_ptr<Clock> clock;
    std::unique_ptr<Processes> processes;
    std::unique_ptr<DesktopOpener> opener;
    std::unique_ptr<WindowMessages> windows;
    std::unique_ptr<UserAccount> account;
    std::unique_ptr<SystemInfo> system;
    std::unique_ptr<CodePages> codePages;
    std::unique_ptr<LocaleMap> locale;
    LinuxEnvironment environment;
    LinuxSharedMemory memory;
    LinuxSleeper sleeper;
    std::optional<RegistryDamage> damage;  // met when the settings were read
    std::unique_ptr<Registry> registry;
};

class KinsortProgram {
  public:
    // `toolkit` outlives it. `programFile`: the stored path of the program, from which messages and translations are
    // found.
    KinsortProgram(QtProgram& toolkit, const std::string& programFile);
    ~KinsortProgram();

    QtKinsortDlgView& View() { return view_; }

    // Shows the dialog and returns when everything is done. Once. `arguments`: what follows the program's name.
    void Run(std::vector<std::string> arguments);

  private:
    std::optional<FileOperationServices> Engine();
    void TellOfDamage();

    LinuxPlatform platform_;
    std::future<NameNormalizer> normalizing_;
    Settings settings_;
    VelFolders folders_;
    WindowTexts windowTexts_;
    QtUserInterface ui_;
    Messages messages_;
    FolderText folderText_;
    ProcessContext processes_;
    QtOperationView operationView_;
    OperationPresenter operation_;
    QtIcons icons_;
    QtKinsortDlgView view_;
    QtScriptStopView scriptStop_;
    HostHandOff handOff_;
    LaunchWorkers launches_;  // goes before everything that a launch works with
};

}  // namespace kinsort
