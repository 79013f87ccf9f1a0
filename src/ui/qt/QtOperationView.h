// What carrying out a batch shows, in Qt.
#pragma once

#include <QEventLoop>
#include <memory>
#include <optional>

#include "app/OperationView.h"
#include "ui/qt/PostedTasks.h"
#include "ui/qt/ProgressWindow.h"
#include "ui/qt/UndoNotification.h"
#include "ui/qt/WindowTexts.h"

namespace kinsort {

class QtOperationView final : public OperationView {
  public:
    // A batch that is shorter shows no progress.
    static constexpr int kProgressAfterMs = 500;
    // How long the offer to undo keeps the program alive.
    static constexpr int kOfferMs = 15'000;

    // The texts outlive it.
    explicit QtOperationView(const WindowTexts& texts) : texts_(texts) {}

    void Post(std::function<void()> work) override;
    void RunLoop() override;
    void EndLoop() override;
    void BeginProgress(const ProgressTexts& texts, std::function<void()> onCancel) override;
    void UpdateProgress(const ProgressTexts& texts) override;
    void EndProgress() override;
    ConflictReply AskConflict(const ConflictQuestion& question) override;
    size_t AskButtons(const ButtonQuestion& question) override;
    size_t ShowSummary(const OperationSummary& summary) override;
    bool OfferUndo(const UndoOffer& offer) override;
    // The session ends: takes away an offer that is no window, and makes none any more.
    void WithdrawOffer();

  private:
    QWidget* Owner();

    const WindowTexts& texts_;
    PostedTasks posted_;
    QEventLoop loop_;
    bool isEnded_ = false;
    std::unique_ptr<ProgressWindow> progress_;
    std::optional<UndoNotification> notification_;
    bool isWithdrawn_ = false;
};

}  // namespace kinsort
