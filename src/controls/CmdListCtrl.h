// The list of the selected files: holds the plan, answers for each cell, fetches icons beside the user's work, and
// finds rows by their first letters.
//
// Icons. A worker goes through its range row by row. For each row it takes the plan's lock, copies the path, lets the
// lock go, asks for the icon, and takes the lock again to store the answer in the row if that is still there with the
// same path and without an icon. So what a worker stores always belongs to the row it is stored in, as if it had held
// the lock for the whole range, and yet nobody ever waits for a disk: painting and removing rows wait for the lock no
// longer than a copy takes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "classify/ClassificationPlan.h"
#include "controls/CmdListView.h"
#include "framework/WorkerThreads.h"
#include "platform/Clock.h"
#include "platform/FileSystem.h"
#include "platform/Icons.h"

namespace kinsort {

struct ListCell {
    std::u16string_view text;  // the row's own; good until the row or its candidates change
    int image = 0;             // index in the list of small icons
};

// Everything but the workers runs on the thread of the user interface.
class CCmdListCtrl {
  public:
    // A second without a key ends a prefix.
    static constexpr int64_t kTypeAheadMilliseconds = 1000;
    static constexpr size_t kMaxIconWorkers = 8;

    // All of them must outlive the control; see WorkerThreads.h for a worker that hangs.
    CCmdListCtrl(CmdListView& view, Icons& icons, FileSystem& files, Clock& clock);
    // Waits for running workers (WorkerThreads::kPatience at most) and frees the rows.
    ~CCmdListCtrl();

    ClassificationPlan& Plan() { return *plan_; }
    const ClassificationPlan& Plan() const { return *plan_; }

    // Cell of an existing row. Column 0 is the name, column k the k-th candidate, without text if there is none. The
    // image is the row's icon, 0 as long as that is unknown.
    ListCell OnGetDispInfo(size_t row, size_t column) const;

    // Rows `first` to `last`, both included, are about to be seen: starts a worker for those of them that have no icon
    // and that no running worker has in hand. While kMaxIconWorkers run, the newest such hint waits.
    void OnCacheHint(size_t first, size_t last);

    // A worker has done its range.
    void OnIconsReady(size_t first, size_t last);

    // A key went down in the list; `virtualKey` is '0' to '9' or 'A' to 'Z' for the digits and letters, anything else
    // for other keys. True when it was used for the search.
    bool OnKeyDown(uint32_t virtualKey);

    // True when no worker runs; false after the limit. Their answers are posted by then, not yet delivered.
    bool WaitForIcons(std::chrono::milliseconds limit) { return workers_.WaitForAll(limit); }

  private:
    struct RowRange {
        size_t first;
        size_t last;
        bool operator==(const RowRange&) const = default;
    };
    bool IsInHand(size_t row) const;
    void FindTypeAhead(std::u16string_view text);

    CmdListView& view_;
    Icons& icons_;
    FileSystem& files_;
    Clock& clock_;
    std::shared_ptr<ClassificationPlan> plan_;  // shared with the workers only
    std::vector<RowRange> inHand_;              // the ranges of running workers
    std::optional<RowRange> waiting_;           // the newest hint that found a row in other hands
    std::u16string m_strTypeAhead;
    uint8_t m_nLastKey = 0;
    std::optional<int64_t> lastKeyTime_;  // milliseconds of the steady clock
    WorkerThreads workers_;
};

}  // namespace kinsort
