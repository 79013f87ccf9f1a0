#include "fileop/BatchChain.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "fileop/FolderTable.h"

namespace kinsort {

namespace {

bool IsForward(BatchKind kind) {
    return kind != BatchKind::kUndo;
}

// A second step of a pair: what was replaced comes back.
bool IsRestore(const Step& step) {
    return step.dependsOnPrevious;
}

// Most of what finished or opened a folder has nothing to take back: the folder's own step has.
bool HasInverse(const Step& step) {
    const bool isClosed = step.kind == StepKind::kFinishFolder && (step.mode & 0700) != 0700;
    return isClosed || (step.kind != StepKind::kFinishFolder && step.kind != StepKind::kOpenFolder);
}

Step WithPlaces(StepKind kind, const Place& source, const FileIdentity& sourceId, const Place& target) {
    Step step;
    step.kind = kind;
    step.source = source;
    step.sourceId = sourceId;
    step.target = target;
    return step;
}

// Builds one inverse batch.
class Inverter {
  public:
    explicit Inverter(Batch& out) : out_(out) {}

    // Folders that some batch of the chain has made, by stored path; the newest wins.
    void NoteMadeFolders(const Batch& batch) {
        for (size_t i = 0; i < batch.steps.size(); ++i) {
            if (batch.steps[i].kind != StepKind::kMakeFolder || batch.states[i].progress != StepProgress::kDone)
                continue;
            made_[PathOf(batch.folders, batch.steps[i].target)] = batch.states[i].made;
        }
    }

    void AddFolders(const Batch& from) {
        base_ = static_cast<uint32_t>(out_.folders.size());
        for (FolderRecord folder : from.folders) {
            if (folder.parent != kNoIndex) folder.parent += base_;
            folder.modifiedAfterNs = 0;
            out_.folders.push_back(std::move(folder));
        }
    }

    void InvertBatch(const LoadedBatch& loaded, const std::vector<bool>& stands) {
        const Batch& from = loaded.batch;
        const size_t firstStep = out_.steps.size();
        AddFolders(from);
        PinRemade();
        batchId_ = from.header.id;
        for (auto i = static_cast<uint32_t>(from.steps.size()); i-- > 0;) {
            if (!stands[i] || !HasInverse(from.steps[i])) continue;
            step_ = i;
            InvertStep(from, i);
        }
        for (size_t i = finishes_.size(); i-- > 0;)
            Add(finishes_[i], finishItems_[i]);
        finishes_.clear();
        finishItems_.clear();
        MakeFoldersFirst(firstStep);
    }

    // Folders that will be made are whatever stands there then, in whichever batch's list they are.
    void ForgetFoldersToBeMade() {
        std::set<std::string> paths;
        for (const Step& step : out_.steps) {
            if (step.kind == StepKind::kMakeFolder) paths.insert(PathOf(out_.folders, step.target));
        }
        for (FolderRecord& folder : out_.folders) {
            if (folder.parent == kNoIndex || folder.isKeep) continue;
            if (paths.contains(PathOf(out_.folders, {folder.parent, folder.name}))) folder.inode = 0;
        }
    }

  private:
    static std::string PathOf(const std::vector<FolderRecord>& folders, const Place& place) {
        return StoredPathOf(folders, place.folder).append("/").append(place.name.view());
    }

    // A folder that was removed and made again since, by an undo that was stopped, is the one to work in.
    void PinRemade() {
        if (made_.empty()) return;
        for (size_t i = base_; i < out_.folders.size(); ++i) {
            FolderRecord& folder = out_.folders[i];
            if (folder.parent == kNoIndex || folder.isKeep) continue;
            const auto found = made_.find(PathOf(out_.folders, {folder.parent, folder.name}));
            if (found == made_.end()) continue;
            folder.inode = found->second.inode;
            folder.createdNs = found->second.createdNs;
        }
    }

    Place Moved(const Place& place) const {
        return {place.folder == kNoIndex ? kNoIndex : place.folder + base_, place.name};
    }

