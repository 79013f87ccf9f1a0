// What becomes of steps that did not work out: asked about, planned anew, put off, or failed for good.
#include <algorithm>

#include "fileop/JournalRecords.h"
#include "fileop/StepRunner.h"

namespace kinsort {

namespace {

// So often a step is tried anew: somebody who takes every new name as well wins in the end.
constexpr uint32_t kMostReplans = 16;

}  // namespace

void StepRunner::AskAboutFullVolume(Group& group) {
    for (Slot& slot : group) {
        if (slot.isSettled || !MeansFull(slot.result.status.code()) || resolver_ == nullptr || isCancelled_) continue;
        const std::u16string path = InnerPathOf(services_.codec, batch_.folders, batch_.steps[slot.index].target);
        switch (resolver_->ResolveFailure(path, slot.result.status)) {
            case FailureAnswer::kRetry:
                again_.push_back(slot.index);
                slot.isSettled = true;
                break;
            case FailureAnswer::kCancel:
                isCancelled_ = true;
                break;
            case FailureAnswer::kSkip:
                break;
        }
    }
}

void StepRunner::SettleFailure(Slot& slot) {
    const bool isPutOff = std::find(again_.begin(), again_.end(), slot.index) != again_.end();
    if (isPutOff || slot.result.reason == ItemReason::kCancelled) return;
    if (TryWithFewerOpen(slot) || TryReplan(slot)) return;
    StepState& state = batch_.states[slot.index];
    const bool isSkip =
        slot.result.reason == ItemReason::kConflictSkipped || slot.result.reason == ItemReason::kNotThereAnyMore;
    state.progress = isSkip ? StepProgress::kSkipped : StepProgress::kFailed;
    state.reason = slot.result.reason;
    state.status = slot.result.status;
    Count(slot);
}

bool StepRunner::TryWithFewerOpen(Slot& slot) {
    if (slot.result.status.code() != StatusCode::kTooManyOpen || replans_[slot.index]++ >= kMostReplans) return false;
    folders_.KeepFewOpen();
    StopPreparingAhead();
    batch_.states[slot.index] = {};
    again_.push_back(slot.index);
    return true;
}

bool StepRunner::TryReplan(Slot& slot) {
    const auto stepCount = static_cast<uint32_t>(batch_.steps.size());
    Replan decision = Replan::kFailed;
    if (replans_[slot.index]++ >= kMostReplans) return false;
    if (planner_ != nullptr && slot.result.reason == ItemReason::kTargetTaken &&
        batch_.steps[slot.index].kind != StepKind::kMakeFolder) {
        decision = planner_->ReplanTaken(slot.index);
    } else if (planner_ != nullptr && slot.result.status.code() == StatusCode::kCrossVolume &&
               IsMove(batch_.steps[slot.index].kind)) {
        decision = planner_->ReplanAsTransfer(slot.index);
    }
    switch (decision) {
        case Replan::kFailed:
            return false;
        case Replan::kSkipped:
            slot.result = {ItemReason::kConflictSkipped, {}};
            return false;
        case Replan::kCancelled:
            isCancelled_ = true;
            return true;
        case Replan::kAgain:
            break;
    }
    batch_.states[slot.index] = {};
    Rejournal(slot.index);
    for (uint32_t added = stepCount; added < batch_.steps.size(); ++added)
        Rejournal(added);
    again_.push_back(slot.index);
    return true;
}

void StepRunner::Rejournal(uint32_t index) {
    for (; journaledFolders_ < batch_.folders.size(); ++journaledFolders_) {
        journal_.Append(RecordType::kFolder, EncodeFolder(batch_.folders[journaledFolders_]));
    }
    journal_.Append(RecordType::kStep, EncodeStep(index, batch_.steps[index]));
    mustSyncJournal_ = true;
}

}  // namespace kinsort
