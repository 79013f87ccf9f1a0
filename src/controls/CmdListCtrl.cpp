#include "controls/CmdListCtrl.h"

#include <algorithm>
#include <utility>

#include "framework/Paths.h"
#include "text/AsciiCase.h"

namespace kinsort {

namespace {

constexpr int kNoIcon = -1;
constexpr int kPlainIcon = 0;
constexpr int64_t kNanosecondsPerMillisecond = 1'000'000;

bool IsSearchKey(uint32_t virtualKey) {
    return (virtualKey >= '0' && virtualKey <= '9') || (virtualKey >= 'A' && virtualKey <= 'Z');
}

// What a path stands for on a share or in its long form is told by its name: opening it there would take too long.
int FetchIcon(Icons& icons, FileSystem& files, const std::u16string& path) {
    int icon = kNoIcon;
    if (path.starts_with(u'\\')) {
        const std::u16string name = GetFileNamePart(path);
        if (name.empty()) return kNoIcon;
        icon = icons.IndexOfName(name, FolderExists(files, path) ? kAttributeDirectory : kAttributeNormal);
    } else {
        icon = icons.IndexOfPath(path);
    }
    return icon == kNoIcon ? kPlainIcon : icon;
}

}  // namespace

CCmdListCtrl::CCmdListCtrl(CmdListView& view, Icons& icons, FileSystem& files, Clock& clock)
    : view_(view),
      icons_(icons),
      files_(files),
      clock_(clock),
      plan_(std::make_shared<ClassificationPlan>()),
      workers_([this](std::function<void()> task) { view_.Post(std::move(task)); }, kMaxIconWorkers) {}

CCmdListCtrl::~CCmdListCtrl() = default;

ListCell CCmdListCtrl::OnGetDispInfo(size_t row, size_t column) const {
    const CmdListItem& item = Plan()[row];
    ListCell cell;
    if (column == 0) {
        cell.text = item.strName;
        cell.image = std::max(plan_->GetIcon(row), kPlainIcon);
    } else if (column <= item.arrCandidates.size()) {
        cell.text = item.arrCandidates[column - 1];
    }
    return cell;
}

void CCmdListCtrl::OnCacheHint(size_t first, size_t last) {
    const RowRange hint{first, last};
    bool isInOtherHands = false;
    std::optional<RowRange> missing;
    for (size_t row = first; row <= last && row < plan_->GetCount(); ++row) {
        if (plan_->GetIcon(row) != kNoIcon) continue;
        if (IsInHand(row)) {
            isInOtherHands = true;
        } else {
            missing = RowRange{missing ? missing->first : row, row};
        }
    }
    waiting_ = isInOtherHands ? std::optional(hint) : std::nullopt;
    if (!missing) return;

    const auto fetch = [range = *missing, plan = plan_, &icons = icons_, &files = files_,
                        this](const WorkerThreads::Link& link) {
        for (size_t row = range.first; row <= range.last && !link.IsStopped(); ++row) {
            const std::optional<std::u16string> path = plan->GetPathWithoutIcon(row);
            if (!path) continue;
            const int icon = FetchIcon(icons, files, *path);
            if (icon != kNoIcon) plan->SetIcon(row, *path, icon);
        }
        link.Post([range, this] { OnIconsReady(range.first, range.last); });
    };
    if (workers_.Start(fetch)) {
        inHand_.push_back(*missing);
    } else {
        waiting_ = hint;
    }
}

void CCmdListCtrl::OnIconsReady(size_t first, size_t last) {
    const auto done = std::find(inHand_.begin(), inHand_.end(), RowRange{first, last});
    if (done != inHand_.end()) inHand_.erase(done);
    view_.RedrawItems(first, last);
    if (const std::optional<RowRange> hint = std::exchange(waiting_, std::nullopt)) {
        OnCacheHint(hint->first, hint->last);
    }
}

bool CCmdListCtrl::IsInHand(size_t row) const {
    return std::any_of(inHand_.begin(), inHand_.end(),
                       [row](const RowRange& range) { return row >= range.first && row <= range.last; });
}

bool CCmdListCtrl::OnKeyDown(uint32_t virtualKey) {
    const int64_t now = clock_.SteadyNanoseconds() / kNanosecondsPerMillisecond;
    if (now - lastKeyTime_.value_or(now) > kTypeAheadMilliseconds) m_strTypeAhead.clear();
    lastKeyTime_ = now;
    const auto key = static_cast<uint8_t>(virtualKey & 0xFF);
    if (!IsSearchKey(virtualKey)) {
        m_strTypeAhead.clear();
    } else if (key == m_nLastKey && m_strTypeAhead.size() < 2) {
        m_strTypeAhead.assign(1, key);
    } else {
        m_strTypeAhead += key;
    }
    m_nLastKey = key;
    if (m_strTypeAhead.empty()) return false;
    FindTypeAhead(m_strTypeAhead);
    return true;
}

// Begins behind the focused row for a single letter, which so steps from match to match, and with that row itself for a
// longer text, which it may still match. Without a focused row the first counts as focused.
void CCmdListCtrl::FindTypeAhead(std::u16string_view text) {
    const size_t count = plan_->GetCount();
    const size_t focused = view_.FocusedItem().value_or(0);
    const auto select = [&](size_t row) {
        if (!StartsWithNoCase(Plan()[row].strName, text)) return false;
        view_.DeselectItem(focused);
        view_.SelectItem(row);
        view_.EnsureVisible(row);
        return true;
    };
    for (size_t row = text.size() == 1 ? focused + 1 : focused; row < count; ++row) {
        if (select(row)) return;
    }
    for (size_t row = 0; row < std::min(focused, count); ++row) {
        if (select(row)) return;
    }
}

}  // namespace kinsort
