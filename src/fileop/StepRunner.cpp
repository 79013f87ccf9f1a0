#include "fileop/StepRunner.h"

#include <algorithm>
#include <map>
#include <utility>

#include "fileop/FolderRuns.h"
#include "fileop/JournalRecords.h"
#include "fileop/Parallel.h"

namespace kinsort {

namespace {

// Up to this many files are made durable one by one; beyond, the volume as a whole is cheaper.
constexpr size_t kFewFiles = 4;
// A cancel lets the group's finished contents become visible when no more than this has to reach the disk for it.
constexpr uint64_t kQuickToSync = uint64_t{64} << 20;
// A larger file is not begun ahead of its turn: the group that is ready would have to wait for it.
constexpr uint64_t kQuickToCopy = uint64_t{64} << 20;

}  // namespace

StepRunner::StepRunner(const FileOperationServices& services, Batch& batch, FolderTable& folders, Journal& journal,
                       BatchPlanner* planner, ConflictResolver* resolver, ProgressMeter& meter,
                       const CancelToken& cancel, RunnerSettings settings)
    : services_(services),
      batch_(batch),
      folders_(folders),
      journal_(journal),
      planner_(planner),
      resolver_(resolver),
      meter_(meter),
      cancel_(cancel),
      settings_(settings),
      actor_(services.sys, folders, batch, cancel),
      journaledFolders_(batch.folders.size()),
      plannedSteps_(batch.steps.size()),
      preparesAhead_(settings.threads > 1) {}

Status StepRunner::Run() {
    meter_.SetPhase(BatchPhase::kRunning);
    Status done;
    while (done.ok() && !wasCancelled()) {
        Group group = TakeGroup();
        if (group.empty()) break;
        done = RunGroup(group);
    }
    DropAhead();
    if (!done.ok()) return done;
    Group owed = TakeOwed();
    return owed.empty() ? Status() : RunGroup(owed);
}

bool StepRunner::TakePending(uint32_t index, Group& group) const {
    if (batch_.states[index].progress != StepProgress::kPending) return false;
    group.emplace_back();
    group.back().index = index;
    return true;
}

// Second steps of pairs whose first is done: what a cancel or a crash came between.
StepRunner::Group StepRunner::TakeOwed() {
    Group group;
    for (uint32_t i = 1; i < batch_.steps.size(); ++i) {
        const bool isFirstDone = batch_.states[i - 1].progress == StepProgress::kDone;
        if (batch_.steps[i].dependsOnPrevious && isFirstDone) TakePending(i, group);
    }
    return group;
}

StepRunner::Group StepRunner::TakeGroup() {
    Group group;
    for (; !again_.empty() && group.size() < settings_.groupSize; again_.pop_front())
        TakePending(again_.front(), group);
    // What was put off may be what the rest depends on.
    if (!group.empty()) return group;
    group = ahead_.empty() ? TakeNextPlanned() : std::exchange(ahead_, {});
    if (!group.empty()) return group;
    const auto depthOf = [this](uint32_t index) {
        const std::string path = StoredPathOf(batch_.folders, batch_.steps[index].target.folder);
        return std::count(path.begin(), path.end(), '/');
    };
    // Inner folders first: an outer one is empty only then.
    std::stable_sort(finishLast_.begin(), finishLast_.end(),
                     [&](uint32_t a, uint32_t b) { return depthOf(a) > depthOf(b); });
    for (const uint32_t index : std::exchange(finishLast_, {}))
        TakePending(index, group);
    return group;
}

StepRunner::Group StepRunner::TakeNextPlanned() {
    Group group;
    group.reserve(std::min(settings_.groupSize, batch_.steps.size() - next_));
    uint64_t bytes = 0;
    for (; next_ < batch_.steps.size() && group.size() < settings_.groupSize && bytes < settings_.groupBytes; ++next_) {
        const Step& step = batch_.steps[next_];
        if (TakePending(next_, group) && MakesContent(step.kind)) bytes += step.sourceId.size;
    }
    // A step and those that depend on it stay together.
    for (; next_ < batch_.steps.size() && batch_.steps[next_].dependsOnPrevious; ++next_)
        TakePending(next_, group);
    return group;
}

Status StepRunner::RunGroup(Group& group) {
    folders_.CloseAll();  // each group looks anew whether the folders are still those that were chosen
    isAheadDoubtful_ = false;
    MakeFolders(group);
    PrepareAll(group);
    AskAboutFullVolume(group);
    DropWhenCancelled(group);
    if (Status recorded = MakeSafe(group); !recorded.ok()) {
        for (Slot& slot : group)
            actor_.Discard(slot.index, slot.content);
        return recorded;
    }
    PublishAll(group);
    if (Status recorded = FinishTransfers(group); !recorded.ok()) return recorded;
    if (isAheadDoubtful_) DropAhead();  // it is copied anew at its turn
    for (Slot& slot : group) {
        if (!slot.result.ok()) SettleFailure(slot);
    }
    FinishFolders(group);
    return RecordOutcome(group);
}

Status StepRunner::MakeSafe(Group& group) {
    const auto makeSafe = [&] {
        SyncContents(group, batch_.header.durability == Durability::kJournal);
        return RecordPrepared(group);
    };
    if (!preparesAhead_ || !HoldsOpen(group) || wasCancelled()) return makeSafe();
    if (ahead_.empty()) ahead_ = TakeNextPlanned();
    if (ahead_.empty()) return makeSafe();
    Status safe;
    {
        std::atomic<bool> isSafe = false;
        const std::jthread beside([&] {  // waits for the disk, so that it takes no processor from the others
            safe = makeSafe();
            isSafe = true;
        });
        PrepareAhead(isSafe);
    }
    return safe;
}

void StepRunner::PrepareAhead(const std::atomic<bool>& isSafe) {
    ForEach(ahead_, [&](Slot& slot) {
        if (isSafe || cancel_.isCancelled()) return;  // nobody waits for more
        const Step& step = batch_.steps[slot.index];
        const bool isContent = MakesContent(step.kind) && step.sourceId.kind == FileKind::kFile && !step.isHardLink;
        const bool hasFolder = batch_.folders[step.target.folder].inode != 0;
        const bool isQuick = step.sourceId.size <= kQuickToCopy;
        if (!isContent || !hasFolder || !isQuick || step.dependsOnPrevious || slot.content.file.isOpen()) return;
        FileIdentity& made = batch_.states[slot.index].made;
        slot.result = actor_.Prepare(
            slot.index, [](uint64_t) {}, slot.content, made);
    });
    const bool isShort = RanShort(ahead_);
    for (Slot& slot : ahead_)
        slot.result = {};  // the group's own turn tells whether it is a failure
    if (isShort) StopPreparingAhead();
}

void StepRunner::DropAhead() {
    for (Slot& slot : ahead_)
        actor_.Discard(slot.index, slot.content);
}

void StepRunner::StopPreparingAhead() {
    preparesAhead_ = false;
    DropAhead();
}

bool StepRunner::RanShort(const Group& group) {
    return std::any_of(group.begin(), group.end(), [](const Slot& slot) {
        return slot.result.status.code() == StatusCode::kTooManyOpen || MeansFull(slot.result.status.code());
    });
}

bool StepRunner::HoldsOpen(const Group& group) {
    return std::any_of(group.begin(), group.end(), [](const Slot& slot) { return slot.content.file.isOpen(); });
}

void StepRunner::MakeFolders(Group& group) {
    for (Slot& slot : group) {
        const StepKind kind = batch_.steps[slot.index].kind;
        if (kind != StepKind::kMakeFolder && kind != StepKind::kOpenFolder) continue;
        slot.result = actor_.ActOnFolder(slot.index, batch_.states[slot.index].made);
        Settle(slot);
    }
}

void StepRunner::PrepareAll(Group& group) {
    ForEach(group, [this](Slot& slot) {
        const Step& step = batch_.steps[slot.index];
        if (slot.content.file.isOpen()) {  // ahead of its turn
            meter_.AddBytes(slot.content.source.size);
            Count(slot);
        } else if (step.dependsOnPrevious || cancel_.isCancelled()) {
            return;
        } else if (MakesContent(step.kind)) {
            const auto countBytes = [this](uint64_t bytes) { meter_.AddBytes(bytes); };
            slot.result = actor_.Prepare(slot.index, countBytes, slot.content, batch_.states[slot.index].made);
            if (slot.result.ok()) Count(slot);  // what is left for it is quick
        } else if (step.kind == StepKind::kRemoveCopy) {
            slot.result = actor_.VerifyRemoval(slot.index);
        }
    });
    // Without descriptors left the rest of the group waits until this part of it is done and closed.
    const bool hasAhead = HoldsOpen(ahead_);
    const bool hasAny = HoldsOpen(group) || hasAhead;
    if (RanShort(group)) StopPreparingAhead();
    for (Slot& slot : group) {
        if (slot.result.ok()) continue;
        const StatusCode code = slot.result.status.code();
        if ((code == StatusCode::kTooManyOpen && hasAny) || (MeansFull(code) && hasAhead)) {
            again_.push_back(slot.index);
            slot.isSettled = true;
        } else if (slot.result.reason == ItemReason::kCancelled) {
            slot.isSettled = true;  // stays pending
        }
    }
}

void StepRunner::DropWhenCancelled(Group& group) {
    if (!cancel_.isCancelled()) return;
    uint64_t bytes = 0;
    for (const Slot& slot : group)
        bytes += slot.content.file.isOpen() ? slot.content.source.size : 0;
    const bool dropAll = bytes > kQuickToSync;
    for (Slot& slot : group) {
        if (slot.isSettled || !slot.result.ok() || batch_.steps[slot.index].dependsOnPrevious) continue;
        if (!dropAll && slot.content.file.isOpen()) continue;
        actor_.Discard(slot.index, slot.content);
        slot.isSettled = true;  // stays pending: not reached
    }
}

void StepRunner::SyncContents(Group& group, bool onlyTransfers) {
    std::map<uint64_t, std::vector<Slot*>> byVolume;
    for (Slot& slot : group) {
        const Step& step = batch_.steps[slot.index];
        if (slot.isSettled || !slot.result.ok() || !slot.content.file.isOpen()) continue;
        if (onlyTransfers && !IsTransfer(step.kind)) continue;
        byVolume[batch_.folders[step.target.folder].device].push_back(&slot);
    }
    for (auto& [device, slots] : byVolume) {
        meter_.SetPhase(BatchPhase::kSyncing);
        if (slots.size() > kFewFiles) {
            SyncVolumeOf(batch_.steps[slots.front()->index].target.folder, slots);
            continue;
        }
        for (Slot* slot : slots) {
            if (Status synced = services_.sys.Sync(slot->content.file); !synced.ok()) {
                slot->result = {ItemReason::kSystem, synced};
            }
        }
    }
    meter_.SetPhase(BatchPhase::kRunning);
}

void StepRunner::SyncVolumeOf(uint32_t folder, const std::vector<Slot*>& slots) {
    const auto opened = folders_.Open(folder);
    const Status synced = opened.ok() ? services_.sys.SyncVolume(**opened) : opened.status();
    if (synced.ok()) return;
    isAheadDoubtful_ = true;  // the system tells of a failure once
    for (Slot* slot : slots)
        slot->result = {ItemReason::kSystem, synced};
}

Status StepRunner::RecordPrepared(const Group& group) {
    std::vector<uint32_t> prepared;
    bool hasCopies = false;
    for (const Slot& slot : group) {
        if (slot.isSettled || !slot.result.ok() || !slot.content.file.isOpen()) continue;
        prepared.push_back(slot.index);
        // A transfer needs no sync here: its source still tells whether what stands at the target is complete.
        hasCopies |= IsCopy(batch_.steps[slot.index].kind) || IsReplace(batch_.steps[slot.index].kind);
    }
    if (!prepared.empty()) journal_.Append(RecordType::kPrepared, EncodeProgress(prepared, batch_.states));
    isPreparedDurable_ = hasCopies || mustSyncJournal_;
    mustSyncJournal_ = false;
    return isPreparedDurable_ ? journal_.Sync() : Status();
}

void StepRunner::PublishAll(Group& group) {
    ForEach(group, [this](Slot& slot) {
        const Step& step = batch_.steps[slot.index];
        if (IsFolderStep(step.kind) || step.dependsOnPrevious) return;
        FileIdentity& made = batch_.states[slot.index].made;
        if (slot.result.ok() && IsMove(step.kind)) slot.result = actor_.VerifyMove(slot.index, made);
        if (slot.result.ok()) slot.result = actor_.Publish(slot.index, slot.content, made);
        if (!slot.result.ok()) actor_.Discard(slot.index, slot.content);
        if (!IsTransfer(step.kind) || !slot.result.ok()) Settle(slot);
    });
}

Status StepRunner::FinishTransfers(Group& group) {
    std::map<uint64_t, std::vector<Slot*>> byVolume;
    for (Slot& slot : group) {
        const Step& step = batch_.steps[slot.index];
        if (slot.isSettled || !slot.result.ok() || !IsTransfer(step.kind) || step.dependsOnPrevious) continue;
        byVolume[batch_.folders[step.target.folder].device].push_back(&slot);
    }
    if (byVolume.empty()) return {};
    // The names must be safe, and the journal must say so, before the only other copies go.
    for (auto& [device, slots] : byVolume)
        SyncVolumeOf(batch_.steps[slots.front()->index].target.folder, slots);
    std::vector<uint32_t> copied;
    bool isKnown = isPreparedDurable_;  // the journal holds the identity of each new file already
    for (auto& [device, slots] : byVolume) {
        for (const Slot* slot : slots) {
            if (!slot->result.ok()) continue;
            copied.push_back(slot->index);
            isKnown &= batch_.steps[slot->index].sourceId.kind == FileKind::kFile;
        }
    }
    std::sort(copied.begin(), copied.end());
    journal_.Append(RecordType::kCopied, EncodeProgress(copied, batch_.states));
    if (Status synced = isKnown ? journal_.Flush() : journal_.Sync(); !synced.ok()) return synced;
    ForEach(group, [this](Slot& slot) {
        const Step& step = batch_.steps[slot.index];
        if (!IsTransfer(step.kind) || step.dependsOnPrevious) return;
        const FileIdentity& made = batch_.states[slot.index].made;
        if (slot.result.ok()) {
            slot.result = actor_.RemoveSource(slot.index, slot.content.source, made);
        } else if (StepResult back = actor_.TakeBack(slot.index, made); !back.ok()) {
            slot.result = back;
        }
        Settle(slot);
    });
    return {};
}

void StepRunner::FinishFolders(Group& group) {
    for (Slot& slot : group) {
        const Step& step = batch_.steps[slot.index];
        // Only what belongs to a step that is done already is still done after a cancel: no item is left half-way.
        const bool isOwed = step.dependsOnPrevious && batch_.states[slot.index - 1].progress == StepProgress::kDone;
        if (slot.isSettled || (wasCancelled() && !isOwed)) continue;
        const bool isLast = next_ == batch_.steps.size() && ahead_.empty();
        const bool hasNewSteps = !isLast && batch_.steps.size() > plannedSteps_;
        if (IsFolderStep(step.kind) && (!again_.empty() || hasNewSteps)) {
            finishLast_.push_back(slot.index);
            continue;
        }
        if (step.dependsOnPrevious) {
            const StepProgress before = batch_.states[slot.index - 1].progress;
            if (before == StepProgress::kPending) {
                again_.push_back(slot.index);  // what it depends on was put off
                continue;
            }
            if (before == StepProgress::kDone) {
                slot.result = actor_.VerifyMove(slot.index, batch_.states[slot.index].made);
                if (slot.result.ok())
                    slot.result = actor_.Publish(slot.index, slot.content, batch_.states[slot.index].made);
            } else {
                slot.result = {batch_.states[slot.index - 1].reason, batch_.states[slot.index - 1].status};
            }
        } else if (step.kind == StepKind::kFinishFolder || step.kind == StepKind::kRemoveFolder) {
            slot.result = actor_.ActOnFolder(slot.index, batch_.states[slot.index].made);
        }
        Settle(slot);
        if (!slot.result.ok()) SettleFailure(slot);
    }
}

void StepRunner::Settle(Slot& slot) {
    slot.isSettled = true;
    if (!slot.result.ok()) return;  // SettleFailure looks at these, one at a time
    batch_.states[slot.index].progress = StepProgress::kDone;
    Count(slot);
}

void StepRunner::Count(Slot& slot) {
    if (slot.isCounted || IsFolderStep(batch_.steps[slot.index].kind)) return;
    slot.isCounted = true;
    meter_.AddItems(1);
}

Status StepRunner::RecordOutcome(Group& group) {
    std::vector<uint32_t> done;
    std::vector<uint32_t> failed;
    for (Slot& slot : group) {
        const StepState& state = batch_.states[slot.index];
        if (state.progress == StepProgress::kDone) done.push_back(slot.index);
        if (state.progress == StepProgress::kFailed || state.progress == StepProgress::kSkipped)
            failed.push_back(slot.index);
    }
    if (!done.empty()) journal_.Append(RecordType::kDone, EncodeProgress(done, batch_.states));
    if (!failed.empty()) journal_.Append(RecordType::kFailed, EncodeFailed(failed, batch_.states));
    return journal_.Flush();
}

void StepRunner::ForEach(Group& group, const std::function<void(Slot&)>& work) {
    std::vector<Slot*> open;
    std::vector<uint32_t> indices;
    for (Slot& slot : group) {
        if (slot.isSettled) continue;
        open.push_back(&slot);
        indices.push_back(slot.index);
    }
    const std::vector<std::vector<size_t>> runs = SplitByFolder(batch_.steps, indices);
    const auto workOff = [&](size_t run, bool isCaller) {
        for (const size_t position : runs[run]) {
            work(*open[position]);
            if (isCaller) Tick(group);
        }
    };
    ForEachParallel(runs.size(), settings_.threads, workOff, 1);
}

void StepRunner::Tick(const Group& group) {
    meter_.Tick([&] { return NameOf(group.front().index); });
}

std::u16string StepRunner::NameOf(uint32_t index) const {
    return services_.codec.NameToInner(batch_.steps[index].source.name);
}

}  // namespace kinsort
