// The windows of a batch, pressed and read as a user does.
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QTreeView>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ui/qt/ModalWindows_test.h"
#include "ui/qt/QtOperationView.h"
#include "ui/qt/QuestionWindows.h"

namespace kinsort {
namespace {

class OperationWindowsTest : public testing::Test {
  protected:
    const WindowTexts english{WindowLanguage::kEnglish};
    QtOperationView view{english};
    ModalWindows windows;

    static ProgressWindow* Progress() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* const window = dynamic_cast<ProgressWindow*>(widget)) return window;
        }
        return nullptr;
    }
};

ConflictQuestion SomeConflict() {
    return {.title = u"The name is taken",
            .instruction = u"\"B\" already has a file named \"<a>" + std::u16string(255, u'n') + u"\".",
            .item = {u"Incoming", u"/in/<a>.txt", u"1 KB"},
            .target = {u"Already there", u"/" + std::u16string(4000, u'x') + u"/<a>.txt", u"2 KB"},
            .buttons = {{u"&Replace", ConflictAnswer::kReplace},
                        {u"&Keep both", ConflictAnswer::kKeepBoth},
                        {u"&Skip", ConflictAnswer::kSkip},
                        {u"Cancel", ConflictAnswer::kCancel}},
            .defaultButton = 2,
            .forAll = u"For &all"};
}

TEST_F(OperationWindowsTest, AConflictIsAnsweredByButtonKeyOrClosing) {
    struct Case {
        const char* what;
        std::function<void(QDialog&)> act;
        ConflictAnswer answer;
        AnswerScope scope;
    };
    const auto check = [](QDialog& window) { window.findChild<QCheckBox*>()->setChecked(true); };
    const std::vector<Case> cases = {
        {"button", [](QDialog& w) { ModalWindows::Press(w, QStringLiteral("Keep both")); }, ConflictAnswer::kKeepBoth,
         AnswerScope::kThisOne},
        {"button for all",
         [&](QDialog& w) {
             check(w);
             ModalWindows::Press(w, QStringLiteral("Replace"));
         },
         ConflictAnswer::kReplace, AnswerScope::kAllInBatch},
        {"Enter", [](QDialog& w) { QTest::keyClick(&w, Qt::Key_Return); }, ConflictAnswer::kSkip,
         AnswerScope::kThisOne},
        {"Esc", [](QDialog& w) { QTest::keyClick(&w, Qt::Key_Escape); }, ConflictAnswer::kCancel,
         AnswerScope::kThisOne},
        {"closed", [](QDialog& w) { w.close(); }, ConflictAnswer::kCancel, AnswerScope::kThisOne},
    };
    for (const Case& each : cases) {
        windows.Expect([&](QDialog& window) {
            EXPECT_LT(window.width(), 700) << "long names do not widen it";
            for (const QLabel* label : window.findChildren<QLabel*>()) {
                EXPECT_TRUE(label->text().isEmpty() || label->textFormat() == Qt::PlainText);
                EXPECT_FALSE(label->toolTip().contains(QStringLiteral("<a>"))) << "would be mark-up";
                const bool isWhole = !label->text().contains(QChar(0x2026));
                EXPECT_EQ(label->toolTip().isEmpty(), isWhole) << label->text().toStdString();
            }
            each.act(window);
        });
        const ConflictReply reply = view.AskConflict(SomeConflict());
        EXPECT_EQ(reply.answer, each.answer) << each.what;
        EXPECT_EQ(reply.scope, each.scope) << each.what;
    }
}

TEST_F(OperationWindowsTest, AQuestionKnowsItsDefaultAndItsEscape) {
    std::u16string deep;
    for (int i = 0; i < 1000; ++i)
        deep += u"/dir";
    const ButtonQuestion question = {.title = u"t",
                                     .instruction = u"Interrupted: " + deep,
                                     .buttons = {u"Finish", u"Undo", u"Leave"},
                                     .defaultButton = 1,
                                     .escapeButton = 2};
    windows.Expect([](QDialog& window) {
        EXPECT_LT(window.height(), 500) << "its buttons have to be in sight";
        QTest::keyClick(&window, Qt::Key_Return);
    });
    EXPECT_EQ(view.AskButtons(question), 1U);
    windows.Expect([](QDialog& window) { QTest::keyClick(&window, Qt::Key_Escape); });
    EXPECT_EQ(view.AskButtons(question), 2U);
    windows.ExpectAndPress(QStringLiteral("Finish"));
    EXPECT_EQ(view.AskButtons(question), 0U);
}

