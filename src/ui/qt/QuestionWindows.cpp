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
#include <QPushButton>
#include <QScreen>
#include <QStyle>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>

#include "ui/qt/PlainText.h"
#include "ui/qt/QtText.h"
#include "ui/qt/SummaryRows.h"

namespace kinsort {
namespace {

constexpr int kWidthInLetters = 72;
constexpr int kOfferInLetters = 48;
constexpr int kListLines = 12;
constexpr int kMostTextLines = 12;  // in a window that holds more, no button is in sight

// A dialog whose buttons stand side by side and end it with their number.
class QuestionDialog final : public QDialog {
  public:
    QuestionDialog(QWidget* owner, const std::u16string& title) : QDialog(owner), layout_(new QVBoxLayout(this)) {
        setWindowTitle(ToQString(title));
        layout_->setSpacing(layout_->spacing() + layout_->spacing() / 2);
    }

    QVBoxLayout& Body() { return *layout_; }

    void AddText(const std::u16string& text, int widthInLetters = kWidthInLetters) {
        const QString whole = ToQString(text);
        const int width = WidthOfLetters(fontMetrics(), widthInLetters);
        QLabel* const label = PlainLabel(FitIntoLines(whole, fontMetrics(), width, kMostTextLines));
        if (label->text() != whole) label->setToolTip(PlainToolTip(whole));
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setMinimumWidth(width);
        layout_->addWidget(label);
    }

    void AddButtons(const std::vector<std::u16string>& labels, size_t defaultButton, size_t escapeButton) {
        auto* const row = new QHBoxLayout;
        row->addStretch();
        for (size_t i = 0; i < labels.size(); ++i) {
            auto* const button = new QPushButton(ToQString(labels[i]), this);
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
    auto* const shownPath = new ElidedLabel;
    shownPath->SetFullText(path);
    grid.addWidget(icon, row, 0, 3, 1, Qt::AlignTop);
    grid.addWidget(heading, row, 1);
    grid.addWidget(shownPath, row + 1, 1);
    grid.addWidget(PlainLabel(ToQString(side.details)), row + 2, 1);
    grid.setRowMinimumHeight(row + 3, heading->fontMetrics().height() / 2);
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
        const int width = WidthOfLetters(fontMetrics(), kWidthInLetters);
        setColumnWidth(0, width / 2);
        setMinimumSize(width, kListLines * fontMetrics().lineSpacing());
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

bool OfferUndoIn(const UndoOffer& offer, const WindowTexts& texts, int limitMs) {
    QuestionDialog dialog(nullptr, offer.title);
    dialog.AddText(offer.text, kOfferInLetters);
    dialog.AddButtons({offer.undo, FromQString(texts.Say(WindowText::kClose))}, 1, 1);
    dialog.setAttribute(Qt::WA_ShowWithoutActivating);
    dialog.setWindowFlag(Qt::WindowStaysOnTopHint);
    dialog.adjustSize();
    const int distance = 3 * dialog.fontMetrics().height();
    const QRect room = dialog.screen()->availableGeometry().adjusted(distance, distance, -distance, -distance);
    dialog.move(
        QStyle::alignedRect(dialog.layoutDirection(), Qt::AlignRight | Qt::AlignBottom, dialog.size(), room).topLeft());
    QTimer::singleShot(limitMs, &dialog, &QDialog::reject);
    return dialog.Ask() == 0;
}

}  // namespace kinsort
