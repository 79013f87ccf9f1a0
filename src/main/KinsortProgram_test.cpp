// The dialog's program as a whole, on a screen that nobody sees: real files, settings, messages of other programs, real
// widgets. With --send this program is such another program.
#include <QCheckBox>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QProcess>
#include <QStyleOptionButton>
#include <QTreeView>

#include "framework/CopyData.h"
#include "hostlink/HandOffWriter.h"
#include "main/ProgramWorld_test.h"
#include "platform/linux/LinuxWindowMessages.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

// What the other program does: sends a block of data, or asks whether this is a dialog. Its exit code is the answer.
int SendToDialog(const std::string& number, const std::string& text) {
    const auto messages = MakeLinuxWindowMessages();
    const WindowHandle dialog = messages->FindTopLevel(kDialogWindowClass);
    const Result<int64_t> answer =
        number == "ask" ? messages->SendNumbers(dialog, 0x8030, 0, 0)
                        : messages->SendData(dialog, kNoWindow, std::stoull(number), CopyDataBytes(FromUtf8(text)));
    return answer.ok() ? static_cast<int>(*answer) : 99;
}

class KinsortProgramTest : public ProgramTest {
  protected:
    KinsortProgramTest() {
        for (const char* name : {"in", "sorted/Guitar Lessons", "sorted/Invoices"})
            std::filesystem::create_directories(At(name));
        Write("in/Invoice 2024.pdf", "new");
        Write("in/guitar lesson 3.mp3", "song");
        Write("in/12345.tmp", "");
    }

    static QStringList Rows(KinsortWindow& window) {
        QStringList rows;
        const QAbstractItemModel& model = *window.List().model();
        for (int i = 0; i < model.rowCount(); ++i) {
            rows << model.index(i, 0).data().toString() + QStringLiteral(" > ") + model.index(i, 1).data().toString();
        }
        return rows;
    }
};

TEST_F(KinsortProgramTest, OneRequestFromTheHandOffToTheUndo) {
    SetLanguage(u".en-US");
    Write("sorted/Invoices/Invoice 2024.pdf", "old");
    HostHandOff handOff;
    for (const char* name : {"Invoice 2024.pdf", "guitar lesson 3.mp3", "12345.tmp"}) {
        handOff.SelectedItems.push_back(Inner(std::string("in/") + name));
    }
    LinuxSharedMemory memory;
    Result<WrittenHandOff> written = WriteHandOff(memory, handOff);
    ASSERT_TRUE(written.ok());
    ::setenv("VEL_ExCommand", ToUtf8(written->descriptor).c_str(), 1);

    windows.ExpectAndPress(QStringLiteral("OK"));  // a row has no target
    windows.ExpectAndPress(QStringLiteral("Keep both"));
    windows.Expect([&](QDialog& summary) {  // one item has vanished
        EXPECT_EQ(summary.findChild<QTreeView*>()->model()->rowCount(), 1);
        EXPECT_EQ(Read("sorted/Invoices/Invoice 2024 (2).pdf"), "new");
        EXPECT_EQ(Read("in/Invoice 2024.pdf"), "(none)");
        ModalWindows::Press(summary, QStringLiteral("Undo"));
    });
    Run({"/m"}, [&](KinsortWindow& window) {
        EXPECT_EQ(window.Text(kIdCount), QStringLiteral("(3)"));
        EXPECT_TRUE(dynamic_cast<QAbstractButton*>(window.Control(kIdMove))->isChecked());
        window.Folder().setFocus();
        QTest::keyClicks(window.Folder().lineEdit(), QString::fromStdString(At("sorted")));
        Press(window, kIdSearchAgain);
        EXPECT_THAT(Rows(window), testing::ElementsAre(QStringLiteral("Invoice 2024.pdf > Invoices"),
                                                       QStringLiteral("guitar lesson 3.mp3 > Guitar Lessons"),
                                                       QStringLiteral("12345.tmp > ")));
        Press(window, kIdOk);
        EXPECT_TRUE(window.isVisible());
        EXPECT_EQ(window.List().SelectedRow(), 2U);
        Press(window, kIdDeleteNoCandidate);
        EXPECT_EQ(window.Text(kIdCount), QStringLiteral("(2)"));
        std::filesystem::remove(At("in/guitar lesson 3.mp3"));
        Press(window, kIdOk);
        EXPECT_FALSE(window.isVisible());
    });
    EXPECT_EQ(Read("in/Invoice 2024.pdf"), "new");
    EXPECT_EQ(Read("sorted/Invoices/Invoice 2024.pdf"), "old");
    EXPECT_EQ(Read("sorted/Invoices/Invoice 2024 (2).pdf"), "(none)");

    Run({}, [&](KinsortWindow& window) {  // the folder was remembered
        window.Folder().setFocus();
        for (Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Return})
            QTest::keyClick(window.Folder().lineEdit(), key);
        EXPECT_EQ(window.Folder().currentText(), QString::fromStdString(At("sorted")));
        EXPECT_TRUE(window.isVisible());
        QTest::keyClick(&window, Qt::Key_Escape);
        EXPECT_FALSE(window.isVisible());
    });
}

