// Folders and files that a command line names, looked at before anything is begun.
#pragma once

#include <string>

#include "cli/CliContext.h"
#include "cli/OptionTable.h"

namespace kinsort {

// The folder that an option names, inner form; empty after a message that names option and folder.
std::u16string FindNamedFolder(CliContext& context, OptionId option, const std::string& typed);
// The same, of a folder whose sub-folders will be listed.
std::u16string FindFolderToList(CliContext& context, OptionId option, const std::string& typed);

// The inner form of a file that can be opened for reading, else why it cannot.
Result<std::u16string> FindFileToRead(CliContext& context, const std::string& typed);

}  // namespace kinsort
