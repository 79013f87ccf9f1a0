#include "fileop/BatchPlanner.h"

#include <algorithm>
#include <utility>

#include "fileop/FreeName.h"
#include "fileop/Parallel.h"

namespace kinsort {

namespace {

// The text before and behind the last separator; both kinds of separator count.
std::pair<std::u16string_view, std::u16string_view> SplitAtLastSeparator(std::u16string_view path) {
    const size_t separator = path.find_last_of(u"\\/");
    if (separator == std::u16string_view::npos) return {{}, path};
    return {path.substr(0, separator + 1), path.substr(separator + 1)};
}

std::u16string_view WithoutTrailingSeparator(std::u16string_view path) {
    while (path.ends_with(u'\\') || path.ends_with(u'/'))
        path.remove_suffix(1);
    return path;
}

StepKind PlainKind(bool isMove, bool isOneVolume) {
    if (!isMove) return StepKind::kCopy;
    return isOneVolume ? StepKind::kMove : StepKind::kTransfer;
}

StepKind ReplacingKind(StepKind kind) {
    switch (kind) {
        case StepKind::kMove:
            return StepKind::kMoveReplace;
        case StepKind::kCopy:
            return StepKind::kCopyReplace;
        case StepKind::kTransfer:
            return StepKind::kTransferReplace;
        default:
            return kind;
    }
}

}  // namespace

BatchPlanner::BatchPlanner(const FileOperationServices& services, Batch& batch, FolderTable& folders,
                           ConflictResolver& resolver)
    : services_(services), batch_(batch), folders_(folders), resolver_(resolver) {}

bool BatchPlanner::PlanItems(std::span<const QueuedItem> requests, unsigned threads,
                             const std::function<bool(const QueuedItem&)>& goesOn) {
    constexpr size_t kBlock = 4096;  // enough to keep the threads busy, little enough to hold
    batch_.items.reserve(requests.size());
    batch_.steps.reserve(requests.size());
    batch_.states.reserve(requests.size());
    plannedSources_.reserve(requests.size());
    plannedTargets_.reserve(requests.size());
    while (!requests.empty()) {
        const auto block = requests.first(std::min(requests.size(), kBlock));
        requests = requests.subspan(block.size());
        std::vector<Looked> looked(block.size());
        for (size_t i = 0; i < block.size(); ++i) {
            Resolve(block[i], looked[i]);
        }
        std::vector<std::unique_ptr<FolderNames>> listed;
        ListDestinations(looked, listed);
        ForEachParallel(block.size(), threads, [&](size_t i, bool) { LookAt(looked[i]); });
        for (size_t i = 0; i < block.size(); ++i) {
            if (!goesOn(block[i]) || !PlanItem(block[i], looked[i])) return false;
        }
    }
    return true;
}

void BatchPlanner::Resolve(const QueuedItem& request, Looked& looked) {
    const auto [folderPart, name] = SplitAtLastSeparator(WithoutTrailingSeparator(request.source));
    looked.source.folder = kNoIndex;
    if (folderPart.empty() || name.empty() || name == u"." || name == u"..") {
        looked.info = Status::Failure(StatusCode::kInvalid);
        return;
    }
    const Result<uint32_t>& folder = FolderOf(folderPart, lastSourceFolder_);
    if (!folder.ok()) {
        looked.info = folder.status();
        return;
    }
    looked.source.folder = *folder;
    looked.name = name;
    looked.destination = FolderOf(*request.destination, lastDestination_);
}

const Result<uint32_t>& BatchPlanner::FolderOf(std::u16string_view path, NamedFolder& last) {
    if (path == last.path && !path.empty()) return last.index;
    const Result<std::string> stored = services_.codec.PathToStored(path);
    last.index = stored.ok() ? folders_.AddByPath(*stored) : Result<uint32_t>(stored.status());
    last.path = path;
    return last.index;
}

void BatchPlanner::ListDestinations(std::span<Looked> looked, std::vector<std::unique_ptr<FolderNames>>& listed) {
    std::unordered_map<uint32_t, std::vector<Looked*>> byFolder;
    for (Looked& one : looked) {
        if (one.source.folder != kNoIndex && one.destination.ok()) byFolder[*one.destination].push_back(&one);
    }
    for (const auto& [folder, items] : byFolder) {
        const auto opened = folders_.Open(folder);
        if (!opened.ok()) continue;  // the look at each item says why
        auto names = std::make_unique<FolderNames>(services_.sys, **opened, items.size());
        if (!names->isListed()) continue;
        for (Looked* one : items)
            one->taken = names.get();
        listed.push_back(std::move(names));
    }
}

void BatchPlanner::LookAt(Looked& looked) {
    if (looked.source.folder == kNoIndex) return;
    looked.source.name = services_.codec.NameToStored(looked.name);
    if (!looked.destination.ok()) return;
    looked.info = StatAt(looked.source);
    const bool isFree = looked.taken != nullptr && !looked.taken->Contains(looked.source.name);
    if (looked.info.ok() && !isFree) looked.there = StatAt({*looked.destination, looked.source.name});
}

Result<FileInfo> BatchPlanner::StatAt(const Place& place) {
    const auto folder = folders_.Open(place.folder);
    return folder.ok() ? services_.sys.StatAt(**folder, place.name) : Result<FileInfo>(folder.status());
}

bool BatchPlanner::PlanItem(const QueuedItem& request, const Looked& looked) {
    item_ = batch_.items.size();
    batch_.items.push_back({.source = looked.source, .destination = kNoIndex, .isMove = request.isMove});
    request_ = &request;
    if (!looked.destination.ok()) {
        Refuse(ItemOutcome::kFailed, ItemReason::kSystem, looked.destination.status().At(*request.destination));
        return true;
    }
    if (!looked.info.ok()) {
        const bool isGone = looked.info.code() == StatusCode::kNotFound;
        Refuse(ItemOutcome::kFailed, isGone ? ItemReason::kSourceGone : ItemReason::kSystem,
               looked.info.status().At(request.source));
        return true;
    }
    const FileInfo& info = *looked.info;
    const uint32_t folder = *looked.destination;
    batch_.items[item_].destination = folder;
    if (!plannedSources_.insert(looked.source).second) {
        Refuse(ItemOutcome::kSkipped, ItemReason::kDuplicate);
        return true;
    }
    if (info.kind == FileKind::kFolder && LiesInside(folder, info)) {
        Refuse(ItemOutcome::kFailed, ItemReason::kIntoItself);
        return true;
    }
    if (info.kind == FileKind::kOther && (!request.isMove || !folders_.IsOnVolumeOf(folder, info))) {
        Refuse(ItemOutcome::kSkipped, ItemReason::kSpecialFile);
        return true;
    }
    return AddSteps(looked.source, info, folder, request.isMove, &looked.there);
}

void BatchPlanner::Refuse(ItemOutcome outcome, ItemReason reason, Status status) {
    const auto [known, isFirst] = refusals_.try_emplace(item_);
    if (!isFirst) return;  // the first reason is the one to tell
    ItemReport& report = known->second;
    report.item = item_;
    if (request_ != nullptr) report.source = request_->source;
    report.outcome = outcome;
    report.reason = reason;
    report.status = std::move(status);
}

bool BatchPlanner::LiesInside(uint32_t folder, const FileInfo& ancestor) {
    const auto opened = folders_.Open(folder);
    if (!opened.ok()) return false;  // placing the item will say why
    Result<FileInfo> here = services_.sys.Stat(**opened);
    FileHandle above;
    for (const FileHandle* at = opened->get(); here.ok();) {
        if (here->SameFile(ancestor)) return true;
        Result<FileHandle> parent = services_.sys.OpenParent(*at);
        if (!parent.ok()) return false;
        const FileInfo below = *here;
        here = services_.sys.Stat(*parent);
        if (here.ok() && here->SameFile(below)) return false;  // the top
        above = std::move(*parent);
        at = &above;
    }
    return false;
}

bool BatchPlanner::AddSteps(const Place& source, const FileInfo& info, uint32_t folder, bool isMove,
                            const Result<FileInfo>* there) {
    Target target;
    switch (ChooseTarget(source, info, folder, isMove, there, target)) {
        case Choice::kCancel:
            return false;
        case Choice::kSkip:
            return true;
        case Choice::kGo:
            break;
    }
    const bool isWholeFolder = info.kind == FileKind::kFolder && target.kind == StepKind::kMove && !target.isMerge;
    if (info.kind == FileKind::kFolder && !isWholeFolder) return AddFolder(source, info, target, isMove);
    if (info.kind == FileKind::kOther && MakesContent(target.kind)) {
        Refuse(ItemOutcome::kSkipped, ItemReason::kSpecialFile);
        return true;
    }
    const uint32_t step = AddStep(target.kind, source, FileIdentity::Of(info), target.place);
    batch_.steps[step].keptFolder = target.keptFolder;
    batch_.steps[step].targetId = target.replaced;
    return true;
}

uint32_t BatchPlanner::AddStep(StepKind kind, const Place& source, const FileIdentity& sourceId, const Place& target) {
    Step step;
    step.kind = kind;
    step.item = static_cast<uint32_t>(item_);
    step.source = source;
    step.sourceId = sourceId;
    step.target = target;
    batch_.steps.push_back(std::move(step));
    batch_.states.emplace_back();
    return static_cast<uint32_t>(batch_.steps.size() - 1);
}

BatchPlanner::Choice BatchPlanner::ChooseTarget(const Place& source, const FileInfo& info, uint32_t folder, bool isMove,
                                                const Result<FileInfo>* known, Target& target) {
    target.place = {folder, source.name};
    target.kind = PlainKind(isMove, folders_.IsOnVolumeOf(folder, info));
    const bool isNewFolder = batch_.folders[folder].inode == 0;
    Result<FileInfo> there = Status::Failure(StatusCode::kNotFound);
    if (!isNewFolder) there = known != nullptr ? *known : StatAt(target.place);
    if (!there.ok() && there.code() != StatusCode::kNotFound) {
        Refuse(ItemOutcome::kFailed, ItemReason::kSystem,
               there.status().At(InnerPathOf(services_.codec, batch_.folders, target.place)));
        return Choice::kSkip;
    }
    const bool isPlanned = plannedTargets_.contains(PlaceView(folder, source.name));
    Choice choice = Choice::kGo;
    if (there.ok() && there->SameFile(info) && info.kind != FileKind::kFolder && isMove && folder != source.folder) {
        AddDrop(source, info, target.place);
        return Choice::kSkip;
    }
    if (there.ok() || isPlanned) choice = ResolveConflict(source, info, there.ok() ? &*there : nullptr, target);
    if (choice == Choice::kGo) {
        plannedTargets_.insert(target.place);
    }
    return choice;
}

BatchPlanner::Choice BatchPlanner::ResolveConflict(const Place& source, const FileInfo& info, const FileInfo* there,
                                                   Target& target) {
    const bool isFolder = info.kind == FileKind::kFolder;
    const bool isSame = there != nullptr && there->SameFile(info);
    Conflict conflict;
    conflict.item = SideOf(source, info);
    conflict.target = there != nullptr
                          ? SideOf(target.place, *there)
                          : ConflictSide{InnerPathOf(services_.codec, batch_.folders, target.place), info.kind};
    conflict.isMerge = there != nullptr && isFolder && there->kind == FileKind::kFolder && !isSame;
    conflict.canReplace =
        conflict.isMerge || (there != nullptr && !isFolder && !isSame && there->kind != FileKind::kFolder &&
                             !plannedTargets_.contains(target.place));
    // There is nothing to ask: the item is where it is to go. Only who wants everything twice gets a second one.
    if (isSame && (target.kind != StepKind::kCopy || !resolver_.KeepsBothFiles())) {
        Refuse(ItemOutcome::kFailed, ItemReason::kSameFile);
        return Choice::kSkip;
    }
    const ConflictAnswer answer = resolver_.Resolve(conflict);
    switch (answer) {
        case ConflictAnswer::kCancel:
            Refuse(ItemOutcome::kNotReached, ItemReason::kCancelled);
            return Choice::kCancel;
        case ConflictAnswer::kKeepBoth:
            target.place.name = FreeNameIn(target.place.folder, target.place.name, info.kind);
            return Choice::kGo;
        case ConflictAnswer::kReplace:
            if (conflict.isMerge) {
                target.isMerge = true;
                return Choice::kGo;
            }
            target.kind = ReplacingKind(target.kind);
            target.keptFolder = KeptFolderFor(target.place.folder);
            target.replaced = FileIdentity::Of(*there);
            return Choice::kGo;
        default:
            Refuse(ItemOutcome::kSkipped, ItemReason::kConflictSkipped);
            return Choice::kSkip;
    }
}

std::string BatchPlanner::FreeNameIn(uint32_t folder, std::string_view name, FileKind kind) {
    const auto opened = folders_.Open(folder);
    return FindFreeName(name, kind != FileKind::kFolder, [&](const std::string& candidate) {
        if (plannedTargets_.contains(PlaceView(folder, candidate))) return true;
        return opened.ok() && services_.sys.StatAt(**opened, candidate).ok();
    });
}

uint32_t BatchPlanner::KeptFolderFor(uint32_t targetFolder) {
    const auto [known, isNew] = keptFolders_.try_emplace(targetFolder, kNoIndex);
    if (!isNew) return known->second;
    const Result<uint32_t> journals = folders_.AddByPath(services_.journalFolder);
    if (journals.ok() && batch_.folders[*journals].device == batch_.folders[targetFolder].device) {
        if (keptBesideJournal_ == kNoIndex) {
            keptBesideJournal_ = folders_.AddKeepFolder(*journals, KeptFolderName(batch_.header));
        }
        return known->second = keptBesideJournal_;
    }
    return known->second = folders_.AddKeepFolder(targetFolder, ".kinsort-" + KeptFolderName(batch_.header));
}

void BatchPlanner::AddDrop(const Place& source, const FileInfo& info, const Place& sameFile) {
    const uint32_t step = AddStep(StepKind::kRemoveCopy, sameFile, FileIdentity::Of(info), source);
    batch_.steps[step].isHardLink = true;
    batch_.steps[step].targetId = FileIdentity::Of(info);
}

bool BatchPlanner::AddFolder(const Place& source, const FileInfo& info, const Target& target, bool isMove) {
    if (!target.isMerge) {
        batch_.steps[AddStep(StepKind::kMakeFolder, source, FileIdentity::Of(info), target.place)].mode = info.mode;
        return AddContents(source, info, target.place, nullptr, isMove);
    }
    const Result<FileInfo> there = StatAt(target.place);
    if (!there.ok()) {
        Refuse(ItemOutcome::kFailed, ItemReason::kSystem, there.status());
        return true;
    }
    return AddContents(source, info, target.place, &*there, isMove);
}

bool BatchPlanner::AddContents(const Place& source, const FileInfo& info, const Place& target,
                               const FileInfo* targetInfo, bool isMove) {
    const uint32_t from = folders_.AddChild(source.folder, source.name, &info);
    const uint32_t to = folders_.AddChild(target.folder, target.name, targetInfo);
    std::vector<std::string> names;
    if (const Status listed = ListNames(from, names); !listed.ok()) {
        Refuse(ItemOutcome::kFailed, ItemReason::kSystem,
               listed.At(InnerPathOf(services_.codec, batch_.folders, source)));
    }
    for (const std::string& name : names) {
        const Place place{from, name};
        const Result<FileInfo> child = StatAt(place);
        if (!child.ok()) {
            Refuse(ItemOutcome::kFailed, ItemReason::kSystem,
                   child.status().At(InnerPathOf(services_.codec, batch_.folders, place)));
        } else if (!AddSteps(place, *child, to, isMove, nullptr)) {
            return false;
        }
    }
    if (targetInfo == nullptr) {
        batch_.steps[AddStep(StepKind::kFinishFolder, source, FileIdentity::Of(info), target)].mode = info.mode;
    }
    if (isMove) batch_.steps[AddStep(StepKind::kRemoveFolder, target, FileIdentity::Of(info), source)].mode = info.mode;
    return true;
}

Status BatchPlanner::ListNames(uint32_t folder, std::vector<std::string>& names) {
    const auto opened = folders_.Open(folder);
    if (!opened.ok()) return opened.status();
    const Status read = services_.sys.ReadFolder(**opened, [&names](const FolderEntry& entry) {
        names.push_back(entry.name);
        return true;
    });
    std::sort(names.begin(), names.end());
    return read;
}

Replan BatchPlanner::ReplanTaken(uint32_t index) {
    Step& step = batch_.steps[index];
    const Result<FileInfo> info = StatAt(step.source);
    const Result<FileInfo> there = StatAt(step.target);
    if (!info.ok()) return Replan::kFailed;
    if (there.code() == StatusCode::kNotFound) return Replan::kAgain;
    if (!there.ok()) return Replan::kFailed;

    Conflict conflict;
    conflict.item = SideOf(step.source, *info);
    conflict.target = SideOf(step.target, *there);
    conflict.canReplace = info->kind != FileKind::kFolder && there->kind != FileKind::kFolder;
    switch (resolver_.Resolve(conflict)) {
        case ConflictAnswer::kCancel:
            return Replan::kCancelled;
        case ConflictAnswer::kKeepBoth:
            step.target.name = FreeNameIn(step.target.folder, step.target.name, info->kind);
            plannedTargets_.insert(step.target);
            return Replan::kAgain;
        case ConflictAnswer::kReplace: {
            const uint32_t kept = KeptFolderFor(step.target.folder);
            step.kind = ReplacingKind(step.kind);
            step.keptFolder = kept;
            step.targetId = FileIdentity::Of(*there);
            return Replan::kAgain;
        }
        default:
            return Replan::kSkipped;
    }
}

Replan BatchPlanner::ReplanAsTransfer(uint32_t index) {
    const Step step = batch_.steps[index];
    if (step.sourceId.kind != FileKind::kFolder) {
        if (step.sourceId.kind == FileKind::kOther) return Replan::kFailed;
        batch_.steps[index].kind = IsReplace(step.kind) ? StepKind::kTransferReplace : StepKind::kTransfer;
        return Replan::kAgain;
    }
    const Result<FileInfo> info = StatAt(step.source);
    if (!info.ok()) return Replan::kFailed;
    item_ = step.item;
    request_ = nullptr;
    batch_.steps[index].kind = StepKind::kMakeFolder;
    batch_.steps[index].mode = info->mode;
    return AddContents(step.source, *info, step.target, nullptr, true) ? Replan::kAgain : Replan::kCancelled;
}

ConflictSide BatchPlanner::SideOf(const Place& place, const FileInfo& info) const {
    return {InnerPathOf(services_.codec, batch_.folders, place), info.kind, info.size, info.modifiedNs};
}

}  // namespace kinsort
