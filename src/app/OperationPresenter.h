// Carries a batch out while the window stays alive: the engine works on a thread of its own, this shows how far it is,
// puts its questions to the user, and tells what became of it.
//
// Questions and progress travel to the view's thread and back without a lock being held, so a question may stand on the
// screen for as long as it takes.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/OperationRunner.h"
#include "app/OperationTexts.h"
#include "app/OperationView.h"
#include "fileop/FileOperation.h"
#include "fileop/UndoHistory.h"
#include "framework/Messages.h"

namespace kinsort {

class OperationPresenter final : public OperationRunner {
  public:
    // `engine`: nothing when there is no place for the undo journal; then no batch is begun, and the user is told. The
    // references outlive the presenter. Everything here is called on the view's thread.
    OperationPresenter(std::optional<FileOperationServices> engine, OperationView& view, Messages& messages,
                       const PathCodec& codec);

    void CarryOut(std::vector<ItemRequest> items, uint32_t flags) override;
    void OfferUndo() override;
    void OfferRecovery() override;

    // The session ends: stops the batch that is running, as Cancel does, and asks and tells nothing any more.
    void CancelRunning();

  private:
    class Worker;
    using Job = std::function<BatchResult(AskUserAction&, ProgressSink&, const CancelToken&)>;

    BatchResult Run(OperationKind kind, const Job& job);
    void Undo(BatchId id);
    void Recover(UndoHistory& history, const BatchSummary& batch, RecoverAction action);

    struct Finished {
        OperationKind kind;
        BatchResult result;
        std::u16string folder;
    };

    std::optional<FileOperationServices> engine_;
    OperationView& view_;
    OperationTexts texts_;
    Worker* running_ = nullptr;
    bool isEnding_ = false;
    std::optional<Finished> undoable_;  // what OfferUndo is about
};

}  // namespace kinsort
