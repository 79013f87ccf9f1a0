#include "fileop/UndoHistory.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "fileop/BatchChain.h"
#include "fileop/BatchSession.h"
#include "fileop/JournalRecords.h"
#include "fileop/TornSteps.h"

namespace kinsort {

namespace {

const CancelToken kNeverCancelled;
constexpr unsigned kThreads = OperationPolicy().threads;

BatchResult Refused(Status status) {
    BatchResult result;
    result.status = std::move(status);
    return result;
}

// Puts the modification times of folders back to what they were before a sort: those that nobody changed between the
// sort and its undo.
class FolderTimes {
  public:
    FolderTimes(Sys& sys, const Batch& sort) : sys_(sys), sort_(sort), folders_(sys, copy_.folders) {
        copy_.folders = sort.folders;
        for (uint32_t i = 0; i < sort.folders.size(); ++i) {
            const FolderRecord& folder = sort.folders[i];
            if (folder.isKeep || folder.inode == 0 || folder.modifiedAfterNs == 0) continue;
            const auto opened = folders_.Open(i);
            const Result<FileInfo> info = opened.ok() ? sys_.Stat(**opened) : Result<FileInfo>(opened.status());
            if (info.ok() && info->modifiedNs == folder.modifiedAfterNs) untouched_.push_back(i);
        }
        folders_.CloseAll();
    }

    void PutBack() {
        for (const uint32_t i : untouched_) {
            const auto opened = folders_.Open(i);
            const Result<FileInfo> info = opened.ok() ? sys_.Stat(**opened) : Result<FileInfo>(opened.status());
            if (info.ok()) (void)sys_.SetTimes(**opened, info->accessedNs, sort_.folders[i].modifiedNs);
        }
    }

  private:
    Sys& sys_;
    const Batch& sort_;
    Batch copy_;
    FolderTable folders_;
    std::vector<uint32_t> untouched_;
};

// Everything that acts on a chain of batches while it holds the chain's lock: that of the sort's journal.
class ChainWork {
  public:
    explicit ChainWork(const FileOperationServices& services)
        : services_(services), store_(services.sys, services.journalFolder) {}

    Status Begin(BatchId root) {
        if (Status opened = store_.Open(); !opened.ok()) return opened;
        Result<FileHandle> lock = store_.Lock(root);
        if (!lock.ok()) return lock.status();
        lock_ = std::move(*lock);
        return Reload(root);
    }

    Status Reload(BatchId root) {
        Result<BatchChain> chain = BatchChain::Load(store_, root, services_.sys.BootId());
        if (!chain.ok()) return chain.status();
        chain_.emplace(std::move(*chain));
        return chain_->CheckTrust();
    }

    const BatchChain& chain() const { return *chain_; }

    // Forgets the chain when nothing that it did stands: there is nothing to undo or redo any more.
    Status ForgetIfVoid() {
        if (chain_->CountStanding(BatchKind::kSort) + chain_->CountStanding(BatchKind::kUndo) > 0) return {};
        return ForgetChain(services_.sys, store_, *chain_);
    }

    BatchResult TurnBack(BatchKind kind, ProgressSink* progress, const CancelToken& cancel);
    BatchResult Finish(const LoadedBatch& torn, bool onlySettle, ProgressSink* progress, const CancelToken& cancel);

  private:
    Result<Journal> TakeJournal(const LoadedBatch& torn);

