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
#include "main/LinuxPlatform.h"
#include "platform/linux/SqliteRegistry.h"
#include "ui/qt/QtIcons.h"
#include "ui/qt/QtKinsortDlgView.h"
#include "ui/qt/QtOperationView.h"
#include "ui/qt/QtProgram.h"
#include "ui/qt/ScriptStopWindow.h"

namespace kinsort {

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
    void RunDialog(std::vector<std::string> arguments);
    std::optional<FileOperationServices> Engine();
    void TellOfDamage();

    LinuxPlatform platform_;
    std::unique_ptr<LocaleMap> locale_;
    std::optional<RegistryDamage> damage_;  // met when the settings were read
    std::unique_ptr<Registry> registry_;
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
};

}  // namespace kinsort
