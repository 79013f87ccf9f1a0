#include "controls/DirMenu.h"

#include "framework/Paths.h"

namespace kinsort {

CDirMenu::CDirMenu(FileSystem& files, std::u16string_view folder)
    : files_(files), m_strRoot(AddTrailingSeparator(RemoveTrailingSeparatorKeepRoot(folder))) {}

std::u16string CDirMenu::ShowPopup(DirMenuView& view) {
    CDirMenuObj top;
    FillMenu(top, m_strRoot);
    const size_t commandId = view.TrackPopup(*this, top);
    std::u16string chosen = commandId >= 1 && commandId <= itemPaths_.size() ? itemPaths_[commandId - 1] : u"";
    m_subMenus.clear();
    m_subMenuPaths.clear();
    itemPaths_.clear();
    return chosen;
}

void CDirMenu::OnInitMenuPopup(CDirMenuObj& menu) {
    if (!menu.items_.empty()) return;
    for (size_t i = 0; i < m_subMenus.size(); ++i) {
        if (m_subMenus[i].get() != &menu) continue;
        const std::u16string folder = m_subMenuPaths[i];  // the list grows meanwhile
        FillMenu(menu, folder);
        return;
    }
}

void CDirMenu::FillMenu(CDirMenuObj& menu, const std::u16string& folder) {
    auto search = FindFirst(files_, folder + u"*");
    if (!search.ok()) return;
    std::vector<std::u16string> folders;
    std::vector<std::u16string> names;
    for (FindData entry; (*search)->Next(entry);) {
        if (entry.name == u"." || entry.name == u".." || (entry.attributes & kAttributeHidden) != 0) continue;
        if ((entry.attributes & kAttributeDirectory) != 0) {
            folders.push_back(std::move(entry.name));
        } else if (m_bShowFiles) {
            names.push_back(std::move(entry.name));
        }
    }
    SortNoCase(folders);
    SortNoCase(names);
    for (std::u16string& name : folders) {
        m_subMenuPaths.push_back(folder + name + u"\\");
        m_subMenus.push_back(std::make_unique<CDirMenuObj>());
        menu.items_.push_back({std::move(name), m_subMenus.back().get(), 0});
    }
    for (std::u16string& name : names) {
        if (itemPaths_.size() == kMaxItems) return;
        itemPaths_.push_back(folder + name);
        menu.items_.push_back({std::move(name), nullptr, static_cast<uint16_t>(itemPaths_.size())});
    }
}

}  // namespace kinsort
