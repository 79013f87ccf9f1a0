#include "ui/qt/ProgressWindow.h"

#include <QGridLayout>
#include <algorithm>

#include "ui/qt/QtText.h"

namespace kinsort {
namespace {

constexpr int kWidthInLetters = 64;
constexpr int kWhole = 1000;

}  // namespace

ProgressWindow::ProgressWindow(std::function<void()> onCancel) : onCancel_(std::move(onCancel)) {
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowMinimizeButtonHint);
    headline_ = PlainLabel();
    name_ = new ElidedLabel;
    bar_ = new QProgressBar;
    bar_->setTextVisible(false);
    figures_ = PlainLabel();
    cancel_ = new QPushButton;
    auto* const layout = new QGridLayout(this);
    layout->addWidget(headline_, 0, 0, 1, 2);
    layout->addWidget(bar_, 1, 0, 1, 2);
    layout->addWidget(name_, 2, 0, 1, 2);
    layout->addWidget(figures_, 3, 0);
    layout->addWidget(cancel_, 3, 1);
    layout->setColumnStretch(0, 1);
    layout->setRowStretch(4, 1);
    setMinimumWidth(WidthOfLetters(fontMetrics(), kWidthInLetters));
    connect(cancel_, &QPushButton::clicked, this, [this] { reject(); });
}

void ProgressWindow::Update(const ProgressTexts& texts) {
    setWindowTitle(ToQString(texts.title));
    headline_->setText(ToQString(texts.headline));
    name_->SetFullText(ToQString(texts.name));
    figures_->setText(ToQString(texts.figures));
    cancel_->setText(ToQString(texts.cancel));
    cancel_->setEnabled(!texts.isStopping);
    bar_->setRange(0, texts.permille < 0 ? 0 : kWhole);
    bar_->setValue(std::max(texts.permille, 0));
    bar_->setAccessibleName(headline_->text());
}

void ProgressWindow::reject() {
    if (cancel_->isEnabled()) onCancel_();
}

}  // namespace kinsort
