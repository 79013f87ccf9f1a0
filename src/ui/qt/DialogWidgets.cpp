#include "ui/qt/DialogWidgets.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QLabel>
#include <QRadioButton>

#include "ui/qt/MultiLineButton.h"
#include "ui/qt/QtText.h"

namespace kinsort {
namespace {

constexpr int kLineHeight = 8;             // dialog units of one line of text
constexpr int kClosedDropDownHeight = 12;  // dialog units; the template's height is that of the open list
constexpr int kSmallestFieldColumns = 20;  // characters that a field or list shows at least
constexpr int kSmallestListLines = 6;

bool TakesLines(const DialogControl& control) {
    return control.kind == ControlKind::kStatic && control.place.height >= 2 * kLineHeight;
}

QWidget* MakeLabel(const DialogControl& control, QWidget* parent) {
    auto* const label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(TakesLines(control));
    label->setAlignment(Qt::AlignLeading | (TakesLines(control) ? Qt::AlignTop : Qt::AlignVCenter));
    return label;
}

QWidget* MakeButton(const DialogControl& control, QWidget* parent) {
    QPushButton* const button =
        (control.styles & kStyleMultiLine) != 0 ? new MultiLineButton(parent) : new QPushButton(parent);
    button->setDefault(control.kind == ControlKind::kDefaultPushButton);
    return button;
}

QWidget* MakeBare(const DialogControl& control, QWidget* parent) {
    switch (control.kind) {
        case ControlKind::kStatic:
            return MakeLabel(control, parent);
        case ControlKind::kPushButton:
        case ControlKind::kDefaultPushButton:
            return MakeButton(control, parent);
        case ControlKind::kRadioButton:
            return new QRadioButton(parent);
        case ControlKind::kCheckBox:
            return new QCheckBox(parent);
        case ControlKind::kComboBoxEx:
        case ControlKind::kListView:
            break;
    }
    return new QWidget(parent);
}

}  // namespace

QWidget* MakeDialogWidget(const DialogControl& control, QWidget* parent) {
    QWidget* const widget = MakeBare(control, parent);
    widget->setEnabled((control.styles & kStyleDisabled) == 0);
    SetDialogWidgetText(widget, ToQString(control.text));
    return widget;
}

QString DialogWidgetText(const QWidget* widget) {
    if (const auto* const button = dynamic_cast<const MultiLineButton*>(widget)) return button->FullText();
    if (const auto* const button = qobject_cast<const QAbstractButton*>(widget)) return button->text();
    if (const auto* const label = qobject_cast<const QLabel*>(widget)) return label->text();
    return {};
}

void SetDialogWidgetText(QWidget* widget, const QString& text) {
    if (auto* const button = dynamic_cast<MultiLineButton*>(widget)) {
        button->SetFullText(text);
    } else if (auto* const plain = qobject_cast<QAbstractButton*>(widget)) {
        plain->setText(text);
    } else if (auto* const label = qobject_cast<QLabel*>(widget)) {
        label->setText(text);
    }
}

LayoutItem MeasureDialogWidget(const DialogControl& control, const QWidget* widget, BaseUnits units) {
    LayoutItem item;
    item.place = control.place;
    item.anchor = control.anchor;
    item.isSingleLine =
        control.kind != ControlKind::kListView && !TakesLines(control) && (control.styles & kStyleMultiLine) == 0;
    item.heightFor = [widget](int) { return widget->sizeHint().height(); };
    item.smallestWidth = kSmallestFieldColumns * units.width;
    if (control.kind == ControlKind::kComboBoxEx) {
        item.place.height = kClosedDropDownHeight;
    } else if (control.kind == ControlKind::kListView) {
        item.heightFor = nullptr;
        item.smallestHeight = kSmallestListLines * units.height;
    } else if (const auto* const lines = dynamic_cast<const MultiLineButton*>(widget)) {
        item.neededWidth = lines->SmallestWidth();
        item.heightFor = [lines](int width) { return lines->HeightFor(width); };
    } else if (const auto* const button = qobject_cast<const QPushButton*>(widget)) {
        item.neededWidth = NeededButtonWidth(*button, button->text());
    } else if (TakesLines(control)) {
        item.heightFor = [widget](int width) { return widget->heightForWidth(width); };
    } else {
        item.neededWidth = widget->sizeHint().width();
    }
    return item;
}

BaseUnits BaseUnitsOf(const QFont& font) {
    const QFontMetrics metrics(font);
    const QString letters = QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz");
    return {static_cast<int>((metrics.horizontalAdvance(letters) + letters.size() / 2) / letters.size()),
            metrics.height()};
}

}  // namespace kinsort
