#include "app/OperationPresenter.h"

#include <algorithm>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "framework/MessageNumbers.h"
#include "framework/Paths.h"

namespace kinsort {
namespace {

// Every item has the outcome that the user expects: done, or left out because they said so.
bool IsAsWished(const BatchResult& result) {
    const auto isExpected = [](const ItemReport& report) {
        return report.outcome == ItemOutcome::kDone ||
               (report.outcome == ItemOutcome::kSkipped &&
                (report.reason == ItemReason::kConflictSkipped || report.reason == ItemReason::kDuplicate));
    };
    return !result.cancelled && result.status.ok() &&
           std::all_of(result.reports.begin(), result.reports.end(), isExpected);
}

bool NeedsSummary(const BatchResult& result) {
    return result.done == 0 || !IsAsWished(result);
}

}  // namespace

// One batch on a thread of its own. Between the two threads: what is posted to the view, an answer that the batch waits
// for, the newest progress, and the token.
class OperationPresenter::Worker final : public AskUserAction, public ProgressSink {
  public:
    Worker(OperationView& view, OperationTexts& texts, OperationKind kind) : view_(view), texts_(texts), kind_(kind) {}

    // On the view's thread: returns when the batch is over.
    BatchResult Run(const Job& job) {
        view_.BeginProgress(texts_.Progress(kind_, shown_, false), [this] { Cancel(); });
        BatchResult result;
        {
            const std::jthread thread([&] {
                result = job(*this, *this, cancel_);
                view_.Post([this] { view_.EndLoop(); });
            });
            view_.RunLoop();
        }
        view_.EndProgress();
        return result;
    }

    void Cancel() {
        if (cancel_.isCancelled()) return;
        cancel_.Cancel();
        view_.UpdateProgress(texts_.Progress(kind_, shown_, true));
    }

    // On the batch's thread.
    ConflictReply AskConflict(const Conflict& conflict) override {
        constexpr ConflictReply kStop = {ConflictAnswer::kCancel, AnswerScope::kAllInBatch};
        return WaitForView<ConflictReply>(kStop, [&] { return view_.AskConflict(texts_.Ask(conflict)); });
    }
    FailureAnswer AskFailure(const std::u16string& path, const Status& why) override {
        return WaitForView<FailureAnswer>(FailureAnswer::kCancel, [&] {
            switch (view_.AskButtons(texts_.AskFailure(path, why))) {
                case 0:
                    return FailureAnswer::kRetry;
                case 1:
                    return FailureAnswer::kSkip;
                default:
                    return FailureAnswer::kCancel;
            }
        });
    }
    void Report(const ProgressState& state) override {
        {
            const std::lock_guard lock(mutex_);
            const bool isUnderWay = newest_.has_value();
            newest_ = state;
            if (isUnderWay) return;  // what was posted will find the newer state
        }
        view_.Post([this] { ShowNewest(); });
    }

  private:
    // Has `ask` answered on the view's thread; `stopped` when the user has cancelled meanwhile.
    template <typename Answer, typename Ask>
    Answer WaitForView(Answer stopped, const Ask& ask) {
        // Shared, since the promise may still be at work when the answer is here already.
        const auto answer = std::make_shared<std::promise<Answer>>();
        std::future<Answer> arrival = answer->get_future();
        view_.Post([this, answer, stopped, &ask] { answer->set_value(cancel_.isCancelled() ? stopped : ask()); });
        return arrival.get();
    }

    void ShowNewest() {
        std::optional<ProgressState> state;
        {
            const std::lock_guard lock(mutex_);
            state.swap(newest_);
        }
        if (!state) return;
        shown_ = std::move(*state);
        view_.UpdateProgress(texts_.Progress(kind_, shown_, cancel_.isCancelled()));
    }

