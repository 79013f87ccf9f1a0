// The list, the folder box and the folder menu with their real rules behind them, on a screen that nobody sees.
#include <QApplication>
#include <QDropEvent>
#include <QFontMetrics>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QTest>
#include <QTimer>
#include <QUrl>
#include <QVBoxLayout>
#include <QWindow>
#include <atomic>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/fake/ManualClock.h"
#include "platform/fake/MemoryFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "ui/qt/DirMenuPopup.h"
#include "ui/qt/FolderBox.h"
#include "ui/qt/PlanListWidget.h"
#include "ui/qt/QtIcons.h"

namespace kinsort {
namespace {

constexpr std::chrono::seconds kLong{60};

class CountingIcons final : public Icons {
  public:
    int IndexOfPath(std::u16string_view) override {
        ++asked;
        return 1;
    }
    int IndexOfName(std::u16string_view, uint32_t) override { return 1; }
    std::atomic<int> asked = 0;
};

class PlanListWidgetTest : public testing::Test {
  protected:
    PlanListWidgetTest() {
        widget.Attach(&control);
        widget.InsertColumn(0, QStringLiteral("File"), 200);
        widget.InsertColumn(1, QStringLiteral("Target sub folder"), 180);
        widget.resize(400, 300);
    }
    void AddRows(size_t count) {
        for (size_t i = 0; i < count; ++i)
            control.Plan().AddItem(u"Z:\\in\\" + QString::number(i).toStdU16String());
        widget.SetItemCount(count);
    }
    MemoryFileSystem files;
    QtIcons pictures{files};
    CountingIcons icons;
    ManualClock clock;
    PlanListWidget widget{pictures};
    CCmdListCtrl control{widget, icons, files, clock};
};

TEST_F(PlanListWidgetTest, AMillionRowsAreThereAndOnlyThoseInSightAreAskedFor) {
    constexpr size_t kRows = 1'000'000;
    AddRows(kRows);
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
    widget.Redraw();
    EXPECT_TRUE(widget.verticalScrollBar()->isVisible());
    EXPECT_FALSE(widget.horizontalScrollBar()->isVisible());
    widget.EnsureVisible(kRows - 1);
    widget.viewport()->repaint();
    EXPECT_EQ(widget.model()->index(999'999, 0).data().toString(), QStringLiteral("999999"));
    EXPECT_EQ(widget.rowAt(widget.viewport()->height() - widget.rowHeight(0) / 2), 999'999);
    ASSERT_TRUE(control.WaitForIcons(kLong));
    QCoreApplication::processEvents();
    EXPECT_EQ(control.Plan().GetIcon(kRows - 1), 1);
    EXPECT_EQ(control.Plan().GetIcon(kRows / 2), -1);
    EXPECT_LT(icons.asked, 100);
}

TEST_F(PlanListWidgetTest, SelectionAndFocusFollowTheProgramAndTheKeys) {
    AddRows(25);
    widget.show();
    EXPECT_EQ(widget.SelectedRow(), std::nullopt);
    widget.SelectItem(3);
    EXPECT_EQ(widget.SelectedRow(), 3u);
    EXPECT_EQ(widget.FocusedItem(), 3u);
    QTest::keyClick(&widget, Qt::Key_Down);
    EXPECT_EQ(widget.SelectedRow(), 4u);
    QTest::keyClick(&widget, Qt::Key_2);
    EXPECT_EQ(widget.SelectedRow(), 20u) << "the next name that begins with 2";
    QTest::keyClick(&widget, Qt::Key_2, Qt::ControlModifier);
    EXPECT_EQ(widget.SelectedRow(), 20u) << "a command, no name";
    widget.SetItemCount(21);
    EXPECT_EQ(widget.SelectedRow(), 20u);
    widget.SetItemCount(20);
    EXPECT_EQ(widget.SelectedRow(), std::nullopt) << "the row is gone";
    widget.SelectItem(1);
    widget.DeselectItem(2);
    EXPECT_EQ(widget.SelectedRow(), 1u);
    widget.DeselectItem(1);
    EXPECT_EQ(widget.SelectedRow(), std::nullopt);
    EXPECT_EQ(widget.FocusedItem(), std::nullopt);
    widget.RedrawItems(15, 99);
    widget.RedrawItems(50, 60);
    widget.SetItemCount(0);
    control.Plan().RemoveAll();
    widget.Redraw();
    EXPECT_EQ(widget.model()->rowCount(), 0);
}

TEST(QtIconsTest, TypesGetIconsWithoutOpeningFiles) {
    MemoryFileSystem files;
    files.AddFolder(u"Z:\\d.txt");
    files.AddFile(u"Z:\\a.txt");
    QtIcons icons(files);
    const int text = icons.IndexOfName(u"x.txt", kAttributeNormal);
    const int folder = icons.IndexOfName(u"x.txt", kAttributeDirectory);
    EXPECT_NE(text, folder);
    EXPECT_EQ(icons.IndexOfPath(u"Z:\\a.txt"), text);
    EXPECT_EQ(icons.IndexOfPath(u"Z:\\d.txt"), folder);
    EXPECT_EQ(icons.IndexOfPath(u"Z:\\gone.txt"), -1);
    EXPECT_EQ(icons.IndexOfName(u"no type", kAttributeNormal), 0);
    for (const int index : {0, text, folder, -1, 12345})
        EXPECT_FALSE(icons.IconOf(index).isNull());
}

class FolderBoxTest : public testing::Test {
  protected:
    FolderBoxTest() {
        for (const char16_t* folder : {u"Z:\\home\\pictures", u"Z:\\home\\pixels", u"Z:\\opt"})
            files.AddFolder(folder);
        control.m_bFoldersOnly = true;
        box.Attach(&control);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&box);
        layout->addWidget(&next);
        next.setFixedHeight(200);  // reaches out below an open list
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        box.setFocus();
    }
    ~FolderBoxTest() override { box.Attach(nullptr); }

    // As the desktop does it, which knows windows only.
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(window.windowHandle(), key, modifiers);
        EXPECT_TRUE(control.WaitForListing(kLong));
        QCoreApplication::processEvents();
    }
    void Type(const char* text) {
        box.lineEdit()->clear();
        for (const char key : std::string_view(text))
            QTest::keyClick(window.windowHandle(), key);
    }

    MemoryFileSystem files;
    std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("");
    FolderText texts{*codec, ""};
    QWidget window;
    FolderBox box{*codec};
    QPushButton next;
    CComplementComboBox control{box, files, texts};
};

TEST_F(FolderBoxTest, KeysGoToTheRulesFirst) {
    Type("/home/pi");
    Press(Qt::Key_Down);
    ASSERT_TRUE(box.IsListOpen());
    EXPECT_EQ(box.ItemCount(), 2u);
    EXPECT_EQ(box.Text(), u"/home/pi") << "the list writes into the field";
    Press(Qt::Key_Tab);
    Press(Qt::Key_Tab);
    EXPECT_EQ(box.SelectedItem(), 1u);
    Press(Qt::Key_Return);
    EXPECT_FALSE(box.IsListOpen());
    EXPECT_EQ(box.Text(), u"/home/pixels/");
    const QShortcut shortcut(QKeySequence(Qt::CTRL | Qt::Key_K), &window, [] { FAIL() << "a shortcut took the key"; });
    Press(Qt::Key_K, Qt::ControlModifier);
    Press(Qt::Key_PageUp);
    EXPECT_EQ(box.Text(), u"/home/");
    Press(Qt::Key_Home);
    Press(Qt::Key_Right);
    Press(Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(box.Text(), u"/");
    Press(Qt::Key_Tab);
    EXPECT_EQ(window.focusWidget(), &next) << "Tab with the list closed leaves the box";
}

TEST_F(FolderBoxTest, AnOpenListCanBeLeftTypedOverAndClicked) {
    Type("/home/pi");
    Press(Qt::Key_Down);
    ASSERT_TRUE(box.IsListOpen());
    Press(Qt::Key_Tab);
    Press(Qt::Key_Escape);
    EXPECT_FALSE(box.IsListOpen());
    EXPECT_EQ(box.Text(), u"/home/pi");

    Press(Qt::Key_F4);
    ASSERT_TRUE(box.IsListOpen());
    Press(Qt::Key_X);
    EXPECT_FALSE(box.IsListOpen());
    EXPECT_EQ(box.Text(), u"/home/pix");
    Press(Qt::Key_Down, Qt::AltModifier);
    ASSERT_TRUE(box.IsListOpen());
    auto* list = qobject_cast<QListView*>(QApplication::activePopupWidget());
    ASSERT_NE(list, nullptr);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(0, 0)).center());
    EXPECT_FALSE(box.IsListOpen());
    EXPECT_EQ(box.Text(), u"/home/pictures/");

    const QPoint arrow = box.geometry().topRight() + QPoint(-5, box.height() / 2);
    const auto press = [&](QPoint at) {
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, at);
        QCoreApplication::processEvents();
    };
    press(arrow);
    EXPECT_TRUE(box.IsListOpen());
    press(arrow);
    EXPECT_FALSE(box.IsListOpen()) << "the press that closes the list opens it again";
    press(arrow);
    EXPECT_TRUE(box.IsListOpen());
    press(next.geometry().bottomLeft() + QPoint(9, -9));
    EXPECT_FALSE(box.IsListOpen());
}

TEST_F(FolderBoxTest, AnInputMethodKeepsItsKeys) {
    Type("/op");
    QInputMethodEvent composing(QStringLiteral("か"), {});
    QApplication::sendEvent(&box, &composing);
    Press(Qt::Key_Down);
    EXPECT_EQ(box.Text(), u"/op");
    QInputMethodEvent done;
    done.setCommitString(QStringLiteral("t"));
    QApplication::sendEvent(&box, &done);
    Press(Qt::Key_Down);
    EXPECT_EQ(box.Text(), u"/opt/");
}

TEST_F(FolderBoxTest, TheMouseCompletesAndDrops) {
    Type("/op");
    QTest::mouseDClick(box.lineEdit(), Qt::LeftButton);
    EXPECT_TRUE(control.WaitForListing(kLong));
    QCoreApplication::processEvents();
    EXPECT_EQ(box.Text(), u"/opt/");

    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/home/gone.txt"))});
    const auto drop = [&] {
        const Qt::DropActions offered = Qt::CopyAction | Qt::MoveAction;
        QDragEnterEvent enter({5, 5}, offered, &data, Qt::LeftButton, Qt::ShiftModifier);
        QApplication::sendEvent(box.lineEdit(), &enter);
        QDropEvent event({5, 5}, offered, &data, Qt::LeftButton, Qt::ShiftModifier);
        EXPECT_EQ(event.proposedAction(), Qt::MoveAction);
        QApplication::sendEvent(box.lineEdit(), &event);
        return event.dropAction();
    };
    box.AcceptDroppedFiles(true);
    EXPECT_EQ(drop(), Qt::CopyAction) << "a source may delete what was moved";
    EXPECT_EQ(box.Text(), u"/home/");
}

TEST_F(FolderBoxTest, EveryNameSurvivesTheField) {
    for (const char16_t* path :
         {u"Z:\\line\xF00A", u"Z:\\byte\xDCFF", u"Z:\\tab\xF009", u"Z:\\\xD83D\xDE00\\", u"Z:\\ a "}) {
        control.SetText(path);
        EXPECT_EQ(control.GetText(), path);
    }
    const std::u16string text = u"/home/me/\u3042\xD83D\xDE00";
    const int measured = QFontMetrics(box.font()).horizontalAdvance(QString::fromStdU16String(text));
    EXPECT_NEAR(box.TextWidth(text), measured, measured / 10);
    box.SetText(u"/abc");
    box.SetSelection({1, 3});
    EXPECT_EQ(box.Selection(), (TextSelection{1, 3}));
    box.SetSelection({4, 4});
    EXPECT_EQ(box.Selection(), (TextSelection{4, 4}));
}

class DirMenuPopupTest : public testing::Test {
  protected:
    DirMenuPopupTest() {
        files.AddFile(u"Z:\\fav\\a&b.txt");
        files.AddFile(u"Z:\\fav\\sub\\deep.txt");
        files.AddFolder(u"Z:\\fav\\empty");
        anchor.show();
    }
    // Shows the menu; `walk` runs when it is open.
    std::u16string Show(const std::function<void(QMenu& menu)>& walk) {
        QTimer::singleShot(0, [&walk] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(menu, nullptr);
            walk(*menu);
        });
        DirMenuPopup popup(anchor);
        return CDirMenu(files, u"Z:\\fav").ShowPopup(popup);
    }
    MemoryFileSystem files;
    QPushButton anchor;
};

