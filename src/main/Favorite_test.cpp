// Scripts of the favourites' menu, chosen with the keyboard on a screen that nobody sees: they run with the dialog as
// their host.
#include "main/ProgramWorld_test.h"
#include "text/Split.h"

namespace kinsort {
namespace {

class FavoriteTest : public ProgramTest {
  protected:
    FavoriteTest() {
        for (const char* name : {"one", "two", "three", "user/Bar/Favorite/More"})
            std::filesystem::create_directories(At(name));
        Write("two/file.txt", "file");
        SetLanguage(u".en-US");
        ChangeSettings([this](Settings& settings) {
            settings.WriteRegDword(kSettingsKey, kUserDirModeName, kUserDirChosen);
            settings.WriteRegString(kSettingsKey, kUserDirName, Inner("user"));
        });
    }

    // In the lines, "@" is the test's folder.
    void WriteFavorite(const std::string& name, std::u16string_view lines) const {
        const std::u16string text = Replace(lines, u"@", codec->PathToInner(folder.path()));
        Write("user/Bar/Favorite/" + name, {reinterpret_cast<const char*>(text.data()), text.size() * 2});
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
        Press(window, kIdFavorites);
    }

    std::string Shown(KinsortWindow& window) const {
        const std::string text = window.Folder().currentText().toStdString();
        return text.starts_with(folder.path()) ? text.substr(folder.path().size()) : text;
    }
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
    Run({}, [&](KinsortWindow& window) {
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
        Press(window, kIdCancel);
    });
}

TEST_F(FavoriteTest, QuestionsAndErrorsOfAScriptAreWindowsOverTheDialog) {
    WriteFavorite("a.ecs", u"messageboxyn=Go on?\r\nshell=@\\one\r\n");
    WriteFavorite("b.ecs", u"shell=@\\two\r\ngoto nowhere\r\nshell=@\\one\r\n");
    std::filesystem::remove(At("user/Bar/Favorite/More"));
    Run({}, [&](KinsortWindow& window) {
        windows.ExpectAndPress(QStringLiteral("No"));
        Choose(window, {Qt::Key_Down, Qt::Key_Return});
        EXPECT_EQ(Shown(window), "");
        windows.ExpectAndPress(QStringLiteral("Yes"));
        Choose(window, {Qt::Key_Down, Qt::Key_Return});
        EXPECT_EQ(Shown(window), "/one");
        windows.ExpectAndPress(QStringLiteral("OK"));
        Choose(window, {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return});
        EXPECT_EQ(Shown(window), "/two") << "what was done before the error stays, what follows it is not run";
        Press(window, kIdCancel);
    });
}

}  // namespace
}  // namespace kinsort