    // Every folder before what goes into it, outer ones before inner ones.
    void MakeFoldersFirst(size_t firstStep) {
        const auto begin = out_.steps.begin() + static_cast<std::ptrdiff_t>(firstStep);
        const auto depth = [this](const Step& step) {
            const std::string path = StoredPathOf(out_.folders, step.target.folder);
            return std::count(path.begin(), path.end(), '/');
        };
        const auto rest = std::stable_partition(begin, out_.steps.end(),
                                                [](const Step& step) { return step.kind == StepKind::kMakeFolder; });
        std::stable_sort(begin, rest, [&depth](const Step& a, const Step& b) { return depth(a) < depth(b); });
    }

    void InvertStep(const Batch& from, uint32_t index) {
        const Step& step = from.steps[index];
        const FileIdentity& made = from.states[index].made;
        if (IsRestore(step)) return;  // taken back together with the step before it
        const uint32_t item = ItemFor(from, step.item);
        const Place source = Moved(step.source);
        const Place target = Moved(step.target);
        switch (step.kind) {
            case StepKind::kMove:
            case StepKind::kMoveReplace:
                Add(WithPlaces(StepKind::kMove, target, made, source), item);
                break;
            case StepKind::kTransfer:
            case StepKind::kTransferReplace:
                Add(WithPlaces(StepKind::kTransfer, target, made, source), item);
                break;
            case StepKind::kCopy:
            case StepKind::kCopyReplace: {
                Step removal = WithPlaces(StepKind::kRemoveCopy, source, step.sourceId, target);
                removal.targetId = made;
                removal.isHardLink = step.isHardLink;
                Add(removal, item);
                break;
            }
            case StepKind::kRemoveCopy: {
                Step copy = WithPlaces(StepKind::kCopy, source, step.sourceId, target);
                copy.isHardLink = step.isHardLink;
                Add(copy, item);
                break;
            }
            case StepKind::kMakeFolder:
                AddFolderStep(StepKind::kRemoveFolder, step, item);
                break;
            case StepKind::kRemoveFolder:
                AddFolderStep(StepKind::kMakeFolder, step, item);
                finishes_.push_back(FolderStep(StepKind::kFinishFolder, step));
                finishItems_.push_back(item);
                break;
            case StepKind::kFinishFolder:
                if ((step.mode & 0700) != 0700) AddFolderStep(StepKind::kOpenFolder, step, item);
                break;
            case StepKind::kOpenFolder:
                break;
        }
        if (IsReplace(step.kind)) AddRestore(index, step, target, item);
        if (index + 1 < from.steps.size() && IsRestore(from.steps[index + 1]) &&
            from.states[index + 1].progress == StepProgress::kDone) {
            ReplaceAgain(from.steps[index + 1], from.states[index + 1].made);
        }
    }

    // What was replaced goes back to its place once the new file has left it.
    void AddRestore(uint32_t index, const Step& step, const Place& target, uint32_t item) {
        Step restore = WithPlaces(StepKind::kMove, {step.keptFolder + base_, KeptName(index)}, step.targetId, target);
        restore.dependsOnPrevious = true;
        Add(restore, item);
    }

    // The step just added puts a file where an undo had restored another: that one is kept once more.
    void ReplaceAgain(const Step& restore, const FileIdentity& restored) {
        Step& step = out_.steps.back();
        switch (step.kind) {
            case StepKind::kMove:
                step.kind = StepKind::kMoveReplace;
                break;
            case StepKind::kCopy:
                step.kind = StepKind::kCopyReplace;
                break;
            case StepKind::kTransfer:
                step.kind = StepKind::kTransferReplace;
                break;
            default:
                return;
        }
        step.targetId = restored;
        step.keptFolder = KeepFolderLike(restore.source.folder + base_);
    }

    uint32_t KeepFolderLike(uint32_t old) {
        const auto [known, isNew] = keepFolders_.try_emplace(old, static_cast<uint32_t>(out_.folders.size()));
        if (isNew) {
            FolderRecord folder = out_.folders[old];
            folder.name = (folder.name.starts_with('.') ? ".kinsort-" : "") + KeptFolderName(out_.header);
            folder.inode = 0;
            folder.createdNs = 0;
            out_.folders.push_back(std::move(folder));
        }
        return known->second;
    }

    Step FolderStep(StepKind kind, const Step& of) const {
        Step step = WithPlaces(kind, Moved(of.source), of.sourceId, Moved(of.target));
        step.mode = of.mode;
        return step;
    }
    void AddFolderStep(StepKind kind, const Step& of, uint32_t item) { Add(FolderStep(kind, of), item); }

