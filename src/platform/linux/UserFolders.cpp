#include "platform/linux/UserFolders.h"

#include <cstdlib>
#include <string_view>

namespace kinsort {
namespace {

// What `variable` names, else `otherwise` in the home folder, with `below` behind it.
std::string Find(const char* variable, std::string_view otherwise, std::string_view below) {
    const char* const named = std::getenv(variable);
    if (named != nullptr && named[0] == '/') return std::string(named).append(below);
    const char* const home = std::getenv("HOME");
    if (home != nullptr && home[0] == '/') return std::string(home).append(otherwise).append(below);
    return {};
}

}  // namespace

std::string LocalDataFolderOfThisUser() {
    return Find("XDG_DATA_HOME", "/.local/share", "");
}

std::string DrivesFolderOfThisUser() {
    return Find("XDG_DATA_HOME", "/.local/share", "/vel/drives");
}

std::string RegistryFileOfThisUser() {
    return Find("XDG_CONFIG_HOME", "/.config", "/vel/registry.db");
}

std::string JournalFolderOfThisUser() {
    return Find("XDG_STATE_HOME", "/.local/state", "/vel/undo");
}

}  // namespace kinsort
