#include "platform/linux/JournalFolder.h"

#include <cstdlib>

namespace kinsort {

std::string JournalFolderOfThisUser() {
    const char* const state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && state[0] == '/') return std::string(state) + "/vel/undo";
    const char* const home = std::getenv("HOME");
    if (home != nullptr && home[0] == '/') return std::string(home) + "/.local/state/vel/undo";
    return {};
}

}  // namespace kinsort