TEST_F(OperationWindowsTest, ASummaryHoldsAllRowsAndCopiesThem) {
    OperationSummary summary = {.title = u"Result",
                                .headline = u"2 failed",
                                .notes = {u"The journal is full."},
                                .rows = {},
                                .nameColumn = u"Item",
                                .reasonColumn = u"Reason",
                                .buttons = {u"&Undo", u"&Close"}};
    for (int i = 0; i < 50'000; ++i) {
        const QString name = QStringLiteral("/in/%1.txt").arg(i);
        summary.rows.push_back({name.toStdU16String(), u"taken"});
    }
    windows.Expect([](QDialog& window) {
        auto* const list = window.findChild<QTreeView*>();
        ASSERT_EQ(list->model()->rowCount(), 50'000);
        list->setFocus();
        QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
        const QString all = QGuiApplication::clipboard()->text();
        EXPECT_EQ(all.count(QLatin1Char('\n')), 50'000);
        EXPECT_TRUE(all.endsWith(QStringLiteral("/in/49999.txt\ttaken\n")));
        for (int row : {7, 3}) {
            list->selectionModel()->select(list->model()->index(row, 0),
                                           QItemSelectionModel::Select | QItemSelectionModel::Rows);
        }
        QTest::keyClick(list, Qt::Key_C, Qt::ControlModifier);
        EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("/in/3.txt\ttaken\n/in/7.txt\ttaken\n"));
        ModalWindows::Press(window, QStringLiteral("Undo"));
    });
    EXPECT_EQ(view.ShowSummary(summary), 0U);
    for (Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        windows.Expect([key](QDialog& window) { QTest::keyClick(&window, key); });
        EXPECT_EQ(view.ShowSummary(summary), 1U);
    }
}

TEST_F(OperationWindowsTest, ProgressSaysWhatItIsToldAndStopsOnce) {
    int cancelled = 0;
    ProgressTexts start;
    start.headline = u"Preparing";
    start.cancel = u"Cancel";
    view.BeginProgress(start, [&] { ++cancelled; });
    ProgressWindow* const window = Progress();
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(window->isVisible()) << "a short batch shows none";
    EXPECT_EQ(window->findChild<QProgressBar*>()->maximum(), 0) << "busy while nobody knows how far";

    windows.Expect([&](QDialog& question) {
        EXPECT_TRUE(window->isVisible()) << "a question shows what it is about";
        EXPECT_EQ(question.parentWidget(), window);
        QTest::keyClick(&question, Qt::Key_Escape);
    });
    view.AskConflict(SomeConflict());

    ProgressTexts half = start;
    half.permille = 500;
    half.name = u"/in/" + std::u16string(500, u'n') + u"/end.txt";
    view.UpdateProgress(half);
    EXPECT_EQ(window->findChild<QProgressBar*>()->value(), 500);
    EXPECT_LT(window->width(), 1200);
    window->close();
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(cancelled, 1);
    half.isStopping = true;
    view.UpdateProgress(half);
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_EQ(cancelled, 1) << "it is stopping already";
    view.EndProgress();
    EXPECT_EQ(Progress(), nullptr);
}

TEST_F(OperationWindowsTest, UndoIsOfferedInAWindowWhereNobodyShowsNotifications) {
    constexpr int kShortMs = 200;
    for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"})
        qunsetenv(name);
    const UndoOffer offer = {.title = u"Sorted", .text = u"Into /" + std::u16string(4000, u'x'), .undo = u"&Undo"};
    windows.Expect([](QDialog& window) {
        EXPECT_TRUE(window.testAttribute(Qt::WA_ShowWithoutActivating));
        for (const QPushButton* button : window.findChildren<QPushButton*>())
            EXPECT_EQ(button->isDefault(), button->text() == QStringLiteral("&Close")) << "shown as what Enter presses";
        EXPECT_TRUE(window.screen()->availableGeometry().contains(window.frameGeometry()));
        ModalWindows::Press(window, QStringLiteral("Undo"));
    });
    EXPECT_TRUE(view.OfferUndo(offer));
    for (Qt::Key key : {Qt::Key_Return, Qt::Key_Escape}) {
        windows.Expect([key](QDialog& window) { QTest::keyClick(&window, key); });
        EXPECT_FALSE(view.OfferUndo(offer));
    }
    windows.Expect([](QDialog&) {});
    EXPECT_FALSE(OfferUndoIn(offer, english, kShortMs)) << "it goes away by itself";
    view.WithdrawOffer();
    EXPECT_FALSE(view.OfferUndo(offer)) << "the session ends, so no window comes up";
}

TEST_F(OperationWindowsTest, WorkFromAnyThreadRunsHereInOrder) {
    std::vector<int> ran;
    const std::thread::id here = std::this_thread::get_id();
    std::jthread other([&] {
        for (int i = 0; i < 3; ++i) {
            view.Post([&, i] {
                EXPECT_EQ(std::this_thread::get_id(), here);
                ran.push_back(i);
            });
        }
        view.Post([&] { view.EndLoop(); });
    });
    view.RunLoop();
    EXPECT_THAT(ran, testing::ElementsAre(0, 1, 2));
    view.EndLoop();
    view.RunLoop();  // returns: the end came before
}

}  // namespace
}  // namespace kinsort

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleMock(&argc, argv);
    const QApplication app(argc, argv);
    return RUN_ALL_TESTS();
}
