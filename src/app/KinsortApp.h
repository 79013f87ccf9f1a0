// One run of the program: start, hand-off from the host, dialog, foreground back to the host, end.
#pragma once

#include <string>
#include <vector>

#include "app/KinsortDlg.h"
#include "platform/Environment.h"
#include "platform/SharedMemory.h"

namespace kinsort {

// All references outlive the application.
struct KinsortAppServices {
    KinsortDlgView& view;
    const KinsortDlgServices& dialog;  // its handOff is filled here
    SharedMemory& memory;
    const Environment& environment;
    const PathCodec& codec;
    std::string homeFolder;  // stored path of what "~" means in an argument; empty when it is not known
};

class CKinsortApp {
  public:
    // `arguments`: what follows the program's name, as the system hands it over. Without regard to case:
    //   /c   /m      copy, move
    //   /2c  /2m     the same in two steps: the files come first, the folder after them
    //   other        the search folder, in every form that framework/TypedPath.h understands
    // A later argument overrides an earlier one of its kind.
    CKinsortApp(KinsortAppServices services, std::vector<std::string> arguments)
        : m_services(std::move(services)), m_arguments(std::move(arguments)) {}

    // The whole run. False always: nothing is left to do for the program but to end.
    bool InitInstance();

  private:
    void ReadHandOff();
    WindowHandle FindHost();
    void ApplyCommandLine(CKinsortDlg& dialog);

    KinsortAppServices m_services;
    std::vector<std::string> m_arguments;
};

}  // namespace kinsort
