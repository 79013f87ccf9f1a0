#include "classify/PlanPresenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/fake/FakeLocaleMap.h"
#include "platform/fake/MemoryFileSystem.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RecordingView : public PlanView {
  public:
    explicit RecordingView(const ClassificationPlan& plan) : plan_(plan) {}

    bool ReadControls() override {
        folder = typedFolder;
        Record("read");
        return false;  // nobody may mind
    }
    std::u16string SearchFolder() const override { return folder; }
    void PushFields() override { Record("push"); }
    void SetItemCount(size_t count) override { Record("count " + std::to_string(count)); }
    void Redraw() override { Record("redraw"); }
    std::optional<size_t> SelectedRow() const override { return selected; }
    void SelectRow(size_t row) override { Record("select " + std::to_string(row)); }
    void EnsureVisible(size_t row) override { Record("show " + std::to_string(row)); }
    void FocusList() override { Record("focus of " + std::to_string(plan_.GetCount())); }
    void SetCountLabel(std::u16string_view text) override { Record("label " + ToUtf8(text)); }
    void ShowMessage(std::u16string_view text) override { Record("message " + ToUtf8(text)); }

    std::u16string typedFolder;
    std::u16string folder;
    std::optional<size_t> selected;
    std::vector<std::string> calls;

  private:
    void Record(std::string call) { calls.push_back(std::move(call)); }
    const ClassificationPlan& plan_;
};

class PlanPresenterTest : public testing::Test {
  protected:
    PlanPresenterTest() {
        for (const char16_t* path : {u"Z:\\in\\summer.jpg", u"Z:\\in\\x", u"Z:\\in\\winter.jpg"})
            plan.AddItem(path);
        files.AddFolder(u"Z:\\out\\Summer");
        files.AddFolder(u"Z:\\out\\Winter");
        files.AddFolder(u"Z:\\empty");
    }
    std::u16string Names() const {
        std::u16string names;
        for (size_t i = 0; i < plan.GetCount(); ++i)
            names += plan[i].strName + u" ";
        return names;
    }

    const NameNormalizer normalizer{FakeLocaleMap()};
    MemoryFileSystem files;
    ClassificationPlan plan;
    RecordingView view{plan};
    PlanPresenter presenter{plan, view, files, normalizer};
};

TEST_F(PlanPresenterTest, SearchReadsTheFolderFillsTheRowsAndRedraws) {
    view.typedFolder = u"Z:\\out\\";
    presenter.SearchCandidates();
    EXPECT_THAT(view.calls, ElementsAre("read", "count 3", "redraw"));
    EXPECT_THAT(plan[0].arrCandidates, ElementsAre(u"Summer"));
    EXPECT_THAT(plan[1].arrCandidates, IsEmpty());
    EXPECT_THAT(plan[2].arrCandidates, ElementsAre(u"Winter"));
}

TEST_F(PlanPresenterTest, SearchWithoutSubFoldersSaysSoAndKeepsTheRows) {
    plan[1].arrCandidates = {u"kept"};
    for (const char16_t* folder : {u"Z:\\empty", u"Z:\\missing", u"Q:\\"}) {
        view.calls.clear();
        view.typedFolder = folder;
        presenter.SearchCandidates();
        EXPECT_THAT(view.calls, ElementsAre("read", "message No Directory"));
        EXPECT_THAT(plan[1].arrCandidates, ElementsAre(u"kept"));
    }
}

TEST_F(PlanPresenterTest, SearchWithAnEmptyFieldTakesTheRootOfTheCurrentDrive) {
    files.AddFolder(u"Z:\\winter things");
    presenter.SearchCandidates();
    EXPECT_THAT(plan[2].arrCandidates, ElementsAre(u"winter things"));
}

TEST_F(PlanPresenterTest, DeletingSelectsTheRowThatTakesThePlaceOrTheNewLast) {
    view.selected = 2;
    presenter.OnDeleteSelected();
    EXPECT_THAT(view.calls,
                ElementsAre("count 0", "focus of 2", "count 2", "redraw", "label (2)", "select 1", "show 1", "push"));
    EXPECT_EQ(Names(), u"summer.jpg x ");
    view.calls.clear();
    view.selected = 0;
    presenter.OnDeleteSelected();
    EXPECT_THAT(view.calls,
                ElementsAre("count 0", "focus of 1", "count 1", "redraw", "label (1)", "select 0", "show 0", "push"));
    EXPECT_EQ(Names(), u"x ");
    view.calls.clear();
    presenter.OnDeleteSelected();
    EXPECT_THAT(view.calls, ElementsAre("count 0", "focus of 0", "count 0", "redraw", "label (0)", "push"));
}

TEST_F(PlanPresenterTest, DeletingWithoutASelectionDoesNothing) {
    for (const std::optional<size_t> selected : {std::optional<size_t>(), std::optional<size_t>(3)}) {
        view.selected = selected;
        presenter.OnDeleteSelected();
        EXPECT_THAT(view.calls, IsEmpty());
        EXPECT_EQ(plan.GetCount(), 3U);
    }
}

TEST_F(PlanPresenterTest, DeletingTheRowsWithoutCandidateKeepsTheOthers) {
    plan[0].arrCandidates = {u"a"};
    plan[2].arrCandidates = {u"b"};
    for (int round = 0; round < 2; ++round) {  // the second time nothing is left to remove
        view.calls.clear();
        presenter.OnDeleteNoCandidate();
        EXPECT_THAT(view.calls, ElementsAre("count 0", "count 2", "redraw", "label (2)", "push"));
        EXPECT_EQ(Names(), u"summer.jpg winter.jpg ");
    }
    plan[0].arrCandidates.clear();
    plan[1].arrCandidates.clear();
    view.calls.clear();
    presenter.OnDeleteNoCandidate();
    EXPECT_THAT(view.calls, ElementsAre("count 0", "count 0", "redraw", "label (0)", "push"));
}

TEST_F(PlanPresenterTest, LabelBeginsAtZero) {
    plan.RemoveAll();
    presenter.UpdateCountLabel();
    EXPECT_THAT(view.calls, ElementsAre("label (0)"));
}

}  // namespace
}  // namespace kinsort
