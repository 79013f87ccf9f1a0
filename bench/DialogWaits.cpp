// How long the dialog's list and folder box let their user wait, off screen: a million rows shown, the step of
// scrolling through them, completion in a folder of thousands, from the key to the open list, and a menu of them.
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScrollBar>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <vector>

#include "platform/linux/LinuxClock.h"
#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "ui/qt/DirMenuPopup.h"
#include "ui/qt/FolderBox.h"
#include "ui/qt/PlanListWidget.h"
#include "ui/qt/QtIcons.h"

namespace kinsort {
namespace {

constexpr size_t kRows = 1'000'000;
constexpr int kScrollSteps = 300;
constexpr int kFolders = 5'000;
constexpr int kCompletions = 21;

double MillisecondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double MillisecondsOf(const std::function<void()>& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return MillisecondsSince(begin);
}

double Quantile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(share * static_cast<double>(values.size() - 1))];
}

void Report(const char* what, const std::vector<double>& milliseconds) {
    std::printf("%-44s median %7.2f ms, worst %7.2f ms\n", what, Quantile(milliseconds, 0.5),
                Quantile(milliseconds, 1));
}

void MeasureList(FileSystem& files, Clock& clock) {
    QtIcons icons(files);
    PlanListWidget widget(icons);
    CCmdListCtrl control(widget, icons, files, clock);
    widget.Attach(&control);
    widget.InsertColumn(0, QStringLiteral("File"), 200);
    widget.InsertColumn(1, QStringLiteral("Target sub folder"), 180);
    widget.resize(450, 500);
    widget.show();
    for (size_t i = 0; i < kRows; ++i) {
        control.Plan().AddItem(u"Z:\\nowhere\\holiday " + QString::number(i).toStdU16String() + u".jpg");
        control.Plan()[i].arrCandidates.push_back(u"Holidays");
    }
    QCoreApplication::processEvents();

    const double shown = MillisecondsOf([&] {
        widget.SetItemCount(kRows);
        widget.Redraw();
    });
    std::printf("%-44s        %7.2f ms\n", "1,000,000 rows, until they are painted", shown);

    const auto scroll = [&](const char* what, const std::function<int(int step)>& valueOf) {
        std::vector<double> steps;
        for (int step = 0; step < kScrollSteps; ++step) {
            steps.push_back(MillisecondsOf([&] {
                widget.verticalScrollBar()->setValue(valueOf(step));
                QCoreApplication::processEvents();
                widget.viewport()->repaint();
            }));
        }
        Report(what, steps);
    };
    std::mt19937 random(1);
    const int range = widget.verticalScrollBar()->maximum();
    scroll("scrolling a row, painted", [](int step) { return step; });
    scroll("scrolling a page, painted", [](int step) { return step * 20; });
    scroll("jumping anywhere, painted", [&](int) { return static_cast<int>(random() % static_cast<unsigned>(range)); });

    const double deleted = MillisecondsOf([&] {
        widget.SetItemCount(0);
        control.Plan().RemoveItem(kRows / 2);
        widget.SetItemCount(kRows - 1);
        widget.Redraw();
    });
    std::printf("%-44s        %7.2f ms\n", "taking one row out, painted", deleted);
    control.WaitForIcons(std::chrono::seconds(60));
    widget.Attach(nullptr);
}

void MeasureCompletion(FileSystem& files, const PathCodec& codec, const std::filesystem::path& work) {
    for (int i = 0; i < kFolders; ++i)
        std::filesystem::create_directories(work / ("sub-folder of many " + std::to_string(i)));
    const FolderText texts(codec, "");
    FolderBox box(codec);
    CComplementComboBox control(box, files, texts);
    control.m_bFoldersOnly = true;
    box.Attach(&control);
    box.resize(350, box.sizeHint().height());
    box.show();
    std::vector<double> times;
    for (int i = 0; i < kCompletions; ++i) {
        box.CloseList();
        box.SetText(QString::fromStdString(work.string() + "/").toStdU16String());
        QCoreApplication::processEvents();
        times.push_back(MillisecondsOf([&] {
            QKeyEvent key(QEvent::KeyPress, Qt::Key_Down, Qt::NoModifier);
            QApplication::sendEvent(&box, &key);
            while (!box.IsListOpen())
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            QCoreApplication::processEvents();
        }));
        if (box.ItemCount() != kFolders) std::printf("only %zu folders listed\n", box.ItemCount());
    }
    Report("completion in 5,000 sub-folders, key to list", times);
    box.Attach(nullptr);
}

// In the folder that MeasureCompletion has filled.
void MeasureMenu(FileSystem& files, const PathCodec& codec, const std::filesystem::path& work) {
    QWidget anchor;
    anchor.show();
    QCoreApplication::processEvents();
    DirMenuPopup popup(anchor);
    std::vector<double> times;
    for (int i = 0; i < kCompletions; ++i) {
        CDirMenu menu(files, codec.PathToInner(work.string()));
        const auto begin = std::chrono::steady_clock::now();
        QTimer::singleShot(0, [&] {
            QCoreApplication::processEvents();
            times.push_back(MillisecondsSince(begin));
            QApplication::activePopupWidget()->close();
        });
        (void)menu.ShowPopup(popup);
    }
    Report("menu of 5,000 sub-folders, call to painted", times);
}

}  // namespace
}  // namespace kinsort

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_LOGGING_RULES", "*.warning=false");  // what the screen that is none cannot do
    const QApplication app(argc, argv);
    const auto codec = kinsort::MakeLinuxPathCodec("");
    const auto files = kinsort::MakeLinuxFileSystem(*codec);
    const auto clock = kinsort::MakeLinuxClock();
    std::string folder = (std::filesystem::temp_directory_path() / "kinsort-list-XXXXXX").string();
    if (mkdtemp(folder.data()) == nullptr) {
        std::perror(folder.c_str());
        return 1;
    }
    kinsort::MeasureCompletion(*files, *codec, folder);
    kinsort::MeasureMenu(*files, *codec, folder);
    std::filesystem::remove_all(folder);
    kinsort::MeasureList(*files, *clock);  // last: what a million rows leave behind slows every allocation
    return 0;
}
