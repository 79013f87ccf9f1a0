#include "fileop/FileOperation.h"

#include <utility>

#include "fileop/BatchChain.h"
#include "fileop/BatchSession.h"
#include "fileop/UndoHistory.h"

namespace kinsort {

namespace {

// So many sorts can be undone; a few more are let pass before the oldest are forgotten, all at once.
constexpr size_t kKeptSorts = 100;
constexpr size_t kTidyAt = 200;  // journals, undos and redos included

void TidyHistory(const FileOperationServices& services, JournalStore& store) {
    const Result<std::vector<BatchId>> ids = store.List();
    if (ids.ok() && ids->size() >= kTidyAt) (void)UndoHistory(services).Prune(kKeptSorts);  // the next sort tries again
}

}  // namespace

FileOperation::FileOperation(FileOperationServices services) : services_(std::move(services)) {}

FileOperation::~FileOperation() = default;

void FileOperation::CopyItems(std::u16string sourcePath, std::u16string destinationFolder) {
    Queue(std::move(sourcePath), std::move(destinationFolder), false);
}

void FileOperation::MoveItems(std::u16string sourcePath, std::u16string destinationFolder) {
    Queue(std::move(sourcePath), std::move(destinationFolder), true);
}

void FileOperation::Queue(std::u16string sourcePath, std::u16string destinationFolder, bool isMove) {
    const bool isNew = destinations_.empty() || destinations_.back() != destinationFolder;
    if (isNew) destinations_.push_back(std::move(destinationFolder));
    queue_.push_back({std::move(sourcePath), &destinations_.back(), isMove});
}

void FileOperation::SetPolicy(const OperationPolicy& policy) {
    policy_ = policy;
}

void FileOperation::SetOperationFlags(uint32_t flags) {
    flags_ = flags;
}

BatchResult FileOperation::PerformOperations(AskUserAction* asker, ProgressSink* progress, const CancelToken* cancel) {
    BatchResult result;
    static const CancelToken kNeverCancelled;
    const CancelToken& token = cancel != nullptr ? *cancel : kNeverCancelled;
    JournalStore store(services_.sys, services_.journalFolder);
    if (result.status = store.Open(); !result.status.ok()) return result;
    Result<NewJournal> created = store.Create();
    if (!created.ok()) {
        result.status = created.status();
        return result;
    }
    Journal& journal = created->journal;

    Batch batch;
    batch.header.id = batch.header.root = created->id;
    batch.header.durability = policy_.durability;
    batch.header.keepForUndo = (flags_ & kFofAllowUndo) != 0;
    batch.header.startedNs = services_.clock.WallNanoseconds();
    batch.header.user = services_.sys.UserNumber();
    batch.header.bootId = services_.sys.BootId();
    FolderTable folders(services_.sys, batch.folders);
    ProgressMeter meter(services_.clock, progress);
    const bool noConfirmation = (flags_ & kFofNoConfirmation) != 0;
    ConflictResolver resolver(noConfirmation ? ConflictAnswer::kReplace : policy_.conflicts, asker);
    BatchPlanner planner(services_, batch, folders, resolver);

    const bool isPlanned = planner.PlanItems(queue_, policy_.threads, [&](const QueuedItem& item) {
        meter.Tick([&] { return item.source; });
        return !token.isCancelled();
    });
    if (!isPlanned || token.isCancelled()) {
        // Nothing was touched yet, so nothing is what a cancel leaves.
        result.cancelled = true;
        result.notReached = queue_.size();
        result.status = store.Remove(created->id);
        return result;
    }
    BatchSession session(services_, store, batch, folders, journal, meter);
    if (!batch.steps.empty()) {
        result.status = session.StorePlan();
        if (!result.status.ok()) {
            (void)store.Remove(created->id);  // it holds no complete plan, so nobody would act on it
            result.notReached = queue_.size();
            return result;
        }
        result.id = created->id;
        result.status = session.Run(&planner, &resolver, token, policy_.threads);
    }
    result.cancelled = batch.isCancelled;
    result.journalSyncs = journal.syncs();
    if (session.lostAttributes()) result.warnings.push_back(BatchWarning::kAttributesLost);
    SummarizeItems(batch, services_.codec, &planner, result);
    if (batch.steps.empty() || (batch.isEnded && !batch.header.keepForUndo)) {
        RemoveKeptFiles(services_.sys, batch);
        if (Status removed = store.Remove(created->id); result.status.ok()) result.status = removed;
    }
    TidyHistory(services_, store);
    return result;
}

}  // namespace kinsort
