#include "ui/qt/PopupMenu.h"

#include "ui/qt/QtText.h"

namespace kinsort {

QString MenuText(std::u16string_view text) {
    QString shown = ToQString(text);
    shown.replace(QLatin1Char('&'), QStringLiteral("&&"));
    return shown.replace(QLatin1Char('\t'), QLatin1Char(' '));  // what follows a TAB would be shown as a shortcut
}

const QAction* ExecMenuOver(const QWidget& anchor, QMenu& menu) {
    const QPoint middle = anchor.mapToGlobal(anchor.rect().center());
    return menu.exec(middle - QRect({}, menu.sizeHint()).center());
}

}  // namespace kinsort
