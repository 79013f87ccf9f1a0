#include "platform/linux/UserFolders.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace kinsort {
namespace {

TEST(UserFolders, FollowTheEnvironmentWhereItNamesWholePaths) {
    const struct {
        const char *named, *home;
        std::string drives, registry, journal;
    } cases[] = {
        {"/x", "/home/me", "/x/vel/drives", "/x/vel/registry.db", "/x/vel/undo"},
        {"relative", "/home/me", "/home/me/.local/share/vel/drives", "/home/me/.config/vel/registry.db",
         "/home/me/.local/state/vel/undo"},
        {"", "relative", "", "", ""},
        {"/x", "", "/x/vel/drives", "/x/vel/registry.db", "/x/vel/undo"},
    };
    for (const auto& one : cases) {
        for (const char* variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"})
            setenv(variable, one.named, 1);
        setenv("HOME", one.home, 1);
        EXPECT_EQ(DrivesFolderOfThisUser(), one.drives);
        EXPECT_EQ(RegistryFileOfThisUser(), one.registry);
        EXPECT_EQ(JournalFolderOfThisUser(), one.journal);
    }
    for (const char* variable : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "HOME"})
        unsetenv(variable);
    EXPECT_EQ(LocalDataFolderOfThisUser() + DrivesFolderOfThisUser() + JournalFolderOfThisUser(), "");
}

}  // namespace
}  // namespace kinsort
