// The dialog's program as a user of its own has it: folders, settings, and the windows on a screen that nobody sees.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "main/KinsortProgram.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/TemporaryFolder_test.h"
#include "platform/linux/UserFolders.h"
#include "ui/qt/ModalWindows_test.h"
#include "ui/qt/QtText.h"

namespace kinsort {

inline QtProgram* g_toolkit = nullptr;  // there is one for all tests

class ProgramTest : public testing::Test {
  protected:
    ProgramTest() {
        for (const char* name : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_DATA_HOME", "HOME"}) {
            std::filesystem::create_directory(At(name));
            std::filesystem::permissions(At(name), std::filesystem::perms::owner_all);
            ::setenv(name, At(name).c_str(), 1);
        }
        ::unsetenv("VEL_ExCommand");
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
    }

    // A path in the folder that holds everything.
    std::string At(const std::string& name) const { return folder.path() + "/" + name; }
    std::u16string Inner(const std::string& name) const { return codec->PathToInner(At(name)); }
    void Write(const std::string& name, const std::string& content) const { std::ofstream(At(name)) << content; }
    std::string Read(const std::string& name) const {
        std::ifstream file(At(name));
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : std::string("(none)");
    }

    void ChangeSettings(const std::function<void(Settings& settings)>& change) const {
        const auto registry = MakeSqliteRegistry(RegistryFileOfThisUser(), *codec, {});
        Settings settings(*registry, u"Kinsort");
        change(settings);
    }
    void SetLanguage(std::u16string_view suffix) const {
        ChangeSettings([suffix](Settings& settings) {
            EXPECT_EQ(settings.WriteRegString(kSettingsKey, kLanguageName, suffix), 1);
        });
    }

    // Runs the program; `steps` follow each other when the dialog has been drawn.
    void Run(std::vector<std::string> arguments, const std::function<void(KinsortWindow& window)>& steps) const {
        KinsortProgram program(*g_toolkit, KINSORT_PROGRAM_FILE);
        KinsortWindow& window = program.View().Window();
        program.View().CallSoon([&] { QTimer::singleShot(0, &window, [&] { steps(window); }); });
        program.Run(std::move(arguments));
    }
    static void Press(KinsortWindow& window, int id) { QTest::mouseClick(window.Control(id), Qt::LeftButton); }

    const TemporaryFolder folder;
    const std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("/nowhere");
    ModalWindows windows;
};

}  // namespace kinsort
