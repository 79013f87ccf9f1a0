// The plan: the items that are to be sorted, in the order in which they arrived, each with the sub-folder it goes to.
#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kinsort {

// One row of the plan.
struct CmdListItem {
    int nIcon = -1;                             // index in the system's small-icon list; -1 = not fetched yet
    std::u16string strName;                     // what stands behind the last separator of strPath
    std::u16string strPath;                     // full path as it was handed in
    std::vector<std::u16string> arrCandidates;  // target sub-folder names; after a search one or none
};

// The container of the rows. Adding, removing and everything about nIcon happen under m_csItems; strName, strPath and
// arrCandidates are read and written on the thread that owns the plan only.
class ClassificationPlan {
  public:
    void AddItem(std::u16string path);
    // Takes row `index` out and frees it; an index outside the plan does nothing.
    void RemoveItem(size_t index);
    // Takes every row out whose arrCandidates is empty; the others keep their order.
    void RemoveWithoutCandidate();
    void RemoveAll();
    size_t GetCount() const;

    // Icons, from any thread. The icon of a row, -1 also when there is no such row.
    int GetIcon(size_t index) const;
    // The path of row `index` if there is such a row and it has no icon yet.
    std::optional<std::u16string> GetPathWithoutIcon(size_t index) const;
    // Gives row `index` its icon, if that still is a row with this path and without an icon.
    void SetIcon(size_t index, std::u16string_view path, int icon);

    CmdListItem& operator[](size_t index) { return *m_items[index]; }
    const CmdListItem& operator[](size_t index) const { return *m_items[index]; }
    std::mutex& Lock() const { return m_csItems; }

  private:
    std::deque<std::unique_ptr<CmdListItem>> m_items;
    mutable std::mutex m_csItems;
};

}  // namespace kinsort
