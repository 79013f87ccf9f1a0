#include "fileop/BatchSession.h"

#include <set>
#include <utility>

#include "fileop/JournalRecords.h"

namespace kinsort {

namespace {

// Room for the marks of one step: prepared, copied, done or failed.
constexpr uint64_t kMarkBytes = 160;

}  // namespace

BatchSession::BatchSession(const FileOperationServices& services, JournalStore& store, Batch& batch,
                           FolderTable& folders, Journal& journal, ProgressMeter& meter)
    : services_(services), store_(store), batch_(batch), folders_(folders), journal_(journal), meter_(meter) {}

Status BatchSession::StorePlan() {
    journal_.Append(RecordType::kBegin, EncodeBegin(batch_.header));
    for (const FolderRecord& folder : batch_.folders)
        journal_.Append(RecordType::kFolder, EncodeFolder(folder));
    for (const BatchItem& item : batch_.items)
        journal_.Append(RecordType::kItem, EncodeItem(item));
    for (uint32_t i = 0; i < batch_.steps.size(); ++i)
        journal_.Append(RecordType::kStep, EncodeStep(i, batch_.steps[i]));
    journal_.Append(RecordType::kPlanned, EncodePlanned(batch_));
    batch_.isPlanned = true;
    if (Status reserved = journal_.Reserve(kMarkBytes * batch_.steps.size()); !reserved.ok()) return reserved;
    if (Status synced = journal_.Sync(); !synced.ok()) return synced;
    return store_.SyncNames();
}

Status BatchSession::Run(BatchPlanner* planner, ConflictResolver* resolver, const CancelToken& cancel,
                         unsigned threads) {
    uint64_t items = 0;
    uint64_t bytes = 0;
    for (const Step& step : batch_.steps) {
        if (IsFolderStep(step.kind)) continue;
        ++items;
        if (MakesContent(step.kind) && step.sourceId.kind == FileKind::kFile) bytes += step.sourceId.size;
    }
    meter_.SetTotals(items, bytes);
    RunnerSettings settings;
    settings.threads = threads;
    StepRunner runner(services_, batch_, folders_, journal_, planner, resolver, meter_, cancel, settings);
    Status status = runner.Run();
    lostAttributes_ = runner.lostAttributes();
    batch_.isCancelled = runner.wasCancelled();
    if (status.ok()) status = SyncTargets();
    if (status.ok()) {
        RemoveEmptyKeepFolders();
        NoteFolderTimes();
        journal_.Append(RecordType::kFolderTimes, EncodeFolderTimes(batch_.folders));
        journal_.Append(RecordType::kEnd, EncodeEnd({batch_.isCancelled}));
        status = journal_.Flush();
        batch_.isEnded = status.ok();
    }
    folders_.CloseAll();
    meter_.ReportEnd();
    return status;
}

// With content durability a batch that ended has ended for good: its names survive a power cut too.
Status BatchSession::SyncTargets() {
    if (batch_.header.durability != Durability::kContent) return {};
    meter_.SetPhase(BatchPhase::kSyncing);
    // The marks so far become durable with the volume, so that damage among them can be told for what it is.
    if (Status flushed = journal_.Flush(); !flushed.ok()) return flushed;
    std::set<uint64_t> synced;
    const auto syncVolumeOf = [&](uint32_t folder) -> Status {
        if (synced.contains(batch_.folders[folder].device)) return {};
        const auto opened = folders_.Open(folder);
        if (!opened.ok()) return {};  // gone again; another folder of the volume will do
        if (Status status = services_.sys.SyncVolume(**opened); !status.ok()) return status;
        synced.insert(batch_.folders[folder].device);
        return {};
    };
    for (size_t i = 0; i < batch_.steps.size(); ++i) {
        if (batch_.states[i].progress != StepProgress::kDone) continue;
        const Step& step = batch_.steps[i];
        // A transfer's target was made durable before its source was removed: what is left is that removal.
        if (Status status = syncVolumeOf(IsTransfer(step.kind) ? step.source.folder : step.target.folder);
            !status.ok()) {
            return status;
        }
    }
    const Result<FileInfo> journals = services_.sys.Stat(store_.folder());
    if (!journals.ok() || !synced.contains(journals->device)) return journal_.Sync();
    journal_.NoteVolumeSynced();
    return {};
}

void BatchSession::RemoveEmptyKeepFolders() {
    for (const FolderRecord& folder : batch_.folders) {
        if (!folder.isKeep || folder.inode == 0) continue;
        if (const auto parent = folders_.Open(folder.parent); parent.ok()) {
            (void)services_.sys.RemoveFolderAt(**parent, folder.name);  // kNotEmpty is the usual answer
        }
    }
}

void BatchSession::NoteFolderTimes() {
    for (uint32_t i = 0; i < batch_.folders.size(); ++i) {
        if (batch_.folders[i].isKeep) continue;
        const auto opened = folders_.Open(i);
        if (!opened.ok()) continue;
        const Result<FileInfo> info = services_.sys.Stat(**opened);
        if (info.ok()) batch_.folders[i].modifiedAfterNs = info->modifiedNs;
    }
}

namespace {

// What the steps of one item add up to.
struct ItemTally {
    bool hasSteps = false;
    bool isPending = false;
    uint32_t worst = kNoIndex;  // the first failed step, else the first skipped one
    uint32_t first = kNoIndex;
    bool hasFailed = false;
};

std::vector<ItemTally> TallyItems(const Batch& batch) {
    std::vector<ItemTally> tallies(batch.items.size());
    for (uint32_t i = 0; i < batch.steps.size(); ++i) {
        ItemTally& tally = tallies[batch.steps[i].item];
        const StepProgress progress = batch.states[i].progress;
        tally.hasSteps = true;
        if (tally.first == kNoIndex) tally.first = i;
        const bool isFailed = progress == StepProgress::kFailed;
        if (isFailed && !tally.hasFailed) {
            tally.hasFailed = true;
            tally.worst = i;
        }
        if (progress == StepProgress::kSkipped && tally.worst == kNoIndex) tally.worst = i;
        tally.isPending |= progress != StepProgress::kDone && progress != StepProgress::kSkipped && !isFailed;
    }
    return tallies;
}

// How an item that was planned fared.
ItemReport ReportOf(const Batch& batch, const ItemTally& tally) {
    ItemReport report;
    report.outcome = tally.hasFailed           ? ItemOutcome::kFailed
                     : tally.isPending         ? ItemOutcome::kNotReached
                     : tally.worst != kNoIndex ? ItemOutcome::kSkipped
                     : tally.hasSteps          ? ItemOutcome::kDone
                                               : ItemOutcome::kNotReached;
    if (tally.worst != kNoIndex) {
        report.reason = batch.states[tally.worst].reason;
        report.status = batch.states[tally.worst].status;
    } else if (tally.isPending) {
        report.reason = batch.isCancelled ? ItemReason::kCancelled : ItemReason::kNone;
    }
    return report;
}

uint64_t& CountOf(ItemOutcome outcome, BatchResult& result) {
    switch (outcome) {
        case ItemOutcome::kDone:
            return result.done;
        case ItemOutcome::kSkipped:
            return result.skipped;
        case ItemOutcome::kFailed:
            return result.failed;
        case ItemOutcome::kNotReached:
            break;
    }
    return result.notReached;
}

}  // namespace

void SummarizeItems(const Batch& batch, const PathCodec& codec, const BatchPlanner* planner, BatchResult& result) {
    const std::vector<ItemTally> tallies = TallyItems(batch);
    for (size_t i = 0; i < batch.items.size(); ++i) {
        const ItemTally& tally = tallies[i];
        if (planner == nullptr && !tally.hasSteps) continue;  // refused when it was planned, and told then
        const ItemReport* const refusal = planner == nullptr ? nullptr : planner->refusal(i);
        ItemReport report = refusal != nullptr ? *refusal : ReportOf(batch, tally);
        ++CountOf(report.outcome, result);
        if (report.outcome == ItemOutcome::kDone) continue;
        report.item = i;
        if (const uint32_t step = tally.worst != kNoIndex ? tally.worst : tally.first; step != kNoIndex) {
            report.source = InnerPathOf(codec, batch.folders, batch.steps[step].source);
            report.target = InnerPathOf(codec, batch.folders, batch.steps[step].target);
        } else if (batch.items[i].source.folder != kNoIndex) {
            report.source = InnerPathOf(codec, batch.folders, batch.items[i].source);
        }
        result.reports.push_back(std::move(report));
    }
}

}  // namespace kinsort
