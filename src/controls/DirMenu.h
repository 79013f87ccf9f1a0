// A folder tree as a menu: sub-folders are sub-menus that are read when they are opened, files are what can be chosen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"

namespace kinsort {

class CDirMenuObj;

struct DirMenuItem {
    std::u16string text;             // name as it is stored, inner form
    CDirMenuObj* subMenu = nullptr;  // null for a file
    uint16_t commandId = 0;          // 0 for a folder
};

// One menu of the popup.
class CDirMenuObj {
  public:
    const std::vector<DirMenuItem>& Items() const { return items_; }

  private:
    friend class CDirMenu;
    std::vector<DirMenuItem> items_;
};

class CDirMenu;

class DirMenuView {
  public:
    virtual ~DirMenuView() = default;
    // Moves the mouse to the middle of what the menu belongs to, shows `top` centred there and returns when it is
    // closed: the command id of the chosen item, 0 when nothing was chosen or the menu could not be shown. Before any
    // menu opens, `top` included, the view calls OnInitMenuPopup of `menu` for it and shows its Items() of then.
    virtual uint16_t TrackPopup(CDirMenu& menu, CDirMenuObj& top) = 0;
};

// Good for one showing.
class CDirMenu {
  public:
    // Command ids have 16 bits: the files beyond this many in one popup are left out.
    static constexpr size_t kMaxItems = 65534;

    // `folder`, in inner form, with or without a separator at its end. `files` must outlive the menu.
    CDirMenu(FileSystem& files, std::u16string_view folder);

    // The full path of the chosen file, inner form; empty when nothing was chosen.
    std::u16string ShowPopup(DirMenuView& view);

    // Fills a sub-menu of this popup that has no items; so one whose folder was empty is read again each time.
    void OnInitMenuPopup(CDirMenuObj& menu);

    bool m_bShowFiles = true;

  private:
    void FillMenu(CDirMenuObj& menu, const std::u16string& folder);

    FileSystem& files_;
    std::u16string m_strRoot;                              // with one separator at its end
    std::vector<std::unique_ptr<CDirMenuObj>> m_subMenus;  // in the order they were made
    std::vector<std::u16string> m_subMenuPaths;            // of the same length; with a separator at the end
    std::vector<std::u16string> itemPaths_;                // path of command id k at k - 1
};

}  // namespace kinsort
