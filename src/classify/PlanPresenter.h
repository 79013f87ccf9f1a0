// The operations of the dialog on its plan: search for candidates, prune, show the count. Everything runs on the
// thread that owns the plan.
#pragma once

#include "classify/CandidateSearch.h"
#include "classify/ClassificationPlan.h"
#include "classify/NameSimilarity.h"
#include "classify/PlanView.h"
#include "platform/FileSystem.h"

namespace kinsort {

class PlanPresenter {
  public:
    // All of them must outlive the presenter.
    PlanPresenter(ClassificationPlan& plan, PlanView& view, FileSystem& files, const NameNormalizer& normalizer)
        : plan_(plan), view_(view), files_(files), normalizer_(normalizer) {}

    // Gives every row the best of the search folder's sub-folders, or nothing where none looks alike. Without any
    // sub-folder it says "No Directory" and the rows keep what they had.
    void SearchCandidates();
    // Removes the selected row and selects the one that takes its place, or the new last one. Does nothing without a
    // selection.
    void OnDeleteSelected();
    // Removes the rows without a candidate.
    void OnDeleteNoCandidate();
    void UpdateCountLabel();

  private:
    void ShowRows();

    ClassificationPlan& plan_;
    PlanView& view_;
    FileSystem& files_;
    const NameNormalizer& normalizer_;
};

}  // namespace kinsort