    OperationView& view_;
    OperationTexts& texts_;
    OperationKind kind_;
    CancelToken cancel_;
    ProgressState shown_;  // the view's thread only
    std::mutex mutex_;
    std::optional<ProgressState> newest_;  // under mutex_; set while a ShowNewest is on its way
};

OperationPresenter::OperationPresenter(std::optional<FileOperationServices> engine, OperationView& view,
                                       Messages& messages, const PathCodec& codec)
    : engine_(std::move(engine)), view_(view), texts_(messages, codec) {}

void OperationPresenter::CarryOut(std::vector<ItemRequest> items, uint32_t flags) {
    if (items.empty()) return;
    if (!engine_) {
        view_.ShowSummary(texts_.SayOnly(kMsgNoJournalPlace));
        return;
    }
    const OperationKind kind = items.front().isMove ? OperationKind::kMove : OperationKind::kCopy;
    std::u16string folder =
        RemoveTrailingSeparatorKeepRoot(GetDirectoryPart(RemoveTrailingSeparatorKeepRoot(items.front().destination)));
    FileOperation operation(*engine_);
    operation.SetOperationFlags(flags);
    for (ItemRequest& item : items) {
        if (item.isMove) {
            operation.MoveItems(std::move(item.source), std::move(item.destination));
        } else {
            operation.CopyItems(std::move(item.source), std::move(item.destination));
        }
    }
    BatchResult result = Run(kind, [&](AskUserAction& asker, ProgressSink& progress, const CancelToken& cancel) {
        return operation.PerformOperations(&asker, &progress, &cancel);
    });
    // What stops a whole batch without the name of a file is its journal.
    if (result.status.path().empty()) {
        result.status = result.status.At(engine_->codec.PathToInner(engine_->journalFolder));
    }
    const bool canUndo = result.done > 0 && result.id != 0 && (flags & kFofAllowUndo) != 0;
    if (isEnding_) return;
    if (NeedsSummary(result)) {
        const OperationSummary summary = texts_.Summarize(kind, result, canUndo);
        if (view_.ShowSummary(summary) + 1 < summary.buttons.size()) Undo(result.id);
    } else if (canUndo) {
        undoable_ = Finished{kind, std::move(result), std::move(folder)};
    }
}

void OperationPresenter::OfferUndo() {
    if (!undoable_ || isEnding_) return;
    const Finished batch = std::move(*undoable_);
    undoable_.reset();
    if (view_.OfferUndo(texts_.Offer(batch.kind, batch.result, batch.folder))) Undo(batch.result.id);
}

void OperationPresenter::Undo(BatchId id) {
    UndoHistory history(*engine_);
    const BatchResult result =
        Run(OperationKind::kUndo, [&](AskUserAction&, ProgressSink& progress, const CancelToken& cancel) {
            return history.Undo(id, &progress, &cancel);
        });
    if (NeedsSummary(result) && !isEnding_) view_.ShowSummary(texts_.Summarize(OperationKind::kUndo, result, false));
}

void OperationPresenter::OfferRecovery() {
    // Nothing was ever sorted where there is no journal folder, and none is to be left behind.
    if (!engine_ || !engine_->sys.OpenFolder(engine_->journalFolder).ok()) return;
    UndoHistory history(*engine_);
    const Result<std::vector<BatchSummary>> batches = history.ListUnfinished();
    if (!batches.ok()) return;  // the next batch meets the same failure and says so
    // Newest first: what a later batch did stands on what an earlier one did.
    for (const BatchSummary& batch : *batches) {
        if (isEnding_) return;
        if (batch.state != BatchState::kUnfinished) continue;
        const size_t button = view_.AskButtons(texts_.AskRecovery(batch));
        if (button > 1) continue;
        const RecoverAction action = button == 0 ? RecoverAction::kFinish : RecoverAction::kUndo;
        Recover(history, batch, action);
    }
}

void OperationPresenter::Recover(UndoHistory& history, const BatchSummary& batch, RecoverAction action) {
    // To take back an undo is to do the batch again.
    const bool isUndo = (action == RecoverAction::kUndo) != batch.isUndoTorn;
    const OperationKind forward = batch.isUndoTorn ? OperationKind::kRedo
                                  : batch.isMove   ? OperationKind::kMove
                                                   : OperationKind::kCopy;
    const OperationKind kind = isUndo ? OperationKind::kUndo : forward;
    const BatchResult result = Run(kind, [&](AskUserAction&, ProgressSink& progress, const CancelToken& cancel) {
        return history.Recover(batch.id, action, &progress, &cancel);
    });
    // Of a batch that was interrupted before its first item nothing is left to do, and that is as it should be.
    if (!IsAsWished(result) && !isEnding_) view_.ShowSummary(texts_.Summarize(kind, result, false));
}

void OperationPresenter::CancelRunning() {
    isEnding_ = true;
    if (running_ != nullptr) running_->Cancel();
}

BatchResult OperationPresenter::Run(OperationKind kind, const Job& job) {
    Worker worker(view_, texts_, kind);
    running_ = &worker;
    BatchResult result = worker.Run(job);
    running_ = nullptr;
    return result;
}

}  // namespace kinsort