    const FileOperationServices& services_;
    JournalStore store_;
    FileHandle lock_;
    std::optional<BatchChain> chain_;
};

BatchResult ChainWork::TurnBack(BatchKind kind, ProgressSink* progress, const CancelToken& cancel) {
    if (chain_->Unfinished() != nullptr ||
        chain_->CountStanding(kind == BatchKind::kUndo ? BatchKind::kSort : BatchKind::kUndo) == 0) {
        return Refused(Status::Failure(StatusCode::kInvalid));
    }
    Result<NewJournal> created = store_.Create();
    if (!created.ok()) return Refused(created.status());
    BatchHeader header = chain_->sort().header;
    header.kind = kind;
    header.id = created->id;
    header.startedNs = services_.clock.WallNanoseconds();
    header.bootId = services_.sys.BootId();
    Batch batch = chain_->Invert(header);
    FolderTable folders(services_.sys, batch.folders);
    for (uint32_t i = 0; i < batch.folders.size(); ++i) {
        // Brings device numbers of an earlier boot up to date; a folder that is gone fails its steps later.
        if (batch.folders[i].isOtherBoot && batch.folders[i].inode != 0) (void)folders.Open(i);
    }
    FolderTimes times(services_.sys, chain_->newestForward());
    ProgressMeter meter(services_.clock, progress);
    BatchSession session(services_, store_, batch, folders, created->journal, meter);
    BatchResult result;
    if (result.status = session.StorePlan(); !result.status.ok()) {
        (void)store_.Remove(created->id);
        return result;
    }
    result.id = chain_->sort().header.id;
    result.status = session.Run(nullptr, nullptr, cancel, kThreads);
    result.cancelled = batch.isCancelled;
    result.journalSyncs = created->journal.syncs();
    SummarizeItems(batch, services_.codec, nullptr, result);
    const bool isWhole = result.failed == 0 && result.skipped == 0 && result.notReached == 0;
    if (kind == BatchKind::kUndo && isWhole) times.PutBack();
    return result;
}

Result<Journal> ChainWork::TakeJournal(const LoadedBatch& torn) {
    const BatchId id = torn.batch.header.id;
    Result<FileHandle> file = id == chain_->sort().header.id ? Result<FileHandle>(std::move(lock_)) : store_.Lock(id);
    if (!file.ok()) return file.status();
    return store_.Continue(std::move(*file), torn);
}

BatchResult ChainWork::Finish(const LoadedBatch& torn, bool onlySettle, ProgressSink* progress,
                              const CancelToken& cancel) {
    Result<Journal> journal = TakeJournal(torn);
    if (!journal.ok()) return Refused(journal.status());
    BatchResult result;
    Batch batch = torn.batch;
    result.id = chain_->sort().header.id;
    FolderTable folders(services_.sys, batch.folders);
    ProgressMeter meter(services_.clock, progress);
    TornSteps tornSteps(services_.sys, batch, folders);
    const Result<std::vector<uint32_t>> settled = tornSteps.Settle();
    if (!settled.ok()) {
        result.status = settled.status();
        return result;
    }
    if (!settled->empty()) journal->Append(RecordType::kDone, EncodeProgress(*settled, batch.states));
    // The identity of a file that was half-way is known only now, and what follows builds on it.
    if (result.status = journal->Sync(); !result.status.ok()) return result;
    CancelToken stopAtOnce;
    if (onlySettle) stopAtOnce.Cancel();
    BatchSession session(services_, store_, batch, folders, *journal, meter);
    result.status = session.Run(nullptr, nullptr, onlySettle ? stopAtOnce : cancel, kThreads);
    result.cancelled = batch.isCancelled && !onlySettle;
    result.journalSyncs = journal->syncs();
    SummarizeItems(batch, services_.codec, nullptr, result);
    return result;
}

uint64_t CountItems(const Batch& batch, StepProgress progress) {
    std::vector<bool> has(batch.items.size());
    for (size_t i = 0; i < batch.steps.size(); ++i) {
        if (batch.states[i].progress == progress) has[batch.steps[i].item] = true;
    }
    return static_cast<uint64_t>(std::count(has.begin(), has.end(), true));
}

BatchSummary SummaryOf(const BatchChain& chain, const PathCodec& codec) {
    const Batch& sort = chain.sort();
    BatchSummary summary;
    summary.id = sort.header.id;
    summary.startedNs = sort.header.startedNs;
    summary.cancelled = sort.isCancelled;
    summary.isMove =
        std::any_of(sort.items.begin(), sort.items.end(), [](const BatchItem& item) { return item.isMove; });
    summary.done = CountItems(sort, StepProgress::kDone);
    summary.failed = CountItems(sort, StepProgress::kFailed);
    summary.skipped = CountItems(sort, StepProgress::kSkipped);
    if (!sort.items.empty()) {
        const BatchItem& first = sort.items.front();
        summary.firstItem = codec.NameToInner(first.source.name);
        if (first.destination != kNoIndex) {
            std::u16string folder = InnerPathOf(codec, sort.folders, {first.destination, {}});
            const size_t separator = folder.find_last_of(u'\\');
            summary.searchFolder = separator == std::u16string::npos ? folder : folder.substr(0, separator);
        }
    }
    return summary;
}

}  // namespace

UndoHistory::UndoHistory(FileOperationServices services) : services_(std::move(services)) {}

Result<std::vector<BatchSummary>> UndoHistory::List() {
    JournalStore store(services_.sys, services_.journalFolder);
    if (Status opened = store.Open(); !opened.ok()) return opened;
    const Result<std::vector<BatchId>> ids = store.List();
    if (!ids.ok()) return ids.status();
    std::map<BatchId, std::vector<LoadedBatch>> chains;
    std::vector<BatchSummary> summaries;
    for (const BatchId id : *ids) {
        Result<LoadedBatch> loaded = store.Load(id);
        if (!loaded.ok() && loaded.code() == StatusCode::kNotFound) continue;  // forgotten meanwhile
        if (!loaded.ok() || !loaded->isTrusted()) {
            BatchSummary summary;
            summary.id = id;
            const bool isTooNew = loaded.ok() && loaded->verdict == ScanVerdict::kTooNew;
            summary.state = isTooNew ? BatchState::kForeign : BatchState::kDamaged;
            summaries.push_back(summary);
            continue;
        }
        if (!loaded->batch.isPlanned) continue;  // never began
        chains[loaded->batch.header.root].push_back(std::move(*loaded));
    }
    for (auto& [root, batches] : chains) {
        if (batches.front().batch.header.id != root) continue;  // its sort cannot be read: shown as damaged above
        const BatchChain chain(std::move(batches));
        if (!chain.sort().header.keepForUndo && chain.Unfinished() == nullptr) continue;
        BatchSummary summary = SummaryOf(chain, services_.codec);
        if (chain.Unfinished() != nullptr) {
            const bool isLocked = store.Lock(root).code() == StatusCode::kLocked;
            summary.state = isLocked ? BatchState::kRunning : BatchState::kUnfinished;
            summary.isUndoTorn = chain.Unfinished()->batch.header.kind == BatchKind::kUndo;
        } else if (chain.CountStanding(BatchKind::kSort) == 0 && chain.CountStanding(BatchKind::kUndo) > 0) {
            summary.state = BatchState::kUndone;
        }
        summary.undone = chain.CountUndoneItems();
        summary.canUndo = chain.CountStanding(BatchKind::kSort) > 0 && summary.state == BatchState::kDone;
        summary.canRedo = chain.CountStanding(BatchKind::kUndo) > 0 && chain.Unfinished() == nullptr;
        summaries.push_back(std::move(summary));
    }
    std::sort(summaries.begin(), summaries.end(), [](const auto& a, const auto& b) { return a.id > b.id; });
    return summaries;
}

Result<std::vector<BatchSummary>> UndoHistory::ListUnfinished() {
    JournalStore store(services_.sys, services_.journalFolder);
    if (Status opened = store.Open(); !opened.ok()) return opened;
    const Result<std::vector<BatchId>> ids = store.List();
    if (!ids.ok()) return ids.status();
    const bool isAnyOpen = std::any_of(ids->begin(), ids->end(), [&store](BatchId id) {
        if (store.IsEnded(id)) return false;
        const Result<LoadedBatch> loaded = store.Load(id);
        return loaded.ok() && loaded->isTrusted() && loaded->batch.isPlanned && !loaded->batch.isEnded;
    });
    if (!isAnyOpen) return std::vector<BatchSummary>();
    Result<std::vector<BatchSummary>> batches = List();
    if (!batches.ok()) return batches;
    std::erase_if(*batches, [](const BatchSummary& batch) {
        return batch.state != BatchState::kUnfinished && batch.state != BatchState::kRunning;
    });
    return batches;
}

BatchId UndoHistory::NewestUndoable() {
    const Result<std::vector<BatchSummary>> list = List();
    if (!list.ok()) return 0;
    const auto found = std::find_if(list->begin(), list->end(), [](const BatchSummary& s) { return s.canUndo; });
    return found == list->end() ? 0 : found->id;
}

BatchId UndoHistory::NewestRedoable() {
    const Result<std::vector<BatchSummary>> list = List();
    if (!list.ok()) return 0;
    const auto found = std::find_if(list->begin(), list->end(), [](const BatchSummary& s) { return s.canRedo; });
    return found == list->end() ? 0 : found->id;
}

BatchResult UndoHistory::Undo(BatchId id, ProgressSink* progress, const CancelToken* cancel) {
    ChainWork work(services_);
    if (Status begun = work.Begin(id); !begun.ok()) return Refused(begun);
    return work.TurnBack(BatchKind::kUndo, progress, cancel != nullptr ? *cancel : kNeverCancelled);
}

BatchResult UndoHistory::Redo(BatchId id, ProgressSink* progress, const CancelToken* cancel) {
    ChainWork work(services_);
    if (Status begun = work.Begin(id); !begun.ok()) return Refused(begun);
    return work.TurnBack(BatchKind::kRedo, progress, cancel != nullptr ? *cancel : kNeverCancelled);
}

BatchResult UndoHistory::Recover(BatchId id, RecoverAction action, ProgressSink* progress, const CancelToken* cancel) {
    const CancelToken& token = cancel != nullptr ? *cancel : kNeverCancelled;
    BatchKind turnBack = BatchKind::kUndo;
    {
        ChainWork work(services_);
        if (Status begun = work.Begin(id); !begun.ok()) return Refused(begun);
        const LoadedBatch* torn = work.chain().Unfinished();
        if (torn == nullptr) return Refused(Status::Failure(StatusCode::kInvalid));
        turnBack = torn->batch.header.kind == BatchKind::kUndo ? BatchKind::kRedo : BatchKind::kUndo;
        BatchResult finished = work.Finish(*torn, action == RecoverAction::kUndo, progress, token);
        if (action == RecoverAction::kFinish || !finished.status.ok()) return finished;
    }
    ChainWork work(services_);
    if (Status begun = work.Begin(id); !begun.ok()) return Refused(begun);
    const BatchKind standing = turnBack == BatchKind::kUndo ? BatchKind::kSort : BatchKind::kUndo;
    if (work.chain().CountStanding(standing) == 0) {
        BatchResult nothing;  // nothing had been done, so nothing had to be taken back
        nothing.id = id;
        nothing.status = work.ForgetIfVoid();
        return nothing;
    }
    return work.TurnBack(turnBack, progress, token);
}

Status UndoHistory::Prune(size_t keep) {
    JournalStore store(services_.sys, services_.journalFolder);
    if (Status opened = store.Open(); !opened.ok()) return opened;
    const Result<std::vector<BatchSummary>> list = List();
    if (!list.ok()) return list.status();
    for (size_t i = keep; i < list->size(); ++i) {
        const BatchSummary& summary = (*list)[i];
        if (summary.state != BatchState::kDone && summary.state != BatchState::kUndone) continue;
        const Result<FileHandle> lock = store.Lock(summary.id);
        if (!lock.ok()) continue;
        Result<BatchChain> chain = BatchChain::Load(store, summary.id, services_.sys.BootId());
        if (!chain.ok() || !chain->CheckTrust().ok() || chain->Unfinished() != nullptr) continue;
        if (Status forgotten = ForgetChain(services_.sys, store, *chain); !forgotten.ok()) return forgotten;
    }
    return RemoveNeverBegun(store);
}

Status UndoHistory::RemoveNeverBegun(JournalStore& store) {
    const Result<std::vector<BatchId>> ids = store.List();
    if (!ids.ok()) return ids.status();
    for (const BatchId id : *ids) {
        const Result<FileHandle> lock = store.Lock(id);
        if (!lock.ok()) continue;  // somebody is about to begin
        const Result<LoadedBatch> loaded = store.Load(id);
        if (!loaded.ok() || !loaded->isTrusted() || loaded->batch.isPlanned) continue;
        if (Status removed = store.Remove(id); !removed.ok()) return removed;
    }
    return {};
}

}  // namespace kinsort
