#include "ui/qt/DirMenuPopup.h"

#include <QAction>
#include <QCursor>
#include <QHash>
#include <QProxyStyle>
#include <QStyleOption>

#include "ui/qt/PopupMenu.h"

namespace kinsort {

namespace {

// Long menus scroll; without it some styles break them into columns that fill the screen.
class ScrollingMenus final : public QProxyStyle {
  public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_Menu_Scrollable ? 1 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

// The menus of the folders in it are made when they are pointed at: a menu is a window, and thousands of windows take
// their time.
class FolderMenu final : public QMenu {
  public:
    FolderMenu(CDirMenu& menu, CDirMenuObj& level, QStyle& style, QWidget* parent)
        : QMenu(parent), menu_(menu), level_(level), style_(style) {
        setStyle(&style);
        connect(this, &QMenu::aboutToShow, this, &FolderMenu::Fill);
        connect(this, &QMenu::hovered, this, &FolderMenu::MakeMenuBelow);
    }

    void Fill() {
        if (!actions().isEmpty()) return;
        menu_.OnInitMenuPopup(level_);
        for (const DirMenuItem& item : level_.Items()) {
            QAction* action = addAction(MenuText(item.text));
            action->setData(item.commandId);
            if (item.subMenu != nullptr) below_.insert(action, item.subMenu);
        }
    }

  protected:
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override {
        QMenu::initStyleOption(option, action);
        if (below_.contains(action)) option->menuItemType = QStyleOptionMenuItem::SubMenu;
    }

  private:
    void MakeMenuBelow(QAction* action) {
        CDirMenuObj* level = below_.value(action);
        if (level == nullptr || action->menu() != nullptr) return;
        action->setMenu(new FolderMenu(menu_, *level, style_, this));
    }

    CDirMenu& menu_;
    CDirMenuObj& level_;
    QStyle& style_;
    QHash<const QAction*, CDirMenuObj*> below_;  // of the folders
};

}  // namespace

uint16_t DirMenuPopup::TrackPopup(CDirMenu& menu, CDirMenuObj& top) {
    ScrollingMenus style;
    FolderMenu popup(menu, top, style, &anchor_);
    popup.Fill();  // its size decides where it goes
    QCursor::setPos(anchor_.mapToGlobal(anchor_.rect().center()));
    const QAction* const chosen = ExecMenuOver(anchor_, popup);
    return chosen == nullptr ? uint16_t{0} : static_cast<uint16_t>(chosen->data().toUInt());
}

}  // namespace kinsort
