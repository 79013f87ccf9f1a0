#include "classify/ClassificationPlan.h"

#include <utility>

namespace kinsort {

void ClassificationPlan::AddItem(std::u16string path) {
    auto item = std::make_unique<CmdListItem>();
    item->strName = path.substr(path.find_last_of(u"\\/") + 1);  // npos + 1 is 0: the whole path
    item->strPath = std::move(path);
    const std::lock_guard lock(m_csItems);
    m_items.push_back(std::move(item));
}

void ClassificationPlan::RemoveItem(size_t index) {
    const std::lock_guard lock(m_csItems);
    if (index < m_items.size()) m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(index));
}

void ClassificationPlan::RemoveWithoutCandidate() {
    const std::lock_guard lock(m_csItems);
    std::erase_if(m_items, [](const auto& item) { return item->arrCandidates.empty(); });
}

void ClassificationPlan::RemoveAll() {
    const std::lock_guard lock(m_csItems);
    m_items.clear();
}

size_t ClassificationPlan::GetCount() const {
    const std::lock_guard lock(m_csItems);
    return m_items.size();
}

int ClassificationPlan::GetIcon(size_t index) const {
    const std::lock_guard lock(m_csItems);
    return index < m_items.size() ? m_items[index]->nIcon : -1;
}

std::optional<std::u16string> ClassificationPlan::GetPathWithoutIcon(size_t index) const {
    const std::lock_guard lock(m_csItems);
    if (index >= m_items.size() || m_items[index]->nIcon != -1) return std::nullopt;
    return m_items[index]->strPath;
}

void ClassificationPlan::SetIcon(size_t index, std::u16string_view path, int icon) {
    const std::lock_guard lock(m_csItems);
    if (index >= m_items.size()) return;
    CmdListItem& item = *m_items[index];
    if (item.nIcon == -1 && item.strPath == path) item.nIcon = icon;
}

}  // namespace kinsort
