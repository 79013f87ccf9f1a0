// The window of a running batch. It says what it is given and hands on the wish to stop; closing it is such a wish.
#pragma once

#include <QDialog>
#include <QProgressBar>
#include <QPushButton>
#include <functional>

#include "app/OperationView.h"
#include "ui/qt/PlainText.h"

namespace kinsort {

class ProgressWindow final : public QDialog {
  public:
    explicit ProgressWindow(std::function<void()> onCancel);

    void Update(const ProgressTexts& texts);

    void reject() override;  // Esc, closing, the button

  private:
    std::function<void()> onCancel_;
    QLabel* headline_ = nullptr;
    ElidedLabel* name_ = nullptr;
    QProgressBar* bar_ = nullptr;
    QLabel* figures_ = nullptr;
    QPushButton* cancel_ = nullptr;
};

}  // namespace kinsort
