// The list of the plan on the screen. Nothing of the plan is copied: a model of nothing but a number of rows asks
// CCmdListCtrl for the cells that are drawn.
#pragma once

#include <QStringList>
#include <QTableView>
#include <memory>
#include <optional>
#include <utility>

#include "controls/CmdListCtrl.h"
#include "controls/CmdListView.h"
#include "ui/qt/PostedTasks.h"
#include "ui/qt/QtIcons.h"

namespace kinsort {

class PlanListModel;

class PlanListWidget final : public QTableView, public CmdListView {
  public:
    // The icons outlive it.
    explicit PlanListWidget(const QtIcons& icons, QWidget* parent = nullptr);
    ~PlanListWidget() override;

    // Whom to ask and tell; before the first row is shown, and null before the control goes.
    void Attach(CCmdListCtrl* control);
    // `width` in pixels; the last column takes what the others leave, and is never wider than the list.
    void InsertColumn(int index, const QString& title, int width);

    // How many rows of the plan there are to show; draws nothing yet. Selection and focus mark stay where there is
    // still such a row.
    void SetItemCount(size_t count);
    // Draws everything before it returns.
    void Redraw();
    std::optional<size_t> SelectedRow() const;

    void RedrawItems(size_t first, size_t last) override;
    std::optional<size_t> FocusedItem() const override;
    void DeselectItem(size_t row) override;
    void SelectItem(size_t row) override;
    void EnsureVisible(size_t row) override;
    void Post(std::function<void()> task) override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void keyboardSearch(const QString& text) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void HintVisibleRows();
    void FitRowHeight();

    PostedTasks posted_;
    std::unique_ptr<PlanListModel> model_;
    CCmdListCtrl* control_ = nullptr;
    std::optional<std::pair<int, int>> hinted_;  // the rows that the control was told of last
};

}  // namespace kinsort
