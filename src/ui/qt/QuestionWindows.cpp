#include "ui/qt/QuestionWindows.h"

#include <QAction>
#include <QCheckBox>
#include <QClipboard>
#include <QDialog>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QGridLayout>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QTreeView>
#include <QVBoxLayout>

#include "ui/qt/QtText.h"
#include "ui/qt/SummaryRows.h"

namespace kinsort {
namespace {

constexpr int kWidthInCharacters = 72;
constexpr int kPathInCharacters = 60;
constexpr int kListLines = 12;

// A dialog whose buttons stand side by side and end it with their number.
class QuestionDialog final : public QDialog {
  public:
    QuestionDialog(QWidget* owner, const std::u16string& title) : QDialog(owner), layout_(new QVBoxLayout(this)) {
        setWindowTitle(ToQString(title));
        layout_->setSpacing(layout_->spacing() + layout_->spacing() / 2);
    }

    QVBoxLayout& Body() { return *layout_; }

    QLabel* AddText(const std::u16string& text) {
        auto* const label = new QLabel(ToQString(text));
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setMinimumWidth(kWidthInCharacters * fontMetrics().averageCharWidth());
        layout_->addWidget(label);
        return label;
    }

    void AddButtons(const std::vector<std::u16string>& labels, size_t defaultButton, size_t escapeButton) {
        auto* const row = new QHBoxLayout;
        row->addStretch();
        for (size_t i = 0; i < labels.size(); ++i) {
            auto* const button = new QPushButton(ToQString(labels[i]));
            connect(button, &QPushButton::clicked, this, [this, i] { done(static_cast<int>(i)); });
            row->addWidget(button);
            if (i != defaultButton) continue;
            button->setDefault(true);
            button->setFocus();
        }
        layout_->addLayout(row);
        escape_ = static_cast<int>(escapeButton);
    }

    size_t Ask() { return static_cast<size_t>(exec()); }

    void reject() override { done(escape_); }

  private:
    QVBoxLayout* layout_;
    int escape_ = 0;
};

QLabel* PlainLabel(const QString& text) {
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    return label;
}

// One of the two files: its picture, what it is, where it is, its size and date.
void AddSide(QGridLayout& grid, int row, const ConflictSideTexts& side) {
    const QString path = ToQString(side.path);
    auto* const icon = new QLabel;
    const int size = icon->style()->pixelMetric(QStyle::PM_LargeIconSize);
    icon->setPixmap(QFileIconProvider().icon(QFileInfo(path)).pixmap(size, size));
    QLabel* const heading = PlainLabel(ToQString(side.heading));
    QFont bold = heading->font();
    bold.setBold(true);
    heading->setFont(bold);
    const QFontMetrics metrics = grid.parentWidget()->fontMetrics();
    QLabel* const shownPath =
        PlainLabel(metrics.elidedText(path, Qt::ElideMiddle, kPathInCharacters * metrics.averageCharWidth()));
    shownPath->setToolTip(path);
    shownPath->setAccessibleName(path);
    grid.addWidget(icon, row, 0, 3, 1, Qt::AlignTop);
    grid.addWidget(heading, row, 1);
    grid.addWidget(shownPath, row + 1, 1);
    grid.addWidget(PlainLabel(ToQString(side.details)), row + 2, 1);
    grid.setRowMinimumHeight(row + 3, metrics.height() / 2);
}

// Ctrl+C and the context menu copy the rows that are selected, or all.
class SummaryList final : public QTreeView {
  public:
    SummaryList(SummaryRows& rows, const WindowTexts& texts) : rows_(rows) {
        setModel(&rows);
        setRootIsDecorated(false);
        setUniformRowHeights(true);
        setSelectionMode(QAbstractItemView::ExtendedSelection);
        setTextElideMode(Qt::ElideMiddle);
        const int character = fontMetrics().averageCharWidth();
        setColumnWidth(0, kWidthInCharacters * character / 2);
        setMinimumSize(kWidthInCharacters * character, kListLines * fontMetrics().lineSpacing());
        auto* const copy = new QAction(texts.Say(WindowText::kCopyList), this);
        connect(copy, &QAction::triggered, this, [this] { Copy(); });
        addAction(copy);
        setContextMenuPolicy(Qt::ActionsContextMenu);
    }

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->matches(QKeySequence::Copy)) {
            Copy();
        } else {
            QTreeView::keyPressEvent(event);
        }
    }

  private:
    void Copy() { QGuiApplication::clipboard()->setText(rows_.AsText(selectionModel()->selectedRows())); }

    SummaryRows& rows_;
};

}  // namespace

ConflictReply AskConflictIn(QWidget* owner, const ConflictQuestion& question) {
    QuestionDialog dialog(owner, question.title);
    dialog.AddText(question.instruction);
    auto* const sides = new QWidget;
    auto* const grid = new QGridLayout(sides);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setColumnStretch(1, 1);
    AddSide(*grid, 0, question.item);
    AddSide(*grid, 4, question.target);
    dialog.Body().addWidget(sides);
    auto* const forAll = new QCheckBox(ToQString(question.forAll));
    dialog.Body().addWidget(forAll);
    std::vector<std::u16string> labels;
    for (const ConflictButton& button : question.buttons)
        labels.push_back(button.label);
    dialog.AddButtons(labels, question.defaultButton, labels.size() - 1);
    const size_t pressed = dialog.Ask();
    return {question.buttons[pressed].answer, forAll->isChecked() ? AnswerScope::kAllInBatch : AnswerScope::kThisOne};
}

size_t AskButtonsIn(QWidget* owner, const ButtonQuestion& question) {
    QuestionDialog dialog(owner, question.title);
    dialog.AddText(question.instruction);
    if (!question.details.empty()) dialog.AddText(question.details);
    dialog.AddButtons(question.buttons, question.defaultButton, question.escapeButton);
    return dialog.Ask();
}

size_t ShowSummaryIn(QWidget* owner, const OperationSummary& summary, const WindowTexts& texts) {
    SummaryRows rows(summary);
    QuestionDialog dialog(owner, summary.title);
    dialog.AddText(summary.headline);
    for (const std::u16string& note : summary.notes)
        dialog.AddText(note);
    if (!summary.rows.empty()) dialog.Body().addWidget(new SummaryList(rows, texts), 1);
    dialog.setSizeGripEnabled(!summary.rows.empty());
    dialog.AddButtons(summary.buttons, summary.buttons.size() - 1, summary.buttons.size() - 1);
    return dialog.Ask();
}

}  // namespace kinsort
