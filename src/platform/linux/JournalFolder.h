// Where the undo journal of the user lies.
#pragma once

#include <string>

namespace kinsort {

// "vel/undo" in $XDG_STATE_HOME, else in ~/.local/state, stored form. A relative value does not count: the journal must
// not depend on where the program was started. Empty when neither variable names an absolute path.
std::string JournalFolderOfThisUser();

}  // namespace kinsort
