#include "ui/qt/ScriptStopWindow.h"

#include <QApplication>

namespace kinsort {

void QtScriptStopView::ShowStop(const ProgressTexts& texts) {
    isPressed_ = false;
    window_ = std::make_unique<ProgressWindow>([this] { isPressed_ = true; });
    window_->setWindowModality(Qt::ApplicationModal);
    window_->Update(texts);
    window_->show();
}

bool QtScriptStopView::WasStopPressed() {
    QApplication::processEvents();
    return isPressed_;
}

void QtScriptStopView::HideStop() {
    window_.reset();
}

}  // namespace kinsort
