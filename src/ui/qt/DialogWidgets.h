// The controls of the dialog's template as widgets: made from the rows of the table, read, changed and measured the
// same way whatever their kind.
#pragma once

#include <QWidget>

#include "app/DialogTemplate.h"
#include "ui/qt/DialogLayout.h"

namespace kinsort {

// A widget for a row that is neither the list nor the folder box, with its text and state. Its parent owns it.
QWidget* MakeDialogWidget(const DialogControl& control, QWidget* parent);

// "&" before the accelerator; empty for a kind that has no text.
QString DialogWidgetText(const QWidget* widget);
void SetDialogWidgetText(QWidget* widget, const QString& text);

// What the layout has to know of it. The result refers to the widget.
LayoutItem MeasureDialogWidget(const DialogControl& control, const QWidget* widget, BaseUnits units);

BaseUnits BaseUnitsOf(const QFont& font);

}  // namespace kinsort
