// The toolkit as a program starts and ends it.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "ui/qt/WindowTexts.h"

class QApplication;
class QSocketNotifier;
class QTranslator;

namespace kinsort {

class QtProgram {
  public:
    // Where there is no display that a window could be shown on, ends the process: one line to standard error, exit
    // code kNoDisplayExitCode. `name` is the program file's; at most one of these lives at a time.
    explicit QtProgram(std::string name);
    ~QtProgram();
    QtProgram(const QtProgram&) = delete;
    QtProgram& operator=(const QtProgram&) = delete;

    static constexpr int kNoDisplayExitCode = 3;

    // The language of the toolkit's own windows: the folder browser, the menu of a text field.
    void SetLanguage(WindowLanguage language);

    // Called on the thread of the user interface when the user or the system asks the program to end (Ctrl-C in the
    // terminal it was started from, the terminal's closing, SIGTERM). A second such wish ends it at once.
    void OnEndRequest(std::function<void()> end);

    // Closes all windows as their users would, the topmost question first.
    static void CloseWindows();

  private:
    std::string name_;
    int argumentCount_ = 1;
    char* arguments_[2] = {};
    std::unique_ptr<QApplication> application_;
    std::unique_ptr<QTranslator> translator_;
    std::unique_ptr<QSocketNotifier> endRequests_;
};

}  // namespace kinsort
