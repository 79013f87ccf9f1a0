#include "framework/VelFolders.h"

#include <array>

#include "framework/EnvironmentText.h"
#include "framework/Paths.h"
#include "text/Split.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

struct MacroRow {
    std::u16string_view name;
    const std::u16string& (VelFolders::*base)();
    std::u16string_view below;
};

// Replaced in this order. To add one: a row.
constexpr std::array<MacroRow, 8> kMacros = {{
    {u"%Script_dir%", &VelFolders::GetUserDir, u"Script\\"},
    {u"%User_dir%", &VelFolders::GetUserDir, u""},
    {u"%Menu_dir%", &VelFolders::GetUserDir, u"Menu\\"},
    {u"%App_Dir%", &VelFolders::GetAppDir, u""},
    {u"%CMD_Dir%", &VelFolders::GetAppDir, u"command\\Default\\"},
    {u"%CmdPlugin_Dir%", &VelFolders::GetAppDir, u"command\\CmdPlugin\\"},
    {u"%Viewer_Dir%", &VelFolders::GetAppDir, u"command\\Viewer\\"},
    {u"%UserCmd_Dir%", &VelFolders::GetAppDir, u"command\\User\\"},
}};

// Units of a text after the environment's variables were put in.
constexpr size_t kMaxExpandedLength = 16383;

}  // namespace

const std::u16string& VelFolders::GetProgramDir() {
    if (!programDir_) programDir_ = GetDirectoryPart(programFile_);
    return *programDir_;
}

const std::u16string& VelFolders::GetAppDir() {
    if (!appDir_) appDir_ = GetFullPath(sources_.files, GetProgramDir() + u"..\\..\\");
    return *appDir_;
}

const std::u16string& VelFolders::GetUserDir() {
    if (!userDir_) userDir_ = ChooseUserDir();
    return *userDir_;
}

// That a folder cannot be made is no reason to name another one: whoever uses it will meet the failure and say so.
std::u16string VelFolders::ChooseUserDir() {
    const std::u16string chosen = sources_.settings.ReadSettingString(kUserDirName, {});
    const uint32_t mode = sources_.settings.ReadSettingDword(kUserDirModeName);
    if (mode == kUserDirChosen) return RemoveTrailingSeparator(chosen) + u"\\";
    std::u16string folder;
    if (mode == kUserDirLocalData) {
        const std::optional<std::u16string> localData = sources_.account.LocalDataFolder();
        if (!localData) return GetAppDir();
        folder = *localData + u"\\Vel";
    } else {
        folder = GetAppDir() + u"Ubar";
        const std::optional<std::u16string> login = sources_.account.LoginName();
        if (login) folder += u"\\" + *login;
    }
    (void)CreateFolderPath(sources_.files, folder);
    return folder + u"\\";
}

std::u16string VelFolders::ExpandDirectoryMacros(std::u16string_view text) {
    std::u16string expanded = ExpandEnvironment(text, sources_.environment, sources_.codec);
    if (expanded.size() > kMaxExpandedLength) expanded = text;
    for (const MacroRow& macro : kMacros) {
        // Only a macro that occurs is worth working out its folder, which may have to be made.
        if (expanded.find(macro.name) == expanded.npos) continue;
        expanded = Replace(expanded, macro.name, (this->*macro.base)() + std::u16string(macro.below));
    }
    return expanded;
}

std::u16string VelFolders::PathForPeople(std::u16string_view path) const {
    return FromUtf8(sources_.codec.PathForPeople(path));
}

std::u16string FindCommandProgram(FileSystem& files, std::u16string_view executable, std::u16string_view name) {
    if (GetFileNamePart(executable) == name) return std::u16string(executable);
    const std::u16string prefix = GetFullPath(files, GetDirectoryPart(executable) + u"..\\");
    std::u16string host;
    for (const std::u16string_view place : {u"vel\\", u"lib\\vel\\"}) {
        host = prefix + std::u16string(place);
        if (FileExists(files, RemoveTrailingSeparator(host))) break;
    }
    return host + u"command\\Default\\" + std::u16string(name);
}

}  // namespace kinsort
