// Where the user's own files lie, as the environment says: stored paths. A variable whose value is no absolute path
// counts as not set, so that nothing depends on where the program was started; each result is empty when neither its
// variable nor HOME names a folder.
#pragma once

#include <string>

namespace kinsort {

std::string LocalDataFolderOfThisUser();  // $XDG_DATA_HOME, else ~/.local/share
std::string DrivesFolderOfThisUser();     // "vel/drives" in it
std::string RegistryFileOfThisUser();     // "vel/registry.db" in $XDG_CONFIG_HOME, else in ~/.config
std::string JournalFolderOfThisUser();    // "vel/undo" in $XDG_STATE_HOME, else in ~/.local/state

}  // namespace kinsort
