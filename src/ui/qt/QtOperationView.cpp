#include "ui/qt/QtOperationView.h"

#include <QApplication>
#include <QTimer>

#include "ui/qt/QtText.h"
#include "ui/qt/QuestionWindows.h"

namespace kinsort {

void QtOperationView::Post(std::function<void()> work) {
    posted_.Post(std::move(work));
}

void QtOperationView::RunLoop() {
    if (!isEnded_) loop_.exec();
    isEnded_ = false;
}

void QtOperationView::EndLoop() {
    isEnded_ = true;
    loop_.quit();
}

void QtOperationView::BeginProgress(const ProgressTexts& texts, std::function<void()> onCancel) {
    progress_ = std::make_unique<ProgressWindow>(std::move(onCancel));
    progress_->Update(texts);
    QTimer::singleShot(kProgressAfterMs, progress_.get(), &QWidget::show);
}

void QtOperationView::UpdateProgress(const ProgressTexts& texts) {
    if (progress_) progress_->Update(texts);
}

void QtOperationView::EndProgress() {
    progress_.reset();
}

// The dialog itself is hidden by the time a batch runs, and a hidden window owns nothing well. A question that comes
// before the progress was due shows that too: it is what the question is about.
QWidget* QtOperationView::Owner() {
    if (QWidget* const active = QApplication::activeModalWidget()) return active;
    if (progress_) {
        progress_->show();
        return progress_.get();
    }
    return QApplication::activeWindow();
}

ConflictReply QtOperationView::AskConflict(const ConflictQuestion& question) {
    return AskConflictIn(Owner(), question);
}

size_t QtOperationView::AskButtons(const ButtonQuestion& question) {
    return AskButtonsIn(Owner(), question);
}

size_t QtOperationView::ShowSummary(const OperationSummary& summary) {
    return ShowSummaryIn(Owner(), summary, texts_);
}

bool QtOperationView::OfferUndo(const UndoOffer& offer) {
    if (UndoNotification::HasSessionBus()) {
        notification_.emplace(QDBusConnection::sessionBus());
        const UndoNotification::Texts texts = {ToQString(offer.title), ToQString(offer.text), ToQString(offer.undo)};
        const std::optional<bool> answer = notification_->Offer(texts, kOfferMs);
        notification_.reset();
        if (answer) return *answer;
    }
    return !isWithdrawn_ && OfferUndoIn(offer, texts_, kOfferMs);
}

void QtOperationView::WithdrawOffer() {
    isWithdrawn_ = true;
    if (notification_) notification_->Withdraw();
}

}  // namespace kinsort
