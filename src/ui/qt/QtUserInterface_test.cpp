#include "ui/qt/QtUserInterface.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/TemporaryFolder_test.h"
#include "ui/qt/ModalWindows_test.h"

namespace kinsort {
namespace {

class QtUserInterfaceTest : public testing::Test {
  protected:
    const std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("/nowhere");
    const WindowTexts english{WindowLanguage::kEnglish};
    QtUserInterface ui{*codec, english};
    ModalWindows windows;

    MessageAnswer Show(MessageButtons buttons, unsigned defaultButton, ModalWindows::Answer answer) {
        windows.Expect(std::move(answer));
        return ui.ShowMessage({.text = u"text",
                               .title = u"title",
                               .buttons = buttons,
                               .icon = MessageIcon::kQuestion,
                               .defaultButton = defaultButton});
    }
};

TEST_F(QtUserInterfaceTest, EachSetOfButtonsAnswersAndCloses) {
    using enum MessageAnswer;
    std::map<MessageAnswer, const char*> labels = {
        {kOk, "OK"},   {kCancel, "Cancel"}, {kAbort, "Abort"},        {kRetry, "Retry"},      {kIgnore, "Ignore"},
        {kYes, "Yes"}, {kNo, "No"},         {kTryAgain, "Try again"}, {kContinue, "Continue"}};
    struct Case {
        MessageButtons buttons;
        std::vector<MessageAnswer> row;  // from the left
        MessageAnswer closed;
    };
    const std::vector<Case> cases = {
        {MessageButtons::kOk, {kOk}, kOk},
        {MessageButtons::kOkCancel, {kOk, kCancel}, kCancel},
        {MessageButtons::kAbortRetryIgnore, {kAbort, kRetry, kIgnore}, kAbort},
        {MessageButtons::kYesNoCancel, {kYes, kNo, kCancel}, kCancel},
        {MessageButtons::kYesNo, {kYes, kNo}, kNo},
        {MessageButtons::kRetryCancel, {kRetry, kCancel}, kCancel},
        {MessageButtons::kCancelTryContinue, {kCancel, kTryAgain, kContinue}, kCancel},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(static_cast<int>(each.buttons));
        EXPECT_EQ(Show(each.buttons, 0, [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Escape); }), each.closed);
        EXPECT_EQ(Show(each.buttons, 0, [](QDialog& box) { box.close(); }), each.closed);
        for (unsigned i = 0; i < each.row.size(); ++i) {
            const QString label = QString::fromLatin1(labels[each.row[i]]);
            EXPECT_EQ(Show(each.buttons, 0, [&](QDialog& box) { ModalWindows::Press(box, label); }), each.row[i]);
            EXPECT_EQ(Show(each.buttons, i, [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); }), each.row[i])
                << "the default button";
        }
        EXPECT_EQ(Show(each.buttons, 9, [](QDialog& box) { QTest::keyClick(&box, Qt::Key_Return); }), each.row[0])
            << "no such default button";
    }
}

TEST_F(QtUserInterfaceTest, TextIsShownAsItIsAndWholeHoweverLong) {
    std::u16string longText;
    for (int i = 0; i < 400; ++i)
        longText += u"line\r\n";
    for (const std::u16string& text : {std::u16string(u"<b>a.txt</b> &amp;"), longText}) {
        windows.Expect([&](QDialog& window) {
            auto& box = dynamic_cast<QMessageBox&>(window);
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            QString wanted = QString::fromStdU16String(text);
            wanted.remove(QLatin1Char('\r'));
            EXPECT_EQ(text.size() < 100 ? box.text() : box.detailedText(), wanted);
            EXPECT_LT(box.height(), 600);
            box.close();
        });
        EXPECT_EQ(ui.ShowMessage({.text = text, .title = {}}), MessageAnswer::kOk);
    }
}

TEST_F(QtUserInterfaceTest, ChoosesOneOfAList) {
    const ChoiceRequest request = {.title = u"t", .instruction = u"Which?", .choices = {u"a", u"b&b", u"c"}};
    struct Case {
        std::vector<Qt::Key> keys;
        std::optional<size_t> chosen;
    };
    for (const Case& each :
         {Case{{Qt::Key_Return}, 0}, Case{{Qt::Key_Down, Qt::Key_Return}, 1}, Case{{Qt::Key_End, Qt::Key_Return}, 2},
          Case{{Qt::Key_Down, Qt::Key_Escape}, std::nullopt}}) {
        windows.Expect([&](QDialog& window) {
            auto* const list = window.findChild<QListWidget*>();
            EXPECT_EQ(list->item(1)->text(), QStringLiteral("b&b"));
            for (Qt::Key key : each.keys)
                QTest::keyClick(list, key);
        });
        EXPECT_EQ(ui.ChooseOne(request), each.chosen);
    }
}

TEST_F(QtUserInterfaceTest, BrowsesFromAFolderToAFolder) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() + "/資料");
    const std::u16string start = codec->PathToInner(folder.path());
    windows.Expect([&](QDialog& window) {
        auto& browser = dynamic_cast<QFileDialog&>(window);
        EXPECT_EQ(browser.directory().absolutePath(), QString::fromStdString(folder.path()));
        EXPECT_EQ(browser.windowTitle(), QStringLiteral("Choose"));
        browser.findChild<QLineEdit*>()->setText(QStringLiteral("資料"));
        ModalWindows::Press(browser, QStringLiteral("OK"));
    });
    EXPECT_EQ(ui.BrowseForFolder({.title = u"Choose", .initialFolder = start}), start + u"\\資料");
    windows.Expect([](QDialog& window) { window.close(); });
    EXPECT_EQ(ui.BrowseForFolder({.title = u"Choose", .initialFolder = u"Q:\\gone"}), std::nullopt);
}

TEST_F(QtUserInterfaceTest, KnowsItsWindowAndTheClipboard) {
    ui.SetClipboardText(u"名前 \U0001F600\n");
    EXPECT_EQ(ui.GetClipboardText(), u"名前 \U0001F600\n");
    ui.SetClipboardText(u"");
    EXPECT_EQ(ui.GetClipboardText(), u"");

    EXPECT_EQ(ui.MainWindow(), kNoWindow);
    auto window = std::make_unique<QWidget>();
    window->setGeometry(20, 30, 400, 300);
    ui.SetMainWindow(window.get(), 7);
    EXPECT_EQ(ui.WindowRectangle(7), (ScreenRectangle{20, 30, 420, 330}));
    EXPECT_EQ(ui.WindowRectangle(8), std::nullopt) << "nobody knows where another program's window is";
    ASSERT_TRUE(ui.WorkArea(7).has_value());
    EXPECT_EQ(ui.WorkArea(7), ui.WorkArea(kNoWindow));
    for (WindowHandle handle : {WindowHandle{7}, WindowHandle{8}, kNoWindow})
        ui.BringToForeground(handle);
    window.reset();
    EXPECT_EQ(ui.MainWindow(), kNoWindow) << "it has gone by itself";
}

}  // namespace
}  // namespace kinsort
