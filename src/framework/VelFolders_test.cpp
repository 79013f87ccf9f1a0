#include "framework/VelFolders.h"

#include <gmock/gmock.h>

#include "framework/FolderWorld_test.h"
#include "framework/Paths.h"

namespace kinsort {
namespace {

class VelFoldersTest : public testing::Test, protected FolderWorld {
  protected:
    // Folders are kept once they are known, so each question gets new ones.
    VelFolders Folders(std::u16string_view program = u"C:\\V\\command\\Default\\Kinsort") {
        return VelFolders({settings, files, account, environment, *codec}, program);
    }
    void Choose(uint32_t mode, std::u16string_view folder = {}) {
        settings.WriteRegDword(kSettingsKey, kUserDirModeName, mode);
        settings.WriteRegString(kSettingsKey, kUserDirName, folder);
    }
};

TEST_F(VelFoldersTest, FollowTheProgram) {
    const struct {
        std::u16string program, programDir, appDir;
    } cases[] = {
        {u"C:\\V\\command\\Default\\Kinsort", u"C:\\V\\command\\Default\\", u"C:\\V\\"},
        {u"Z:\\usr\\lib/vel/command/Default/Kinsort", u"Z:\\usr\\lib/vel/command/Default/", u"Z:\\usr\\lib\\vel\\"},
        {u"C:\\Kinsort", u"C:\\", u"C:\\"},
        {u"\\\\nas\\apps\\a\\b\\c\\Kinsort", u"\\\\nas\\apps\\a\\b\\c\\", u"\\\\nas\\apps\\a\\"},
    };
    for (const auto& one : cases) {
        VelFolders asked = Folders(one.program);
        EXPECT_EQ(asked.GetProgramDir(), one.programDir);
        EXPECT_EQ(asked.GetAppDir(), one.appDir);
    }
    EXPECT_EQ(Folders(u"Kinsort").GetProgramDir(), u"Kinsort");
}

TEST_F(VelFoldersTest, UserFolderIsChosenByItsMode) {
    constexpr std::u16string_view kLocal = u"Z:\\home\\me\\.local\\share\\Vel";
    EXPECT_EQ(Folders().GetUserDir(), std::u16string(kLocal) + u"\\") << "without any settings";
    EXPECT_TRUE(FileExists(files, kLocal));

    files.AddFolder(u"C:\\V");
    const struct {
        uint32_t mode;
        std::u16string chosen, folder;
        bool isMade;
    } cases[] = {
        {2, u"D:\\Data\\", u"D:\\Data\\", false},
        {2, u"D:\\Data", u"D:\\Data\\", false},
        {2, u"D:/Data/", u"D:/Data\\", false},
        {2, u"", u"\\", true},  // the root, which is there
        {1, u"D:\\Data", u"C:\\V\\Ubar\\user1\\", true},
        {7, u"", u"C:\\V\\Ubar\\user1\\", true},
        {0xFFFFFFFF, u"", u"C:\\V\\Ubar\\user1\\", true},
    };
    for (const auto& one : cases) {
        Choose(one.mode, one.chosen);
        files.Remove(u"C:\\V\\Ubar");
        EXPECT_EQ(Folders().GetUserDir(), one.folder);
        EXPECT_EQ(FileExists(files, one.folder), one.isMade) << one.mode;
    }
    account.localData = account.login = std::nullopt;
    files.Remove(u"C:\\V\\Ubar");
    EXPECT_EQ(Folders().GetUserDir(), u"C:\\V\\Ubar\\");
    EXPECT_TRUE(FileExists(files, u"C:\\V\\Ubar"));
    Choose(0);
    EXPECT_EQ(Folders().GetUserDir(), u"C:\\V\\");

    Choose(1);
    files.Remove(u"C:\\V\\Ubar");
    files.DenyFolder(u"C:\\V");
    VelFolders kept = Folders();
    EXPECT_EQ(kept.GetUserDir(), u"C:\\V\\Ubar\\") << "also when it cannot be made";
    Choose(2, u"D:\\New");
    EXPECT_EQ(kept.GetUserDir(), u"C:\\V\\Ubar\\") << "worked out once";
}

TEST_F(VelFoldersTest, ExpandsVariablesThenMacros) {
    Choose(2, u"U:\\me");
    environment.variables = {{u"HOME", u"/home/me"},
                             {u"WHERE", u"%App_Dir%"},
                             {u"Menu_dir", u"shadowed"},
                             {u"LONG", std::u16string(16380, u'x')}};
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"%CMD_Dir%x.txt", u"C:\\V\\command\\Default\\x.txt"},
        {u"%cmd_dir%x.txt", u"%cmd_dir%x.txt"},
        {u"%Script_dir%|%User_dir%|%Script_dir%", u"U:\\me\\Script\\|U:\\me\\|U:\\me\\Script\\"},
        {u"%App_Dir%%CmdPlugin_Dir%", u"C:\\V\\C:\\V\\command\\CmdPlugin\\"},
        {u"%Viewer_Dir% %UserCmd_Dir%", u"C:\\V\\command\\Viewer\\ C:\\V\\command\\User\\"},
        {u"%HOME%\\a %WHERE%", u"Z:\\home\\me\\a C:\\V\\"},
        {u"%Menu_dir%", u"shadowed"},
        {u"100% %none% %%", u"100% %none% %%"},
        {u"%LONG%abc", std::u16string(16380, u'x') + u"abc"},
        {u"%LONG%abcd %User_dir%", u"%LONG%abcd U:\\me\\"},
        {u"", u""},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(Folders().ExpandDirectoryMacros(text), expected);
    Choose(0);
    Folders().ExpandDirectoryMacros(u"%CMD_Dir%");
    EXPECT_FALSE(FileExists(files, u"Z:\\home")) << "no folder is made that nobody named";
}

// The command line finds the same folders as the command itself, installed and in the build folder.
TEST_F(VelFoldersTest, CommandIsFoundFromTheCommandLine) {
    files.AddFolder(u"Z:\\usr\\lib\\vel");
    files.AddFolder(u"Z:\\src\\build\\dev\\vel");
    files.AddFolder(u"Z:\\src\\build\\dev\\lib\\vel");
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"Z:\\usr\\bin\\kinsort", u"Z:\\usr\\lib\\vel\\command\\Default\\Kinsort"},
        {u"Z:\\src\\build\\dev\\bin\\kinsort", u"Z:\\src\\build\\dev\\vel\\command\\Default\\Kinsort"},
        {u"Z:\\opt\\kinsort\\bin\\kinsort", u"Z:\\opt\\kinsort\\lib\\vel\\command\\Default\\Kinsort"},
        {u"Z:\\any\\where\\Kinsort", u"Z:\\any\\where\\Kinsort"},
    };
    for (const auto& [executable, command] : cases)
        EXPECT_EQ(FindCommandProgram(files, executable, u"Kinsort"), command);
}

}  // namespace
}  // namespace kinsort
