#include "classify/PlanPresenter.h"

#include <algorithm>
#include <string>

#include "text/Utf8.h"

namespace kinsort {

void PlanPresenter::SearchCandidates() {
    (void)view_.ReadControls();  // where a control refused, the user has been told, and the search goes on all the same
    const std::vector<std::u16string> folders = ListCandidateFolders(files_, view_.SearchFolder());
    if (FillCandidates(plan_, folders, normalizer_, {}, nullptr) == SearchOutcome::kNoDirectory) {
        view_.ShowMessage(u"No Directory");
        return;
    }
    ShowRows();
}

void PlanPresenter::OnDeleteSelected() {
    const std::optional<size_t> selected = view_.SelectedRow();
    if (!selected || *selected >= plan_.GetCount()) return;
    view_.SetItemCount(0);  // so that the list asks for no row while one goes
    plan_.RemoveItem(*selected);
    view_.FocusList();
    ShowRows();
    UpdateCountLabel();
    if (const size_t count = plan_.GetCount(); count > 0) {
        const size_t next = std::min(*selected, count - 1);
        view_.SelectRow(next);
        view_.EnsureVisible(next);
    }
    view_.PushFields();
}

void PlanPresenter::OnDeleteNoCandidate() {
    view_.SetItemCount(0);
    plan_.RemoveWithoutCandidate();
    ShowRows();
    UpdateCountLabel();
    view_.PushFields();
}

void PlanPresenter::UpdateCountLabel() {
    std::string text = "(";
    text += std::to_string(plan_.GetCount());
    text += ')';
    view_.SetCountLabel(FromUtf8(text));
}

void PlanPresenter::ShowRows() {
    view_.SetItemCount(plan_.GetCount());
    view_.Redraw();
}

}  // namespace kinsort
