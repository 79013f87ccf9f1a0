#include "fileop/StepActor.h"

#include <utility>

namespace kinsort {

namespace {

constexpr uint32_t kOwnerAll = 0700;
constexpr uint32_t kPermissionBits = 01777;  // set-id bits do not travel: the copy may have another owner

StepResult Failed(const Status& status, ItemReason reason = ItemReason::kSystem) {
    return {reason, status};
}

bool IsFolderGone(StatusCode code) {
    return code == StatusCode::kChanged || code == StatusCode::kIsLink || code == StatusCode::kNotFolder ||
           code == StatusCode::kNotFound;
}

}  // namespace

std::string SwapName(std::string_view keptName) {
    return std::string(keptName) + ".swap";
}

StepResult StepActor::OpenFolder(uint32_t index, bool isTarget, Folder& folder) {
    auto opened = folders_.Open(index);
    if (opened.ok()) {
        folder = std::move(*opened);
        return {};
    }
    if (!IsFolderGone(opened.code())) return Failed(opened.status());
    return Failed(opened.status(), isTarget ? ItemReason::kTargetFolderChanged : ItemReason::kSourceGone);
}

// What a failed look at the source means.
StepResult StepActor::SourceFailed(const Status& status) const {
    if (status.code() != StatusCode::kNotFound) return Failed(status);
    return Failed(status, IsTurningBack() ? ItemReason::kNotThereAnyMore : ItemReason::kSourceGone);
}

// A sort takes a file as it is now, as long as it is the one that was chosen. What is turned back must be as it was
// left.
StepResult StepActor::CheckSource(const Step& step, const FileInfo& info) const {
    if (!IsTurningBack())
        return step.sourceId.IsSameFile(info) ? StepResult() : StepResult{ItemReason::kSourceChanged, {}};
    return step.sourceId.IsUnchanged(info) ? StepResult() : StepResult{ItemReason::kFileChangedSince, {}};
}

StepResult StepActor::Prepare(uint32_t index, const ByteSink& copied, PreparedContent& prepared, FileIdentity& made) {
    const Step& step = batch_.steps[index];
    Folder sourceFolder;
    Folder targetFolder;
    if (StepResult opened = OpenFolder(step.source.folder, false, sourceFolder); !opened.ok()) return opened;
    if (StepResult opened = OpenFolder(step.target.folder, true, targetFolder); !opened.ok()) return opened;
    if (step.sourceId.kind == FileKind::kLink || step.isHardLink) {
        const Result<FileInfo> info = sys_.StatAt(*sourceFolder, step.source.name);
        if (!info.ok()) return SourceFailed(info.status());
        if (StepResult checked = CheckSource(step, *info); !checked.ok()) return checked;
        prepared.source = *info;
        return {};
    }
    StepResult result = CopyOnce(index, *sourceFolder, targetFolder, copied, prepared, made);
    if (result.reason == ItemReason::kSourceChanged && result.status.code() == StatusCode::kChanged) {
        // Somebody wrote while we read. Once more; who writes all the time is told so.
        result = CopyOnce(
            index, *sourceFolder, targetFolder, [](uint64_t) {}, prepared, made);
    }
    return result;
}

StepResult StepActor::CopyOnce(uint32_t index, const FileHandle& sourceFolder, const Folder& targetFolder,
                               const ByteSink& copied, PreparedContent& prepared, FileIdentity& made) {
    const Step& step = batch_.steps[index];
    const Result<FileHandle> from = sys_.OpenForRead(sourceFolder, step.source.name);
    if (!from.ok()) return SourceFailed(from.status());
    const Result<FileInfo> info = sys_.Stat(*from);
    if (!info.ok()) return Failed(info.status());
    if (StepResult checked = CheckSource(step, *info); !checked.ok()) return checked;
    prepared.source = *info;
    if (StepResult empty = MakeEmptyFile(index, targetFolder, info->mode & kPermissionBits, prepared); !empty.ok()) {
        return empty;
    }
    const Status content = CopyContent(sys_, *from, *info, prepared.file, copied, cancel_);
    StepResult result;
    if (!content.ok()) {
        const bool isChanged = content.code() == StatusCode::kChanged;
        result = Failed(content, isChanged ? ItemReason::kSourceChanged : ItemReason::kSystem);
    } else if (cancel_.isCancelled()) {
        result = {ItemReason::kCancelled, {}};
    } else {
        result = CopyAttributes(*from, *info, prepared);
    }
    if (result.ok()) {
        const Result<FileInfo> now = sys_.Stat(prepared.file);
        if (now.ok()) {
            made = FileIdentity::Of(*now);
        } else {
            result = Failed(now.status());
        }
    }
    if (!result.ok()) Discard(index, prepared);
    return result;
}

StepResult StepActor::MakeEmptyFile(uint32_t index, const Folder& folder, uint32_t mode, PreparedContent& prepared) {
    prepared.temporaryFolder = nullptr;
    Result<FileHandle> file = sys_.CreateNameless(*folder, mode);
    if (file.code() == StatusCode::kUnsupported) {
        const std::string name = TemporaryName(batch_.header.id, index);
        file = sys_.CreateFileAt(*folder, name, mode);
        if (file.code() == StatusCode::kExists && sys_.RemoveFileAt(*folder, name).ok()) {  // an earlier try of ours
            file = sys_.CreateFileAt(*folder, name, mode);
        }
        if (file.ok()) prepared.temporaryFolder = folder;
    }
    if (!file.ok()) return Failed(file.status());
    prepared.file = std::move(*file);
    return {};
}

StepResult StepActor::CopyAttributes(const FileHandle& from, const FileInfo& info, PreparedContent& prepared) {
    if (!sys_.CopyUserAttributes(from, prepared.file).ok()) lostAttributes_.store(true, std::memory_order_relaxed);
    const Status times = sys_.SetTimes(prepared.file, info.accessedNs, info.modifiedNs);
    return times.ok() ? StepResult() : Failed(times);
}

void StepActor::Discard(uint32_t index, PreparedContent& prepared) {
    prepared.file.Reset();
    // The folder may have another place by now.
    if (const Folder folder = std::exchange(prepared.temporaryFolder, nullptr); folder != nullptr) {
        (void)sys_.RemoveFileAt(*folder, TemporaryName(batch_.header.id, index));
    }
}

StepResult StepActor::Publish(uint32_t index, PreparedContent& prepared, FileIdentity& made) {
    const StepKind kind = batch_.steps[index].kind;
    if (IsMove(kind)) return PublishMove(index, made);
    if (kind == StepKind::kRemoveCopy) return RemoveVerified(index);
    return PublishContent(index, prepared, made);
}

StepResult StepActor::VerifyMove(uint32_t index, FileIdentity& made) {
    const Step& step = batch_.steps[index];
    Folder from;
    if (StepResult opened = OpenFolder(step.source.folder, false, from); !opened.ok()) return opened;
    const Result<FileInfo> info = sys_.StatAt(*from, step.source.name);
    if (!info.ok()) return SourceFailed(info.status());
    made = FileIdentity::Of(*info);
    return CheckSource(step, *info);
}

StepResult StepActor::PublishMove(uint32_t index, const FileIdentity& made) {
    const Step& step = batch_.steps[index];
    Folder from;
    Folder to;
    if (StepResult opened = OpenFolder(step.source.folder, false, from); !opened.ok()) return opened;
    if (StepResult opened = OpenFolder(step.target.folder, true, to); !opened.ok()) return opened;
    if (!IsReplace(step.kind)) {
        const Status moved = RenameFile(*from, step.source.name, *to, step.target.name, made.kind);
        if (moved.code() == StatusCode::kExists) return Failed(moved, ItemReason::kTargetTaken);
        if (moved.code() == StatusCode::kNotFound) return SourceFailed(moved);
        return moved.ok() ? StepResult() : Failed(moved);
    }
    Folder kept;
    if (StepResult opened = OpenFolder(step.keptFolder, true, kept); !opened.ok()) return opened;
    const std::string keptName = KeptName(index);
    if (Status moved = RenameFile(*from, step.source.name, *kept, keptName, made.kind); !moved.ok())
        return Failed(moved);
    StepResult swapped = ExchangeWithKept(index, made);
    // Only what was put there goes back: after a failure half-way the kept name can be the replaced file's.
    if (!swapped.ok() && IsStillKept(*kept, index, made)) {
        if (Status back = RenameFile(*kept, keptName, *from, step.source.name, made.kind); !back.ok())
            return Failed(back);
    }
    return swapped;
}

StepResult StepActor::PublishContent(uint32_t index, PreparedContent& prepared, FileIdentity& made) {
    const Step& step = batch_.steps[index];
    Folder to;
    if (StepResult opened = OpenFolder(step.target.folder, true, to); !opened.ok()) return opened;
    if (!IsReplace(step.kind)) return PlaceContent(index, prepared, *to, step.target.name, made);
    Folder kept;
    if (StepResult opened = OpenFolder(step.keptFolder, true, kept); !opened.ok()) return opened;
    const std::string keptName = KeptName(index);
    if (StepResult placed = PlaceContent(index, prepared, *kept, keptName, made); !placed.ok()) {
        // The kept name is nobody's business but ours: asking again about the target would not help.
        return placed.reason == ItemReason::kTargetTaken ? Failed(placed.status) : placed;
    }
    StepResult swapped = ExchangeWithKept(index, made);
    // The new copy may go: its source is where it was.
    if (!swapped.ok() && IsStillKept(*kept, index, made)) (void)sys_.RemoveFileAt(*kept, keptName);
    return swapped;
}

StepResult StepActor::PlaceContent(uint32_t index, PreparedContent& prepared, const FileHandle& folder,
                                   std::string_view name, FileIdentity& made) {
    const Step& step = batch_.steps[index];
    Status placed;
    if (step.sourceId.kind == FileKind::kLink || step.isHardLink) return PlaceLink(step, folder, name, made);
    if (prepared.temporaryFolder != nullptr) {
        const std::string temporary = TemporaryName(batch_.header.id, index);
        placed = RenameFile(*prepared.temporaryFolder, temporary, folder, name, FileKind::kFile);
        if (placed.ok()) prepared.temporaryFolder = nullptr;
    } else {
        placed = sys_.NameFile(prepared.file, folder, name);
    }
    if (placed.code() == StatusCode::kExists) return Failed(placed, ItemReason::kTargetTaken);
    if (!placed.ok()) return Failed(placed);
    prepared.file.Reset();
    return {};
}

StepResult StepActor::PlaceLink(const Step& step, const FileHandle& folder, std::string_view name, FileIdentity& made) {
    Folder from;
    if (StepResult opened = OpenFolder(step.source.folder, false, from); !opened.ok()) return opened;
    Status placed;
    if (step.isHardLink) {
        placed = sys_.LinkAt(*from, step.source.name, folder, name);
    } else {
        const Result<std::string> text = sys_.ReadLinkAt(*from, step.source.name);
        if (!text.ok()) return SourceFailed(text.status());
        placed = sys_.MakeLinkAt(*text, folder, name);
        if (placed.ok()) (void)sys_.SetTimesAt(folder, name, step.sourceId.modifiedNs, step.sourceId.modifiedNs);
    }
    if (placed.code() == StatusCode::kExists) return Failed(placed, ItemReason::kTargetTaken);
    if (!placed.ok()) return Failed(placed);
    const Result<FileInfo> info = sys_.StatAt(folder, name);
    if (!info.ok()) {
        (void)sys_.RemoveFileAt(folder, name);
        return Failed(info.status());
    }
    made = FileIdentity::Of(*info);
    return {};
}

StepResult StepActor::ExchangeWithKept(uint32_t index, const FileIdentity& made) {
    const Step& step = batch_.steps[index];
    Folder to;
    Folder kept;
    if (StepResult opened = OpenFolder(step.target.folder, true, to); !opened.ok()) return opened;
    if (StepResult opened = OpenFolder(step.keptFolder, true, kept); !opened.ok()) return opened;
    const std::string keptName = KeptName(index);
    const Result<FileInfo> before = sys_.StatAt(*to, step.target.name);
    if (before.code() == StatusCode::kNotFound) {  // what was to be replaced is gone: the place is simply free
        const Status placed = RenameFile(*kept, keptName, *to, step.target.name, made.kind);
        if (placed.code() == StatusCode::kExists) return Failed(placed, ItemReason::kTargetTaken);
        return placed.ok() ? StepResult() : Failed(placed);
    }
    if (!before.ok()) return Failed(before.status());
    if (!step.targetId.IsUnchanged(*before)) return {ItemReason::kTargetTaken, {}};
    if (Status swapped = Swap(*kept, keptName, *to, step.target.name); !swapped.ok()) return Failed(swapped);
    // Between the look and the swap something else may have taken the place: then that goes back to where it was.
    const Result<FileInfo> displaced = sys_.StatAt(*kept, keptName);
    if (displaced.ok() && step.targetId.IsSameFile(*displaced)) return {};
    if (Status back = Swap(*kept, keptName, *to, step.target.name); !back.ok()) return Failed(back);
    return displaced.ok() ? StepResult{ItemReason::kTargetTaken, {}} : Failed(displaced.status());
}

Status StepActor::Swap(const FileHandle& keptFolder, std::string_view kept, const FileHandle& targetFolder,
                       std::string_view target) {
    const Status swapped = sys_.Exchange(keptFolder, kept, targetFolder, target);
    if (swapped.code() != StatusCode::kUnsupported) return swapped;
    return SwapByRenames(keptFolder, kept, targetFolder, target);
}

bool StepActor::IsStillKept(const FileHandle& keptFolder, uint32_t index, const FileIdentity& made) {
    const Result<FileInfo> info = sys_.StatAt(keptFolder, KeptName(index));
    return info.ok() && made.IsSameFile(*info);
}

Status StepActor::SwapByRenames(const FileHandle& keptFolder, std::string_view kept, const FileHandle& targetFolder,
                                std::string_view target) {
    const std::string aside = SwapName(kept);
    if (Status moved = RenameFile(targetFolder, target, keptFolder, aside, FileKind::kFile); !moved.ok()) return moved;
    if (Status moved = RenameFile(keptFolder, kept, targetFolder, target, FileKind::kFile); !moved.ok()) {
        const Status back = RenameFile(keptFolder, aside, targetFolder, target, FileKind::kFile);
        return back.ok() ? moved : back;
    }
    const Status settled = RenameFile(keptFolder, aside, keptFolder, kept, FileKind::kFile);
    if (settled.ok()) return settled;
    Status back = RenameFile(targetFolder, target, keptFolder, kept, FileKind::kFile);
    if (back.ok()) back = RenameFile(keptFolder, aside, targetFolder, target, FileKind::kFile);
    return back.ok() ? settled : back;
}

Status StepActor::RenameFile(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                             std::string_view to, FileKind kind) {
    const Status renamed = sys_.RenameNoReplace(fromFolder, from, toFolder, to);
    if (renamed.code() != StatusCode::kUnsupported || kind == FileKind::kFolder) return renamed;
    // A second name is never made over an existing one, so link and remove is a rename that replaces nothing.
    if (Status linked = sys_.LinkAt(fromFolder, from, toFolder, to); !linked.ok()) return linked;
    // The two are not one change: the new name must be safe before the old one goes.
    Status moved = sys_.Sync(toFolder);
    if (moved.ok()) moved = sys_.RemoveFileAt(fromFolder, from);
    if (!moved.ok()) (void)sys_.RemoveFileAt(toFolder, to);
    return moved;
}

StepResult StepActor::RemoveSource(uint32_t index, const FileInfo& copied, const FileIdentity& made) {
    StepResult removed = RemoveUnchangedSource(index, copied);
    if (removed.ok()) return removed;
    // The source stays, so the move did not happen: then its target must not be there either.
    const StepResult back = TakeBack(index, made);
    return back.ok() ? removed : back;
}

StepResult StepActor::RemoveUnchangedSource(uint32_t index, const FileInfo& copied) {
    const Step& step = batch_.steps[index];
    Folder from;
    if (StepResult opened = OpenFolder(step.source.folder, false, from); !opened.ok()) return opened;
    const Result<FileInfo> now = sys_.StatAt(*from, step.source.name);
    if (now.code() == StatusCode::kNotFound) return {};
    if (!now.ok()) return Failed(now.status());
    if (!FileIdentity::Of(copied).IsUnchanged(*now)) return {ItemReason::kSourceChanged, {}};
    const Status removed = sys_.RemoveFileAt(*from, step.source.name);
    return removed.ok() ? StepResult() : Failed(removed);
}

StepResult StepActor::TakeBack(uint32_t index, const FileIdentity& made) {
    const Step& step = batch_.steps[index];
    Folder to;
    if (StepResult opened = OpenFolder(step.target.folder, true, to); !opened.ok()) return opened;
    const Result<FileInfo> there = sys_.StatAt(*to, step.target.name);
    if (!there.ok() || !made.IsUnchanged(*there)) return {ItemReason::kFileChangedSince, {}};
    if (Status removed = sys_.RemoveFileAt(*to, step.target.name); !removed.ok()) return Failed(removed);
    if (!IsReplace(step.kind)) return {};
    Folder kept;
    if (StepResult opened = OpenFolder(step.keptFolder, true, kept); !opened.ok()) return opened;
    const Status back = RenameFile(*kept, KeptName(index), *to, step.target.name, step.targetId.kind);
    return back.ok() ? StepResult() : Failed(back);
}

StepResult StepActor::VerifyRemoval(uint32_t index) {
    const Step& step = batch_.steps[index];
    Folder copyFolder;
    Folder originalFolder;
    if (StepResult opened = OpenFolder(step.target.folder, true, copyFolder); !opened.ok()) return opened;
    const Result<FileInfo> copy = sys_.StatAt(*copyFolder, step.target.name);
    if (copy.code() == StatusCode::kNotFound) return {ItemReason::kNotThereAnyMore, {}};
    if (!copy.ok()) return Failed(copy.status());
    if (!step.targetId.IsUnchanged(*copy)) return {ItemReason::kFileChangedSince, {}};
    if (StepResult opened = OpenFolder(step.source.folder, false, originalFolder); !opened.ok()) {
        return opened.reason == ItemReason::kSystem ? opened : StepResult{ItemReason::kLastCopy, {}};
    }
    const Result<FileInfo> original = sys_.StatAt(*originalFolder, step.source.name);
    if (!original.ok() && original.code() != StatusCode::kNotFound) return Failed(original.status());
    if (!original.ok() || original->kind != copy->kind) return {ItemReason::kLastCopy, {}};
    if (original->SameFile(*copy)) {
        // Two names of one file: removing one is safe, unless it is the same name seen through two folders.
        return original->links > 1 || step.isHardLink ? StepResult() : StepResult{ItemReason::kLastCopy, {}};
    }
    if (step.isHardLink) return {ItemReason::kLastCopy, {}};
    if (copy->kind == FileKind::kLink) {
        const Result<std::string> a = sys_.ReadLinkAt(*copyFolder, step.target.name);
        const Result<std::string> b = sys_.ReadLinkAt(*originalFolder, step.source.name);
        return a.ok() && b.ok() && *a == *b ? StepResult() : StepResult{ItemReason::kLastCopy, {}};
    }
    const Result<FileHandle> a = sys_.OpenForRead(*copyFolder, step.target.name);
    const Result<FileHandle> b = sys_.OpenForRead(*originalFolder, step.source.name);
    if (!a.ok()) return Failed(a.status());
    if (!b.ok()) return Failed(b.status());
    const Result<bool> isSame = HaveSameContent(sys_, *a, *b, cancel_);
    if (cancel_.isCancelled()) return {ItemReason::kCancelled, {}};
    if (!isSame.ok()) return Failed(isSame.status());
    return *isSame ? StepResult() : StepResult{ItemReason::kLastCopy, {}};
}

StepResult StepActor::RemoveVerified(uint32_t index) {
    const Step& step = batch_.steps[index];
    Folder folder;
    if (StepResult opened = OpenFolder(step.target.folder, true, folder); !opened.ok()) return opened;
    const Result<FileInfo> copy = sys_.StatAt(*folder, step.target.name);
    if (copy.code() == StatusCode::kNotFound) return {ItemReason::kNotThereAnyMore, {}};
    if (!copy.ok()) return Failed(copy.status());
    if (!step.targetId.IsUnchanged(*copy)) return {ItemReason::kFileChangedSince, {}};
    const Status removed = sys_.RemoveFileAt(*folder, step.target.name);
    return removed.ok() ? StepResult() : Failed(removed);
}

StepResult StepActor::ActOnFolder(uint32_t index, FileIdentity& made) {
    const Step& step = batch_.steps[index];
    Folder parent;
    if (StepResult opened = OpenFolder(step.target.folder, true, parent); !opened.ok()) return opened;
    if (step.kind == StepKind::kRemoveFolder) {
        const Status removed = sys_.RemoveFolderAt(*parent, step.target.name);
        // Something was left or put in it: the folder stays, and nothing is wrong.
        const bool isExpected =
            removed.ok() || removed.code() == StatusCode::kNotEmpty || removed.code() == StatusCode::kNotFound;
        return isExpected ? StepResult() : Failed(removed);
    }
    if (step.kind == StepKind::kMakeFolder) return MakeFolder(step, *parent, made);
    const Result<FileHandle> folder = sys_.OpenFolderAt(*parent, step.target.name);
    if (!folder.ok()) return Failed(folder.status(), ItemReason::kTargetFolderChanged);
    const uint32_t mode = step.mode & kPermissionBits;
    const bool isOpening = step.kind == StepKind::kOpenFolder;
    if (Status set = sys_.SetMode(*folder, isOpening ? mode | kOwnerAll : mode); !set.ok()) return Failed(set);
    if (isOpening) return {};
    const Status times = sys_.SetTimes(*folder, step.sourceId.modifiedNs, step.sourceId.modifiedNs);
    return times.ok() ? StepResult() : Failed(times);
}

StepResult StepActor::MakeFolder(const Step& step, const FileHandle& parent, FileIdentity& made) {
    const uint32_t mode = step.mode & kPermissionBits;
    const Status status = sys_.MakeFolderAt(parent, step.target.name, mode | kOwnerAll);
    if (!status.ok() && status.code() != StatusCode::kExists) return Failed(status);
    const Result<FileInfo> info = sys_.StatAt(parent, step.target.name);
    if (!info.ok()) {
        if (status.ok()) (void)sys_.RemoveFolderAt(parent, step.target.name);
        return Failed(info.status());
    }
    if (info->kind != FileKind::kFolder) return {ItemReason::kTargetTaken, {}};
    made = FileIdentity::Of(*info);
    const Result<FileHandle> folder = sys_.OpenFolderAt(parent, step.target.name);
    if (!folder.ok()) return {};  // what goes into it will say why not
    if ((info->mode & kOwnerAll) != kOwnerAll) (void)sys_.SetMode(*folder, mode | kOwnerAll);
    if (status.ok()) CopyFolderAttributes(step, *folder);
    return {};
}

void StepActor::CopyFolderAttributes(const Step& step, const FileHandle& folder) {
    Folder sourceParent;
    if (step.source.folder == kNoIndex || !OpenFolder(step.source.folder, false, sourceParent).ok()) return;
    const Result<FileHandle> source = sys_.OpenFolderAt(*sourceParent, step.source.name);
    if (!source.ok() || !sys_.CopyUserAttributes(*source, folder).ok()) {
        lostAttributes_.store(true, std::memory_order_relaxed);
    }
}

}  // namespace kinsort