TEST_F(KinsortProgramTest, OtherProgramsAndDropsReachTheDialog) {
    const std::u16string block = u"1\t0\tZ:\\\t\t" + Inner("in/Invoice 2024.pdf") + u"\t";
    const std::u16string target = Inner("sorted");
    QProcess other;
    const auto send = [&](const QString& number, const std::u16string& text, int expected) {
        QEventLoop loop;
        QObject::connect(&other, &QProcess::finished, &loop, &QEventLoop::quit);
        other.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--send"), number, ToQString(text)});
        loop.exec();
        EXPECT_EQ(other.exitCode(), expected) << number.toStdString();
    };
    Run({"/c", At("nothing")}, [&](KinsortWindow& window) {
        EXPECT_FALSE(window.Control(kIdOk)->isEnabled());
        send(QStringLiteral("ask"), u"", 1);
        send(QStringLiteral("100"), target, 0);
        EXPECT_EQ(window.Folder().currentText(), QString::fromStdString(At("sorted")));
        send(QStringLiteral("255"), block, 0);
        EXPECT_THAT(Rows(window), testing::ElementsAre(QStringLiteral("Invoice 2024.pdf > Invoices")));
        EXPECT_TRUE(window.Control(kIdOk)->isEnabled());
        send(QStringLiteral("255"), block, 0);
        EXPECT_EQ(Rows(window).size(), 1) << "rows come once";

        QMimeData files;
        files.setData(QStringLiteral("text/uri-list"),
                      "# comment\r\nfile://" + QByteArray::fromStdString(folder.path()) +
                          "/in/guitar%20lesson%203.mp3\r\nhttp://example.org/x\r\nfile:///a%FF\r\n");
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &enter);
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &drop);
        EXPECT_THAT(Rows(window),
                    testing::ElementsAre(QStringLiteral("guitar lesson 3.mp3 > Guitar Lessons"), testing::_));
        Press(window, kIdCancel);
    });
    EXPECT_EQ(SendToDialog("ask", ""), 99) << "the window is gone";
    EXPECT_EQ(Read("in/Invoice 2024.pdf"), "new");
}

TEST_F(KinsortProgramTest, WithoutADisplayOneLineSaysSo) {
    for (const char* display : {"", ":4711", "nonsense"}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY"})
            environment.remove(QString::fromLatin1(name));
        environment.insert(QStringLiteral("DISPLAY"), QString::fromLatin1(display));
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(QStringLiteral(KINSORT_PROGRAM_FILE), QStringList());
        EXPECT_TRUE(program.waitForFinished());
        EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(program.exitCode(), QtProgram::kNoDisplayExitCode);
        const QByteArray said = program.readAllStandardError();
        EXPECT_TRUE(said.startsWith("Kinsort: there is no display")) << said.toStdString();
        EXPECT_EQ(said.count('\n'), 1) << said.toStdString();
    }
}

// The room that a control's style leaves for its text, and what the text takes.
void ExpectNotCut(const QWidget& widget, const QString& what) {
    const QFontMetrics metrics = widget.fontMetrics();
    QStyleOptionButton option;
    option.initFrom(&widget);
    QRect room = widget.rect();
    QString text;
    int flags = Qt::TextShowMnemonic;
    if (const auto* const label = dynamic_cast<const QLabel*>(&widget)) {
        text = label->text();
        if (label->wordWrap()) flags |= Qt::TextWordWrap;
    } else {
        const auto& button = dynamic_cast<const QAbstractButton&>(widget);
        text = button.text();
        const bool isRadio = widget.inherits("QRadioButton");
        const QStyle::SubElement element = isRadio                        ? QStyle::SE_RadioButtonContents
                                           : widget.inherits("QCheckBox") ? QStyle::SE_CheckBoxContents
                                                                          : QStyle::SE_PushButtonContents;
        room = widget.style()->subElementRect(element, &option, &widget);
    }
    const QRect taken = metrics.boundingRect(QRect(0, 0, room.width(), 10'000), flags, text);
    EXPECT_LE(taken.width(), room.width()) << what.toStdString() << ": " << text.toStdString();
    EXPECT_LE(taken.height(), widget.height()) << what.toStdString() << ": " << text.toStdString();
}

TEST_F(KinsortProgramTest, NoTextIsCutInEitherLanguage) {
    for (const char16_t* suffix : {u".ja-JP", u".en-US"}) {
        SetLanguage(suffix);
        for (const int points : {9, 10, 12}) {
            QFont font = QApplication::font();
            font.setPointSize(points);
            QApplication::setFont(font);
            Run({}, [&](KinsortWindow& window) {
                EXPECT_EQ(window.Text(kIdMove).contains(QStringLiteral("Move")),
                          std::u16string_view(suffix) == u".en-US");
                EXPECT_LE(window.List().columnWidth(0) + window.List().columnWidth(1),
                          window.List().viewport()->width());
                for (const bool isSmallest : {false, true}) {
                    if (isSmallest) window.resize(window.minimumSize());
                    for (const DialogControl& control : kDialogControls) {
                        if (window.Text(control.id).isEmpty()) continue;
                        ExpectNotCut(*window.Control(control.id),
                                     ToQString(suffix) + QStringLiteral(" %1 pt").arg(points));
                    }
                }
                QTest::keyClick(&window, Qt::Key_Escape);
            });
        }
    }
}

}  // namespace
}  // namespace kinsort

int main(int argc, char** argv) {
    if (argc == 4 && std::string(argv[1]) == "--send") return kinsort::SendToDialog(argv[2], argv[3]);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    testing::InitGoogleMock(&argc, argv);
    kinsort::QtProgram toolkit("KinsortProgram_test");
    kinsort::g_toolkit = &toolkit;
    return RUN_ALL_TESTS();
}
