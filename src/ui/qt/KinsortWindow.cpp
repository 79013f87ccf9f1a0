#include "ui/qt/KinsortWindow.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QCoreApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QStyle>
#include <QTimer>
#include <QWindow>
#include <algorithm>

#include "ui/qt/DialogWidgets.h"
#include "ui/qt/DroppedPaths.h"
#include "ui/qt/QtText.h"

namespace kinsort {
namespace {

// How long work waits for a window that is never drawn, because it came up minimised or on another desktop.
constexpr int kDrawnAtLatestMs = 500;

bool HasWords(const QString& text) {
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.isLetterOrNumber(); });
}

}  // namespace

KinsortWindow::KinsortWindow(const PathCodec& codec, const QtIcons& icons) : codec_(codec) {
    setWindowFlags(Qt::Window | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
                   Qt::WindowMinMaxButtonsHint);
    setWindowTitle(ToQString(kDialogTemplate.title));
    setAcceptDrops(true);
    MakeControls(icons);
    NameFields();
    LayOut();
}

void KinsortWindow::MakeControls(const QtIcons& icons) {
    QButtonGroup* group = nullptr;
    for (const DialogControl& control : kDialogControls) {
        QWidget* widget = nullptr;
        if (control.kind == ControlKind::kComboBoxEx) {
            widget = folder_ = new FolderBox(codec_, this);
        } else if (control.kind == ControlKind::kListView) {
            widget = list_ = new PlanListWidget(icons, this);
        } else {
            widget = MakeDialogWidget(control, this);
        }
        widget->setObjectName(QString::number(control.id));
        if ((control.styles & kStyleGroupStart) != 0) group = new QButtonGroup(this);
        if (control.kind == ControlKind::kRadioButton) {
            auto* const radio = static_cast<QAbstractButton*>(widget);
            if (group != nullptr) group->addButton(radio);
        }
        controls_[control.id] = widget;
        Connect(control.id, widget);
    }
}

void KinsortWindow::Connect(int id, QWidget* widget) {
    auto* const button = qobject_cast<QAbstractButton*>(widget);
    if (button == nullptr) return;
    connect(button, &QAbstractButton::clicked, this, [this, id] {
        if (callbacks_.command) callbacks_.command(id);
    });
}

// The texts in front of a field are its label: its accelerator leads there, and a screen reader says them.
void KinsortWindow::NameFields() {
    QString name;
    QLabel* label = nullptr;
    for (const DialogControl& control : kDialogControls) {
        QWidget* const widget = controls_[control.id];
        const QString text = DialogWidgetText(widget).remove(QLatin1Char('&'));
        if (control.kind == ControlKind::kStatic) {
            name = label == nullptr ? text : name + QLatin1Char(' ') + text;
            label = static_cast<QLabel*>(widget);
            continue;
        }
        if (label != nullptr) label->setBuddy(widget);
        label = nullptr;
        if (!HasWords(text)) widget->setAccessibleName(text.isEmpty() ? name : name + QLatin1Char(' ') + text);
        if (control.kind == ControlKind::kRadioButton) widget->setAccessibleDescription(name);
    }
}

QWidget* KinsortWindow::Control(int id) const {
    const auto found = controls_.find(id);
    return found == controls_.end() ? nullptr : found->second;
}

QString KinsortWindow::Text(int id) const {
    const QWidget* const widget = Control(id);
    return widget == nullptr ? QString() : DialogWidgetText(widget);
}

void KinsortWindow::SetText(int id, const QString& text) {
    QWidget* const widget = Control(id);
    if (widget == nullptr || DialogWidgetText(widget) == text) return;
    SetDialogWidgetText(widget, text);
    NameFields();
    QCoreApplication::postEvent(this, new QEvent(QEvent::LayoutRequest));
}

void KinsortWindow::LayOut() {
    const BaseUnits units = BaseUnitsOf(font());
    std::vector<LayoutItem> items;
    for (const DialogControl& control : kDialogControls) {
        items.push_back(MeasureDialogWidget(control, controls_[control.id], units));
    }
    layout_.emplace(std::move(items), units, kDialogTemplate.width, kDialogTemplate.height);
    setMinimumSize(layout_->SmallestWidth(), layout_->SmallestHeight());
    if (!isVisible()) resize(layout_->Width(), layout_->Height());
    PlaceControls();
}

void KinsortWindow::PlaceControls() {
    if (!layout_) return;
    for (size_t i = 0; i < kDialogControls.size(); ++i) {
        const PixelRect place = layout_->PlaceAt(i, width(), height());
        const QRect rect(place.x, place.y, place.width, place.height);
        controls_[kDialogControls[i].id]->setGeometry(QStyle::visualRect(layoutDirection(), this->rect(), rect));
    }
}

void KinsortWindow::SetTopmost(bool isTopmost) {
    if (isVisible() && windowHandle() != nullptr) {  // without the flicker of a window that is made anew
        overrideWindowFlags(windowFlags().setFlag(Qt::WindowStaysOnTopHint, isTopmost));
        windowHandle()->setFlag(Qt::WindowStaysOnTopHint, isTopmost);
    } else {
        setWindowFlag(Qt::WindowStaysOnTopHint, isTopmost);
    }
}

void KinsortWindow::FocusFirstControl() {
    for (const DialogControl& control : kDialogControls) {
        if ((control.styles & kStyleTabStop) == 0) continue;
        controls_[control.id]->setFocus(Qt::OtherFocusReason);
        return;
    }
}

void KinsortWindow::reject() {
    if (callbacks_.command) callbacks_.command(kIdCancel);
}

bool KinsortWindow::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::LayoutRequest:
        case QEvent::FontChange:
        case QEvent::StyleChange:
        case QEvent::LayoutDirectionChange:
            if (layout_) LayOut();
            break;
        default:
            break;
    }
    return QDialog::event(event);
}

void KinsortWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F1 && callbacks_.help && callbacks_.help()) return;
    QDialog::keyPressEvent(event);
}

void KinsortWindow::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    PlaceControls();
}

void KinsortWindow::dragEnterEvent(QDragEnterEvent* event) {
    AcceptFiles(*event);
}

void KinsortWindow::dropEvent(QDropEvent* event) {
    if (!AcceptFiles(*event)) return;
    const std::vector<std::u16string> paths = DroppedPaths(*event, codec_);
    if (!paths.empty() && callbacks_.drop) callbacks_.drop(paths);
}

void KinsortWindow::RunWhenDrawn(std::function<void()> work) {
    whenDrawn_.push_back(std::move(work));
    QTimer::singleShot(isDrawn_ ? 0 : kDrawnAtLatestMs, this, [this] { RunWaiting(); });
}

void KinsortWindow::paintEvent(QPaintEvent* event) {
    QDialog::paintEvent(event);
    if (isDrawn_) return;
    isDrawn_ = true;
    QTimer::singleShot(0, this, [this] { RunWaiting(); });
}

void KinsortWindow::RunWaiting() {
    std::vector<std::function<void()>> waiting;
    waiting.swap(whenDrawn_);
    for (const auto& work : waiting)
        work();
}

}  // namespace kinsort
