#include "ui/qt/PlanListWidget.h"

#include <QAbstractTableModel>
#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QStyle>
#include <algorithm>
#include <limits>

#include "ui/qt/PlainText.h"
#include "ui/qt/QtText.h"

namespace kinsort {

namespace {

constexpr int kRowMargin = 2;  // pixels above and below text or icon

}  // namespace

class PlanListModel final : public QAbstractTableModel {
  public:
    explicit PlanListModel(const QtIcons& icons) : icons_(icons) {}

    int rowCount(const QModelIndex& parent) const override { return parent.isValid() ? 0 : rows_; }
    int columnCount(const QModelIndex& parent) const override {
        return parent.isValid() ? 0 : static_cast<int>(titles_.size());
    }

    QVariant data(const QModelIndex& index, int role) const override {
        if (control_ == nullptr || index.row() < 0 || index.row() >= rows_) return {};
        const auto row = static_cast<size_t>(index.row());
        const auto column = static_cast<size_t>(index.column());
        if (row >= control_->Plan().GetCount()) return {};  // told too late that it went
        if (role == Qt::DisplayRole || role == Qt::ToolTipRole) {
            const QString text = ToQString(control_->OnGetDispInfo(row, column).text);
            return role == Qt::ToolTipRole ? PlainToolTip(text) : text;
        }
        if (role == Qt::DecorationRole && column == 0) return icons_.IconOf(control_->OnGetDispInfo(row, 0).image);
        return {};
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        if (orientation != Qt::Horizontal || section < 0 || section >= titles_.size()) return {};
        if (role == Qt::TextAlignmentRole) return int(Qt::AlignLeft | Qt::AlignVCenter);
        return role == Qt::DisplayRole ? QVariant(titles_[section]) : QVariant();
    }

    void SetControl(CCmdListCtrl* control) { control_ = control; }

    void InsertTitle(int column, const QString& title) {
        beginInsertColumns({}, column, column);
        titles_.insert(column, title);
        endInsertColumns();
    }

    void SetRows(int rows) {
        if (rows > rows_) {
            beginInsertRows({}, rows_, rows - 1);
            rows_ = rows;
            endInsertRows();
        } else if (rows < rows_) {
            beginRemoveRows({}, rows, rows_ - 1);
            rows_ = rows;
            endRemoveRows();
        }
    }

  private:
    const QtIcons& icons_;
    CCmdListCtrl* control_ = nullptr;
    QStringList titles_;
    int rows_ = 0;
};

PlanListWidget::PlanListWidget(const QtIcons& icons, QWidget* parent)
    : QTableView(parent), model_(std::make_unique<PlanListModel>(icons)) {
    setModel(model_.get());
    setSelectionMode(SingleSelection);
    setSelectionBehavior(SelectRows);
    setEditTriggers(NoEditTriggers);
    setTabKeyNavigation(false);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);  // all alike: nobody is asked row by row
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setSectionsClickable(false);
    FitRowHeight();
}

PlanListWidget::~PlanListWidget() {
    setModel(nullptr);
}

void PlanListWidget::Attach(CCmdListCtrl* control) {
    control_ = control;
    model_->SetControl(control);
    hinted_.reset();
    if (control == nullptr) SetItemCount(0);
}

void PlanListWidget::InsertColumn(int index, const QString& title, int width) {
    const int column = std::clamp(index, 0, model_->columnCount({}));
    model_->InsertTitle(column, title);
    QHeaderView& header = *horizontalHeader();
    header.setSectionResizeMode(QHeaderView::Interactive);
    header.resizeSection(column, width);
    header.setSectionResizeMode(header.count() - 1, QHeaderView::Stretch);
}

void PlanListWidget::SetItemCount(size_t count) {
    hinted_.reset();
    if (currentIndex().isValid() && FocusedItem() >= count) selectionModel()->clear();  // not to a neighbour
    model_->SetRows(static_cast<int>(std::min<size_t>(count, std::numeric_limits<int>::max())));
}

void PlanListWidget::Redraw() {
    hinted_.reset();
    executeDelayedItemsLayout();
    updateGeometries();
    viewport()->repaint();
}

std::optional<size_t> PlanListWidget::SelectedRow() const {
    const QModelIndexList selected = selectionModel()->selectedRows();
    return selected.isEmpty() ? std::nullopt : std::optional(static_cast<size_t>(selected.first().row()));
}

void PlanListWidget::RedrawItems(size_t first, size_t last) {
    const auto rows = static_cast<size_t>(model_->rowCount({}));
    if (first >= rows) return;
    const QModelIndex top = model_->index(static_cast<int>(first), 0);
    const QModelIndex bottom = model_->index(static_cast<int>(std::min(last, rows - 1)), model_->columnCount({}) - 1);
    emit model_->dataChanged(top, bottom);
}

std::optional<size_t> PlanListWidget::FocusedItem() const {
    return currentIndex().isValid() ? std::optional(static_cast<size_t>(currentIndex().row())) : std::nullopt;
}

void PlanListWidget::DeselectItem(size_t row) {
    const QModelIndex index = model_->index(static_cast<int>(row), 0);
    selectionModel()->select(index, QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
    if (FocusedItem() == row) selectionModel()->setCurrentIndex({}, QItemSelectionModel::NoUpdate);
}

void PlanListWidget::SelectItem(size_t row) {
    selectionModel()->setCurrentIndex(model_->index(static_cast<int>(row), 0),
                                      QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void PlanListWidget::EnsureVisible(size_t row) {
    scrollTo(model_->index(static_cast<int>(row), 0));
}

void PlanListWidget::Post(std::function<void()> task) {
    posted_.Post(std::move(task));
}

void PlanListWidget::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    const bool isPlain = (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) == 0;
    const bool isSearchKey = (key >= Qt::Key_0 && key <= Qt::Key_9) || (key >= Qt::Key_A && key <= Qt::Key_Z);
    const uint32_t virtualKey = isPlain && isSearchKey ? static_cast<uint32_t>(key) : 0;
    if (control_ != nullptr && control_->OnKeyDown(virtualKey)) {
        event->accept();
    } else {
        QTableView::keyPressEvent(event);
    }
}

// The control does the searching; the toolkit's own would read every row.
void PlanListWidget::keyboardSearch(const QString& text) {
    (void)text;
}

void PlanListWidget::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    HintVisibleRows();
}

void PlanListWidget::changeEvent(QEvent* event) {
    QTableView::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) FitRowHeight();
}

void PlanListWidget::HintVisibleRows() {
    const int first = rowAt(0);
    if (control_ == nullptr || first < 0) return;
    const int bottom = rowAt(viewport()->height() - 1);
    const int last = bottom < 0 ? model_->rowCount({}) - 1 : bottom;
    const std::pair<int, int> seen(first, last);
    if (hinted_ == seen) return;
    hinted_ = seen;
    control_->OnCacheHint(static_cast<size_t>(first), static_cast<size_t>(last));
}

void PlanListWidget::FitRowHeight() {
    const int icon = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, this);
    setIconSize({icon, icon});
    verticalHeader()->setMinimumSectionSize(1);
    verticalHeader()->setDefaultSectionSize(std::max(fontMetrics().height(), icon) + 2 * kRowMargin);
}

}  // namespace kinsort
