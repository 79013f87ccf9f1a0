#include "ui/qt/QtProgram.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QSocketNotifier>
#include <QTranslator>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <unistd.h>

namespace kinsort {
namespace {

constexpr std::array kEndSignals = {SIGINT, SIGTERM, SIGHUP};

int g_endPipe[2] = {-1, -1};  // a signal handler sees globals only

void OnEndSignal(int) {
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(g_endPipe[1], &byte, 1);
}

[[noreturn]] void EndWithoutDisplay() {
    std::fputs(
        "Kinsort: there is no display to show the dialog on. Start it in a desktop session, or sort without a window: "
        "kinsort sort --help\n",
        stderr);
    std::_Exit(QtProgram::kNoDisplayExitCode);
}

// While the toolkit starts, its one fatal complaint is that it finds no display; what it says on the way there helps
// nobody.
void WhileStarting(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type == QtFatalMsg) EndWithoutDisplay();
}

bool NamesDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
}

}  // namespace

QtProgram::QtProgram(std::string name) : name_(std::move(name)) {
    if (!NamesDisplay()) EndWithoutDisplay();
    arguments_[0] = name_.data();
    const QtMessageHandler usual = qInstallMessageHandler(WhileStarting);
    application_ = std::make_unique<QApplication>(argumentCount_, arguments_);
    qInstallMessageHandler(usual);
    QApplication::setApplicationName(QStringLiteral("Kinsort"));
    QApplication::setApplicationDisplayName(QStringLiteral("Kinsort"));
    QApplication::setDesktopFileName(QStringLiteral("kinsort"));
    QApplication::setQuitOnLastWindowClosed(false);  // the batch goes on when the dialog has closed
}

QtProgram::~QtProgram() {
    for (int number : kEndSignals) {
        if (endRequests_) std::signal(number, SIG_DFL);
    }
}

void QtProgram::SetLanguage(WindowLanguage language) {
    if (language != WindowLanguage::kJapanese) return;  // the toolkit speaks English by itself
    translator_ = std::make_unique<QTranslator>();
    if (translator_->load(QStringLiteral("qtbase_ja"), QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(translator_.get());
    }
}

void QtProgram::OnEndRequest(std::function<void()> end) {
    if (pipe2(g_endPipe, O_CLOEXEC | O_NONBLOCK) != 0) return;
    endRequests_ = std::make_unique<QSocketNotifier>(g_endPipe[0], QSocketNotifier::Read);
    QObject::connect(endRequests_.get(), &QSocketNotifier::activated, endRequests_.get(), [end = std::move(end)] {
        char byte = 0;
        while (read(g_endPipe[0], &byte, 1) == 1) {
        }
        end();
    });
    struct sigaction action = {};
    action.sa_handler = OnEndSignal;
    action.sa_flags = SA_RESETHAND | SA_RESTART;
    for (int number : kEndSignals)
        sigaction(number, &action, nullptr);
}

void QtProgram::CloseWindows() {
    QApplication::closeAllWindows();
}

}  // namespace kinsort
