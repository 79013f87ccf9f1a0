// Scripts of the favourites' menu, chosen with the keyboard on a screen that nobody sees: they run with the dialog as
// their host.
#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "main/KinsortProgram.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/TemporaryFolder_test.h"
#include "platform/linux/UserFolders.h"
#include "text/Split.h"
#include "text/Utf8.h"
#include "ui/qt/ModalWindows_test.h"
#include "ui/qt/QtText.h"

namespace kinsort {
namespace {

namespace fs = std::filesystem;

QtProgram* g_toolkit = nullptr;

class FavoriteTest : public testing::Test {
  protected:
    FavoriteTest() {
        for (const char* name : {"XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_DATA_HOME", "HOME"}) {
            const std::string path = folder.path() + "/" + name;
            fs::create_directory(path);
            fs::permissions(path, fs::perms::owner_all);
            ::setenv(name, path.c_str(), 1);
        }
        ::unsetenv("VEL_ExCommand");
        ::unsetenv("DBUS_SESSION_BUS_ADDRESS");
        for (const char* name : {"one", "two", "three", "user/Bar/Favorite/More"})
            fs::create_directories(folder.path() + "/" + name);
        std::ofstream(folder.path() + "/two/file.txt") << "file";

        const auto registry = MakeSqliteRegistry(RegistryFileOfThisUser(), *codec, {});
        Settings settings(*registry, u"Kinsort");
        settings.WriteRegString(kSettingsKey, kLanguageName, u".en-US");
        settings.WriteRegDword(kSettingsKey, kUserDirModeName, kUserDirChosen);
        settings.WriteRegString(kSettingsKey, kUserDirName, Inner("user"));
    }

    std::u16string Inner(const std::string& name) const { return codec->PathToInner(folder.path() + "/" + name); }
    std::string Read(const std::string& name) const {
        std::ifstream file(folder.path() + "/" + name);
        return file ? std::string(std::istreambuf_iterator<char>(file), {}) : std::string("(none)");
    }

    // In the lines, "@" is the test's folder.
    void WriteFavorite(const std::string& name, std::u16string_view lines) const {
        const std::u16string text = Replace(lines, u"@", codec->PathToInner(folder.path()));
        std::ofstream(folder.path() + "/user/Bar/Favorite/" + name, std::ios::binary)
            .write(reinterpret_cast<const char*>(text.data()), static_cast<std::streamsize>(text.size() * 2));
    }

    // Chooses in the favourites' menu by keys.
    static void Choose(KinsortWindow& window, std::vector<Qt::Key> keys) {
        QTimer::singleShot(0, &window, [keys] {
            for (const Qt::Key key : keys) {
                QWidget* const menu = QApplication::activePopupWidget();
                ASSERT_NE(menu, nullptr);
                QTest::keyClick(menu, key);
            }
        });
        QTest::mouseClick(window.Control(kIdFavorites), Qt::LeftButton);
    }

    std::string Shown(KinsortWindow& window) const {
        const std::string text = window.Folder().currentText().toStdString();
        return text.starts_with(folder.path()) ? text.substr(folder.path().size()) : text;
    }

    void Run(const std::function<void(KinsortWindow&)>& steps) {
        KinsortProgram program(*g_toolkit, folder.path() + "/command/Default/Kinsort");
        KinsortWindow& window = program.View().Window();
        program.View().CallSoon([&] {
            QTimer::singleShot(0, &window, [&] {
                steps(window);
                QTest::keyClick(&window, Qt::Key_Escape);
            });
        });
        program.Run({});
    }

    const TemporaryFolder folder;
    const std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("/nowhere");
    ModalWindows windows;
};

TEST_F(FavoriteTest, WhateverModeAScriptAsksForItsFolderGoesIntoTheDialog) {
    WriteFavorite("More/deep.ecs", u"folderjump=2,@\\three\r\n");
    WriteFavorite("a.ecs", u"openmode=3\r\nshell=@\\one\r\n");
    WriteFavorite("b.ecs",
                  u"commandlineoption=ignored\r\n"
                  u"bootdir=@\\one\r\n"
                  u"var $code\r\n"
                  u"$code=call,sh -c \"echo $0 $1 >called; exit 3\" first \"@\\two\"\r\n"
                  u"call=sh -c \"echo $0 >>called\" $code\r\n"
                  u"openmode=1\r\n"
                  u"run=@\\two\\file.txt\r\n");
    Run([&](KinsortWindow& window) {
        EXPECT_EQ(Shown(window), "");
        Choose(window, {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return});
        EXPECT_EQ(Shown(window), "/one");
        Choose(window, {Qt::Key_Down, Qt::Key_Down, Qt::Key_Escape});
        EXPECT_EQ(Shown(window), "/one");
        Choose(window, {Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return});
        EXPECT_EQ(Shown(window), "/two") << "a file stands for its folder, and is not opened";
        EXPECT_EQ(Read("one/called"), "first " + folder.path() + "/two\n3\n");
        Choose(window, {Qt::Key_Down, Qt::Key_Right, Qt::Key_Return});
        EXPECT_EQ(Shown(window), "/three");
    });
}

TEST_F(FavoriteTest, QuestionsAndErrorsOfAScriptAreWindowsOverTheDialog) {
    WriteFavorite("a.ecs", u"messageboxyn=Go on?\r\nshell=@\\one\r\n");
    WriteFavorite("b.ecs", u"shell=@\\two\r\ngoto nowhere\r\nshell=@\\one\r\n");
    fs::remove(folder.path() + "/user/Bar/Favorite/More");
    Run([&](KinsortWindow& window) {
        windows.ExpectAndPress(QStringLiteral("No"));
        Choose(window, {Qt::Key_Down, Qt::Key_Return});
        EXPECT_EQ(Shown(window), "");
        windows.ExpectAndPress(QStringLiteral("Yes"));
        Choose(window, {Qt::Key_Down, Qt::Key_Return});
        EXPECT_EQ(Shown(window), "/one");
        windows.ExpectAndPress(QStringLiteral("OK"));
        Choose(window, {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return});
        EXPECT_EQ(Shown(window), "/two") << "what was done before the error stays, what follows it is not run";
    });
}

}  // namespace
}  // namespace kinsort

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleMock(&argc, argv);
    kinsort::QtProgram toolkit("Favorite_test");
    kinsort::g_toolkit = &toolkit;
    return RUN_ALL_TESTS();
}
