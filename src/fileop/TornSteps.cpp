#include "fileop/TornSteps.h"

#include <utility>

#include "fileop/FileContent.h"

namespace kinsort {

TornSteps::TornSteps(Sys& sys, Batch& batch, FolderTable& folders)
    : sys_(sys), batch_(batch), folders_(folders), actor_(sys, folders, batch, neverCancelled_) {}

Result<std::vector<uint32_t>> TornSteps::Settle() {
    std::vector<uint32_t> done;
    for (uint32_t i = 0; i < batch_.steps.size(); ++i) {
        StepState& state = batch_.states[i];
        // What the journal says is done was done, but a power cut can have taken names back since.
        if (state.progress == StepProgress::kFailed || state.progress == StepProgress::kSkipped) continue;
        const Finding finding = Probe(i);
        if (!failure_.ok()) return failure_;
        state.progress = finding == Finding::kDone ? StepProgress::kDone : StepProgress::kPending;
        if (finding == Finding::kDone) done.push_back(i);
    }
    folders_.CloseAll();
    return done;
}

TornSteps::Look TornSteps::LookAt(const Place& place) {
    Look look;
    auto folder = folders_.Open(place.folder);
    if (!folder.ok()) {
        look.info = folder.status();
        return look;
    }
    look.folder = std::move(*folder);
    look.info = sys_.StatAt(*look.folder, place.name);
    return look;
}

TornSteps::Finding TornSteps::Probe(uint32_t index) {
    const Step& step = batch_.steps[index];
    if (IsFolderStep(step.kind)) return ProbeFolder(index);
    if (IsReplace(step.kind)) RepairSwap(index);
    if (MakesContent(step.kind)) RemoveTemporary(index);
    if (IsMove(step.kind)) return ProbeMove(index);
    if (step.kind == StepKind::kRemoveCopy) {
        // Gone, or already followed by what it had replaced.
        const Look target = LookAt(step.target);
        const bool isThere =
            target.info.ok() ? step.targetId.IsSameFile(*target.info) : target.info.code() != StatusCode::kNotFound;
        return isThere ? Finding::kPending : Finding::kDone;
    }
    return ProbeContent(index);
}

TornSteps::Finding TornSteps::ProbeMove(uint32_t index) {
    const Step& step = batch_.steps[index];
    StepState& state = batch_.states[index];
    state.made = step.sourceId;
    const Look target = LookAt(step.target);
    const Look source = LookAt(step.source);
    if (target.info.ok() && step.sourceId.IsSameFile(*target.info)) {
        state.made = FileIdentity::Of(*target.info);
        // Both names, where a rename had to be made of a link and a removal.
        if (source.info.ok() && source.info->SameFile(*target.info) && step.sourceId.kind != FileKind::kFolder) {
            failure_ = sys_.RemoveFileAt(*source.folder, step.source.name);
        }
        return Finding::kDone;
    }
    if (!IsReplace(step.kind)) return Finding::kPending;
    const Look kept = LookAt({step.keptFolder, KeptName(index)});
    if (!kept.info.ok() || !step.sourceId.IsSameFile(*kept.info)) return Finding::kPending;
    if (source.info.ok()) {  // the same two names
        failure_ = sys_.RemoveFileAt(*source.folder, step.source.name);
        if (!failure_.ok()) return Finding::kPending;
    }
    // It left its place and is not at the new one: forward when that is still possible, else back.
    if (actor_.ExchangeWithKept(index, step.sourceId).ok()) return Finding::kDone;
    const auto from = folders_.Open(step.source.folder);
    failure_ =
        from.ok() ? sys_.RenameNoReplace(*kept.folder, KeptName(index), **from, step.source.name) : from.status();
    return Finding::kPending;
}

bool TornSteps::IsSameAsSource(const Step& step, const Look& there, const Place& place, const Look& source) {
    if (!source.info.ok() || source.info->kind != there.info->kind) return false;
    if (step.isHardLink) return source.info->SameFile(*there.info);
    if (there.info->kind == FileKind::kLink) {
        const Result<std::string> a = sys_.ReadLinkAt(*there.folder, place.name);
        const Result<std::string> b = sys_.ReadLinkAt(*source.folder, step.source.name);
        return a.ok() && b.ok() && *a == *b;
    }
    const Result<FileHandle> a = sys_.OpenForRead(*there.folder, place.name);
    const Result<FileHandle> b = sys_.OpenForRead(*source.folder, step.source.name);
    if (!a.ok() || !b.ok()) return false;
    const Result<bool> isSame = HaveSameContent(sys_, *a, *b, neverCancelled_);
    return isSame.ok() && *isSame;
}

TornSteps::Finding TornSteps::ProbeContent(uint32_t index) {
    const Step& step = batch_.steps[index];
    StepState& state = batch_.states[index];
    Look source = LookAt(step.source);
    // Another file at the source's place says nothing: the step after this one may have put it there.
    if (source.info.ok() && !step.sourceId.IsSameFile(*source.info))
        source.info = Status::Failure(StatusCode::kNotFound);
    if (IsReplace(step.kind)) {
        const Place keptPlace{step.keptFolder, KeptName(index)};
        const Look kept = LookAt(keptPlace);
        const bool isNewContent = kept.info.ok() && !step.targetId.IsSameFile(*kept.info);
        if (isNewContent) {
            state.made = FileIdentity::Of(*kept.info);
            const bool isWhole = IsSameAsSource(step, kept, keptPlace, source);
            if (!isWhole || !actor_.ExchangeWithKept(index, state.made).ok()) {
                failure_ = sys_.RemoveFileAt(*kept.folder, KeptName(index));
                return Finding::kPending;
            }
        }
    }
    const Look target = LookAt(step.target);
    if (!target.info.ok()) return Finding::kPending;
    const bool isOurs = state.made.IsSameFile(*target.info);
    const bool isTransfer = IsTransfer(step.kind);
    const bool isLinkLike = step.isHardLink || step.sourceId.kind == FileKind::kLink;
    if (!source.info.ok()) {
        // Without its source only an identity that was written down tells that this is the step's work.
        if (isOurs) state.made = FileIdentity::Of(*target.info);
        return isOurs ? Finding::kDone : Finding::kPending;
    }
    // Content that was durable before it got its name needs no second look.
    const bool isSafe = batch_.header.durability == Durability::kContent && state.made.IsUnchanged(*target.info);
    const bool isSame = isSafe || IsSameAsSource(step, target, step.target, source);
    if (!isSame) {
        if (isOurs) DropContent(index);
        return Finding::kPending;
    }
    if (!isOurs && !isTransfer && !isLinkLike) return Finding::kPending;
    state.made = FileIdentity::Of(*target.info);
    return isTransfer ? FinishTransfer(index, source) : Finding::kDone;
}

// The content is at both places: it is made durable at the new one before the old one goes.
TornSteps::Finding TornSteps::FinishTransfer(uint32_t index, const Look& source) {
    const Step& step = batch_.steps[index];
    const auto folder = folders_.Open(step.target.folder);
    failure_ = folder.ok() ? sys_.SyncVolume(**folder) : folder.status();
    if (!failure_.ok()) return Finding::kPending;
    const StepResult removed = actor_.RemoveSource(index, *source.info, batch_.states[index].made);
    return removed.ok() ? Finding::kDone : Finding::kPending;
}

// What a power cut left of a copy is not worth keeping: the source is there, and what was replaced comes back.
void TornSteps::DropContent(uint32_t index) {
    Look target = LookAt(batch_.steps[index].target);
    if (target.info.ok()) (void)actor_.TakeBack(index, FileIdentity::Of(*target.info));
}

TornSteps::Finding TornSteps::ProbeFolder(uint32_t index) {
    const Step& step = batch_.steps[index];
    const Look target = LookAt(step.target);
    if (step.kind == StepKind::kMakeFolder) PinAgain(step.target, target);
    if (step.kind == StepKind::kRemoveFolder) {
        return target.info.code() == StatusCode::kNotFound ? Finding::kDone : Finding::kPending;
    }
    if (step.kind != StepKind::kMakeFolder || !target.info.ok() || target.info->kind != FileKind::kFolder) {
        return Finding::kPending;
    }
    batch_.states[index].made = FileIdentity::Of(*target.info);
    return Finding::kDone;
}

// The folder that stands there now, or none, is the one that further steps go into.
void TornSteps::PinAgain(const Place& place, const Look& there) {
    for (uint32_t i = 0; i < batch_.folders.size(); ++i) {
        FolderRecord& folder = batch_.folders[i];
        if (folder.parent != place.folder || folder.name != place.name || folder.isKeep) continue;
        folder.inode = 0;
        if (there.info.ok() && there.info->kind == FileKind::kFolder) folders_.SetMade(i, *there.info);
    }
}

void TornSteps::RemoveTemporary(uint32_t index) {
    const auto folder = folders_.Open(batch_.steps[index].target.folder);
    if (folder.ok()) (void)sys_.RemoveFileAt(**folder, TemporaryName(batch_.header.id, index));
}

// A volume that cannot swap names is left with the replaced file set aside: it is put where the rest expects it.
void TornSteps::RepairSwap(uint32_t index) {
    const Step& step = batch_.steps[index];
    const Look aside = LookAt({step.keptFolder, SwapName(KeptName(index))});
    if (!aside.info.ok()) return;
    const Look kept = LookAt({step.keptFolder, KeptName(index)});
    const Look target = LookAt(step.target);
    if (!target.folder) return;
    Status moved;
    if (target.info.code() == StatusCode::kNotFound) {
        moved = sys_.RenameNoReplace(*aside.folder, SwapName(KeptName(index)), *target.folder, step.target.name);
    } else if (kept.info.code() == StatusCode::kNotFound) {
        moved = sys_.RenameNoReplace(*aside.folder, SwapName(KeptName(index)), *aside.folder, KeptName(index));
    }
    failure_ = moved;
}

}  // namespace kinsort
