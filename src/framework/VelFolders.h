// Where the host is installed and where the user's scripts, menus and bars are. Folders are texts of the inner language
// that end with one "\". Each is worked out on first use and kept as long as the object lives.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "framework/Settings.h"
#include "platform/Environment.h"
#include "platform/FileSystem.h"
#include "platform/PathCodec.h"
#include "platform/UserAccount.h"

namespace kinsort {

// All references outlive the folders.
struct VelFolderSources {
    Settings& settings;
    FileSystem& files;
    const UserAccount& account;
    const Environment& environment;
    const PathCodec& codec;
};

// The values of the setting UserDirMode.
constexpr uint32_t kUserDirLocalData = 0;  // "Vel" in the user's local application data
constexpr uint32_t kUserDirPortable = 1;   // "Ubar\<login name>" in the host's folder; so is every other number
constexpr uint32_t kUserDirChosen = 2;     // the setting UserDir

class VelFolders {
  public:
    // `programFile` is the full name of the running command, inner form.
    VelFolders(const VelFolderSources& sources, std::u16string_view programFile)
        : sources_(sources), programFile_(programFile) {}

    const std::u16string& GetProgramFile() const { return programFile_; }
    // The folder of the running command; its whole name when that holds no separator.
    const std::u16string& GetProgramDir();
    // The host's installation folder, two above the program's.
    const std::u16string& GetAppDir();
    // The user folder, as UserDirMode says; made on first use in modes 0 and 1. Given also when it could not be made.
    const std::u16string& GetUserDir();

    // First every "%NAME%" of the environment (ExpandEnvironment; a result longer than 16,383 units leaves the text as
    // it was), then the directory macros, named exactly: %Script_dir% %User_dir% %Menu_dir% %App_Dir% %CMD_Dir%
    // %CmdPlugin_Dir% %Viewer_Dir% %UserCmd_Dir%.
    std::u16string ExpandDirectoryMacros(std::u16string_view text);

    // A path as its user knows it, for texts they read.
    std::u16string PathForPeople(std::u16string_view path) const;

  private:
    std::u16string ChooseUserDir();

    VelFolderSources sources_;
    std::u16string programFile_;
    std::optional<std::u16string> programDir_;
    std::optional<std::u16string> appDir_;
    std::optional<std::u16string> userDir_;
};

// Where the command `name` lies, seen from a program `executable` of the same installation (inner form, full): the
// executable itself when it is that command; else in "vel" or "lib\vel" beside the "bin" that the executable lies in,
// the first that exists; the last of these when none does.
std::u16string FindCommandProgram(FileSystem& files, std::u16string_view executable, std::u16string_view name);

}  // namespace kinsort