TEST_F(DirMenuPopupTest, SubMenusAreFilledWhenTheyOpenAndFilesCanBeChosen) {
    const std::u16string chosen = Show([this](QMenu& menu) {
        ASSERT_EQ(menu.actions().size(), 3);
        EXPECT_EQ(menu.actions()[2]->text(), QStringLiteral("a&&b.txt")) << "would be an accelerator";
        files.AddFile(u"Z:\\fav\\sub\\a late one.txt");
        menu.setActiveAction(menu.actions()[1]);  // opens it
        QMenu* sub = menu.actions()[1]->menu();
        ASSERT_NE(sub, nullptr);
        ASSERT_EQ(sub->actions().size(), 2);
        sub->setActiveAction(sub->actions()[1]);
        QTest::keyClick(sub, Qt::Key_Return);
    });
    EXPECT_EQ(chosen, u"Z:\\fav\\sub\\deep.txt");
}

TEST_F(DirMenuPopupTest, AnEmptyFolderIsReadEachTimeAndEscChoosesNothing) {
    const std::u16string chosen = Show([this](QMenu& menu) {
        menu.setActiveAction(menu.actions()[0]);
        QMenu* empty = menu.actions()[0]->menu();
        ASSERT_NE(empty, nullptr);
        EXPECT_TRUE(empty->actions().isEmpty());
        menu.setActiveAction(menu.actions()[1]);
        files.AddFile(u"Z:\\fav\\empty\\new.txt");
        menu.setActiveAction(menu.actions()[0]);
        EXPECT_EQ(empty->actions().size(), 1);
        while (QWidget* popup = QApplication::activePopupWidget())
            QTest::keyClick(popup, Qt::Key_Escape);
    });
    EXPECT_EQ(chosen, u"");
}

}  // namespace
}  // namespace kinsort

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleMock(&argc, argv);
    const QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