    uint32_t ItemFor(const Batch& from, uint32_t item) {
        const auto key = std::pair(batchId_, item);
        const auto [known, isNew] = items_.try_emplace(key, static_cast<uint32_t>(out_.items.size()));
        if (isNew) {
            const BatchItem& old = from.items[item];
            BatchItem copy{Moved(old.source), old.destination == kNoIndex ? kNoIndex : old.destination + base_,
                           old.isMove};
            out_.items.push_back(std::move(copy));
        }
        return known->second;
    }

    void Add(Step step, uint32_t item) {
        step.item = item;
        step.invertsBatch = batchId_;
        step.invertsStep = step_;
        out_.steps.push_back(std::move(step));
        out_.states.emplace_back();
    }

    Batch& out_;
    uint32_t base_ = 0;
    BatchId batchId_ = 0;
    uint32_t step_ = 0;
    std::vector<Step> finishes_;  // folders to be finished once everything is back in them, parents first
    std::vector<uint32_t> finishItems_;
    std::map<std::pair<BatchId, uint32_t>, uint32_t> items_;
    std::map<uint32_t, uint32_t> keepFolders_;
    std::map<std::string, FileIdentity> made_;
};

}  // namespace

Result<BatchChain> BatchChain::Load(JournalStore& store, BatchId root, const std::string& bootId) {
    Result<std::vector<BatchId>> ids = store.List();
    if (!ids.ok()) return ids.status();
    std::vector<LoadedBatch> batches;
    for (const BatchId id : *ids) {
        if (id < root) continue;
        Result<LoadedBatch> loaded = store.Load(id);
        if (!loaded.ok()) {
            if (id == root) return loaded.status();
            continue;
        }
        if (id != root && loaded->batch.header.root != root) continue;
        if (id == root && loaded->isTrusted() && (!loaded->batch.isPlanned || loaded->batch.header.root != root)) {
            return Status::Failure(StatusCode::kNotFound);
        }
        PinMadeFolders(loaded->batch, bootId);
        batches.push_back(std::move(*loaded));
    }
    if (batches.empty()) return Status::Failure(StatusCode::kNotFound);
    return BatchChain(std::move(batches));
}

const Batch& BatchChain::newestForward() const {
    const auto found = std::find_if(batches_.rbegin(), batches_.rend(),
                                    [](const LoadedBatch& loaded) { return IsForward(loaded.batch.header.kind); });
    return found->batch;
}

Status BatchChain::CheckTrust() const {
    for (const LoadedBatch& loaded : batches_) {
        if (loaded.verdict == ScanVerdict::kTooNew) return Status::Failure(StatusCode::kTooNew);
        if (!loaded.isTrusted()) return Status::Failure(StatusCode::kCorrupt);
    }
    return {};
}

const LoadedBatch* BatchChain::Unfinished() const {
    for (const LoadedBatch& loaded : batches_) {
        if (loaded.isTrusted() && loaded.batch.isPlanned && !loaded.batch.isEnded) return &loaded;
    }
    return nullptr;
}

std::vector<std::vector<bool>> BatchChain::FindStanding() const {
    std::unordered_map<BatchId, size_t> position;
    std::vector<std::vector<bool>> stands(batches_.size());
    for (size_t b = 0; b < batches_.size(); ++b) {
        const Batch& batch = batches_[b].batch;
        position.emplace(batch.header.id, b);
        stands[b].resize(batch.steps.size());
        for (size_t i = 0; i < batch.steps.size(); ++i) {
            const Step& step = batch.steps[i];
            if (batch.states[i].progress != StepProgress::kDone) continue;
            stands[b][i] = true;
            if (step.invertsStep == kNoIndex || IsRestore(step)) continue;
            const auto inverted = position.find(step.invertsBatch);
            if (inverted == position.end() || step.invertsStep >= stands[inverted->second].size()) continue;
            stands[inverted->second][step.invertsStep] = false;
            const size_t next = step.invertsStep + 1;
            if (next < stands[inverted->second].size() && IsRestore(batches_[inverted->second].batch.steps[next])) {
                stands[inverted->second][next] = false;
            }
        }
    }
    return stands;
}

size_t BatchChain::CountStanding(BatchKind by) const {
    const auto stands = FindStanding();
    size_t count = 0;
    for (size_t b = 0; b < batches_.size(); ++b) {
        const Batch& batch = batches_[b].batch;
        if (IsForward(batch.header.kind) != IsForward(by)) continue;
        for (size_t i = 0; i < batch.steps.size(); ++i) {
            if (stands[b][i] && batch.steps[i].kind != StepKind::kFinishFolder &&
                batch.steps[i].kind != StepKind::kOpenFolder) {
                ++count;
            }
        }
    }
    return count;
}

size_t BatchChain::CountUndoneItems() const {
    const auto stands = FindStanding();
    size_t count = 0;
    for (size_t b = 0; b < batches_.size(); ++b) {
        const Batch& batch = batches_[b].batch;
        if (IsForward(batch.header.kind)) continue;
        std::set<uint32_t> items;
        for (size_t i = 0; i < batch.steps.size(); ++i) {
            if (stands[b][i] && !IsFolderStep(batch.steps[i].kind)) items.insert(batch.steps[i].item);
        }
        count += items.size();
    }
    return count;
}

Batch BatchChain::Invert(const BatchHeader& header) const {
    Batch out;
    out.header = header;
    out.header.root = sort().header.id;
    out.header.durability = sort().header.durability;
    const auto stands = FindStanding();
    Inverter inverter(out);
    for (const LoadedBatch& loaded : batches_) {
        inverter.NoteMadeFolders(loaded.batch);
    }
    for (size_t b = batches_.size(); b-- > 0;) {
        if (IsForward(batches_[b].batch.header.kind) == IsForward(header.kind)) continue;
        inverter.InvertBatch(batches_[b], stands[b]);
    }
    inverter.ForgetFoldersToBeMade();
    return out;
}

void RemoveKeptFiles(Sys& sys, Batch batch) {
    FolderTable folders(sys, batch.folders);
    for (uint32_t i = 0; i < batch.steps.size(); ++i) {
        if (!IsReplace(batch.steps[i].kind) || batch.states[i].progress != StepProgress::kDone) continue;
        const auto kept = folders.Open(batch.steps[i].keptFolder);
        const Result<FileInfo> info = kept.ok() ? sys.StatAt(**kept, KeptName(i)) : Result<FileInfo>(kept.status());
        // Not there when it was put back; anything else that stands there is not ours to remove.
        if (info.ok() && batch.steps[i].targetId.IsSameFile(*info)) (void)sys.RemoveFileAt(**kept, KeptName(i));
    }
    for (const FolderRecord& folder : batch.folders) {
        if (!folder.isKeep) continue;
        if (const auto parent = folders.Open(folder.parent); parent.ok())
            (void)sys.RemoveFolderAt(**parent, folder.name);
    }
}

Status ForgetChain(Sys& sys, JournalStore& store, const BatchChain& chain) {
    for (size_t b = chain.batches().size(); b-- > 0;) {
        const Batch& batch = chain.batches()[b].batch;
        RemoveKeptFiles(sys, batch);
        if (Status removed = store.Remove(batch.header.id); !removed.ok()) return removed;
    }
    return {};
}

void PinMadeFolders(Batch& batch, const std::string& bootId) {
    std::map<std::pair<uint32_t, std::string_view>, uint32_t> unmade;
    for (uint32_t i = 0; i < batch.folders.size(); ++i) {
        FolderRecord& folder = batch.folders[i];
        folder.isOtherBoot = batch.header.bootId != bootId;
        if (folder.inode == 0 && !folder.isKeep)
            unmade.emplace(std::pair(folder.parent, std::string_view(folder.name)), i);
    }
    for (size_t i = 0; i < batch.steps.size(); ++i) {
        const Step& step = batch.steps[i];
        if (step.kind != StepKind::kMakeFolder || batch.states[i].progress != StepProgress::kDone) continue;
        const auto found = unmade.find(std::pair(step.target.folder, std::string_view(step.target.name)));
        if (found == unmade.end()) continue;
        batch.folders[found->second].inode = batch.states[i].made.inode;
        batch.folders[found->second].createdNs = batch.states[i].made.createdNs;
    }
}

}  // namespace kinsort
