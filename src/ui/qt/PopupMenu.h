// Menus that come up over the middle of a control.
#pragma once

#include <QMenu>
#include <string_view>

namespace kinsort {

// What an item shows for a text in which nothing is an accelerator or a shortcut.
QString MenuText(std::u16string_view text);

// Shows the menu with its middle on that of `anchor` and waits; null when nothing was chosen.
const QAction* ExecMenuOver(const QWidget& anchor, QMenu& menu);

}  // namespace kinsort
