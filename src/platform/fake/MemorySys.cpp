#include "platform/fake/MemorySys.h"

#include <algorithm>

namespace kinsort {
namespace {

constexpr uint32_t kModeBits = 07777;
constexpr uint32_t kSticky = 01000;
constexpr uint32_t kProcessMask = 022;
constexpr size_t kMaxNameLength = 255;
constexpr int kMaxLinksOnTheWay = 40;

StatusCode CheckName(std::string_view name) {
    const bool bad = name.empty() || name == "." || name == ".." || name.find('/') != std::string_view::npos ||
                     name.find('\0') != std::string_view::npos;
    if (bad) return StatusCode::kInvalid;
    return name.size() > kMaxNameLength ? StatusCode::kNameTooLong : StatusCode::kOk;
}

// FNV-1a: an order of the entries that no caller can mistake for a promise.
uint64_t ScatterOrder(std::string_view name) {
    uint64_t hash = 0xcbf29ce484222325;
    for (const char c : name)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

}  // namespace

MemorySys::MemorySys(const MemoryVolumeOptions& root) : disk_(root) {}

// --- who may do what -----------------------------------------------------------------------------------------------

int64_t MemorySys::Tick() {
    return clock_ += clockStep_;
}

bool MemorySys::Allowed(NodeId node, Access access) const {
    const MemoryNode& asked = disk_.node(node);
    const uint32_t bits = asked.owner == kUser ? asked.attributes.mode >> 6 : asked.attributes.mode;
    return (bits & static_cast<uint32_t>(access)) != 0;
}

bool MemorySys::OwnerOf(NodeId node) const {
    return disk_.node(node).owner == kUser;
}

Status MemorySys::MayChangeNames(NodeId folder) const {
    const MemoryNode& node = disk_.node(folder);
    if (disk_.OptionsOf(folder).readOnly) return Failure(StatusCode::kReadOnly);
    if (node.immutable || !Allowed(folder, Access::kWrite)) return Failure(StatusCode::kAccessDenied);
    return {};
}

Status MemorySys::MayRemove(const Place& place) const {
    if (Status status = MayChangeNames(place.folder); !status.ok()) return status;
    const bool sticky = (disk_.node(place.folder).attributes.mode & kSticky) != 0;
    if (disk_.node(place.node).immutable || (sticky && !OwnerOf(place.folder) && !OwnerOf(place.node)))
        return Failure(StatusCode::kAccessDenied);
    return disk_.IsTop(place.node) ? Failure(StatusCode::kBusy) : Status();
}

Status MemorySys::MayRename(const Place& from, const Place& to, bool exchange) const {
    if (from.node == 0 || (exchange && to.node == 0)) return Failure(StatusCode::kNotFound);
    if (!exchange && to.node != 0) return Failure(StatusCode::kExists);
    const bool intoItself =
        disk_.LiesInside(to.folder, from.node) || (exchange && disk_.LiesInside(from.folder, to.node));
    if (intoItself) return Failure(StatusCode::kInvalid);
    const MemoryVolumeOptions& options = disk_.OptionsOf(from.folder);
    if (!(exchange ? options.exchange : options.noReplace)) return Failure(StatusCode::kUnsupported);
    if (Status status = MayRemove(from); !status.ok()) return status;
    if (Status status = exchange ? MayRemove(to) : MayChangeNames(to.folder); !status.ok()) return status;
    // A folder that changes its place holds the name of the one above it.
    for (const NodeId moved : {from.node, to.node}) {
        const bool folder = moved != 0 && disk_.node(moved).kind == FileKind::kFolder;
        if (folder && from.folder != to.folder && !Allowed(moved, Access::kWrite))
            return Failure(StatusCode::kAccessDenied);
    }
    return {};
}

// --- handles and names ---------------------------------------------------------------------------------------------

Result<MemorySys::Opened> MemorySys::Use(const FileHandle& handle) const {
    const auto found = handles_.find(handle.number());
    if (found != handles_.end()) return found->second;
    const bool died = handle.number() >= 0 && handle.number() < firstLiveHandle_;
    return Failure(died ? StatusCode::kStale : StatusCode::kInvalid);
}

Result<NodeId> MemorySys::UseFolder(const FileHandle& handle) const {
    Result<Opened> opened = Use(handle);
    if (!opened.ok()) return opened.status();
    if (disk_.node(opened->node).kind != FileKind::kFolder) return Failure(StatusCode::kNotFolder);
    return opened->node;
}

Result<MemorySys::Place> MemorySys::LookUp(const FileHandle& folder, std::string_view name) const {
    Result<NodeId> holder = UseFolder(folder);
    if (!holder.ok()) return holder.status();
    if (const StatusCode code = CheckName(name); code != StatusCode::kOk) return Failure(code);
    if (!Allowed(*holder, Access::kEnter)) return Failure(StatusCode::kAccessDenied);
    if (disk_.node(*holder).names == 0) return Failure(StatusCode::kNotFound);
    return Place{*holder, std::string(name), disk_.Find(*holder, name)};
}

Result<MemorySys::Place> MemorySys::LookUpExisting(const FileHandle& folder, std::string_view name) const {
    Result<Place> place = LookUp(folder, name);
    if (place.ok() && place->node == 0) return Failure(StatusCode::kNotFound);
    return place;
}

Result<MemorySys::Place> MemorySys::LookUpFree(const FileHandle& folder, std::string_view name) const {
    Result<Place> place = LookUp(folder, name);
    if (!place.ok()) return place;
    if (place->node != 0) return Failure(StatusCode::kExists);
    if (Status status = MayChangeNames(place->folder); !status.ok()) return status;
    return place;
}

FileHandle MemorySys::Open(NodeId node, bool writable) {
    handles_[nextHandle_] = {node, writable};
    ++opened_[node];
    return FileHandle(this, nextHandle_++);
}

Status MemorySys::Close(int number) {
    const std::lock_guard lock(mutex_);
    const auto found = handles_.find(number);
    if (found == handles_.end()) return Failure(number < firstLiveHandle_ ? StatusCode::kStale : StatusCode::kInvalid);
    const NodeId node = found->second.node;
    handles_.erase(found);
    const auto holder = locks_.find(node);
    if (holder != locks_.end() && holder->second == number) locks_.erase(holder);
    if (--opened_[node] > 0) return {};
    opened_.erase(node);
    disk_.ReleaseIfUnused(node, false);
    return {};
}

void MemorySys::Touch(NodeId node, bool content) {
    MemoryNode& touched = disk_.node(node);
    touched.changedNs = Tick();
    if (content) touched.attributes.modifiedNs = touched.changedNs;
    touched.dirty = true;
}

Result<NodeId> MemorySys::Create(const Place& place, FileKind kind, uint32_t mode) {
    const NodeId node = disk_.Create(disk_.node(place.folder).volume, kind, mode & kModeBits, kUser, Tick());
    if (node == 0) return Failure(StatusCode::kNoSpace);
    return node;
}

void MemorySys::AddName(const Place& place, NodeId node, bool creates) {
    const MemoryEntry entry{place.name, node};
    disk_.Apply(
        {.changes = {{place.folder, disk_.Fold(place.folder, place.name), entry}}, .creates = creates ? node : 0});
    Touch(place.folder, true);
    disk_.node(node).changedNs = clock_;
}

void MemorySys::RemoveName(const Place& place) {
    const bool folder = disk_.node(place.node).kind == FileKind::kFolder;
    disk_.Apply({.changes = {{place.folder, disk_.Fold(place.folder, place.name), std::nullopt}},
                 .removes = folder ? place.node : 0});
    Touch(place.folder, true);
    disk_.node(place.node).changedNs = clock_;
    disk_.ReleaseIfUnused(place.node, opened_.contains(place.node));
}

// --- folders -------------------------------------------------------------------------------------------------------

Result<NodeId> MemorySys::Walk(NodeId start, std::string_view path, int& linksLeft) const {
    NodeId node = path.starts_with('/') ? disk_.root() : start;
    while (!path.empty()) {
        const size_t end = std::min(path.find('/'), path.size());
        const std::string_view name = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (name.empty() || name == ".") continue;
        if (disk_.node(node).kind != FileKind::kFolder) return Failure(StatusCode::kNotFolder);
        if (!Allowed(node, Access::kEnter)) return Failure(StatusCode::kAccessDenied);
        if (name.size() > kMaxNameLength) return Failure(StatusCode::kNameTooLong);
        const NodeId next = name == ".." ? disk_.ParentOf(node) : disk_.Find(node, name);
        if (next == 0) return Failure(StatusCode::kNotFound);
        if (disk_.node(next).kind == FileKind::kLink) {
            if (linksLeft-- == 0) return Failure(StatusCode::kIsLink);
            Result<NodeId> target = Walk(node, disk_.node(next).linkText, linksLeft);
            if (!target.ok()) return target;
            node = *target;
        } else {
            node = next;
        }
    }
    return node;
}

Result<FileHandle> MemorySys::OpenFolder(std::string_view storedPath) {
    const std::lock_guard lock(mutex_);
    if (!storedPath.starts_with('/') || storedPath.find('\0') != std::string_view::npos)
        return Failure(StatusCode::kInvalid);
    int linksLeft = kMaxLinksOnTheWay;
    Result<NodeId> node = Walk(disk_.root(), storedPath, linksLeft);
    if (!node.ok()) return node.status();
    if (disk_.node(*node).kind != FileKind::kFolder) return Failure(StatusCode::kNotFolder);
    if (!Allowed(*node, Access::kRead)) return Failure(StatusCode::kAccessDenied);
    return Open(*node, false);
}

Result<FileHandle> MemorySys::OpenFolderAt(const FileHandle& folder, std::string_view name) {
    const std::lock_guard lock(mutex_);
    Result<Place> place = LookUpExisting(folder, name);
    if (!place.ok()) return place.status();
    const FileKind kind = disk_.node(place->node).kind;
    if (kind == FileKind::kLink) return Failure(StatusCode::kIsLink);
    if (kind != FileKind::kFolder) return Failure(StatusCode::kNotFolder);
    if (!Allowed(place->node, Access::kRead)) return Failure(StatusCode::kAccessDenied);
    return Open(place->node, false);
}

Result<FileHandle> MemorySys::OpenParent(const FileHandle& folder) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> node = UseFolder(folder);
    if (!node.ok()) return node.status();
    if (!Allowed(*node, Access::kEnter)) return Failure(StatusCode::kAccessDenied);
    if (disk_.node(*node).names == 0) return Failure(StatusCode::kNotFound);
    return Open(disk_.ParentOf(*node), false);
}

Result<std::string> MemorySys::PathOf(const FileHandle& folder) {
    const std::lock_guard lock(mutex_);
    Result<NodeId> start = UseFolder(folder);
    if (!start.ok()) return start.status();
    std::string path;
    for (NodeId node = *start; node != disk_.root(); node = disk_.node(node).parent) {
        if (disk_.node(node).names == 0) return Failure(StatusCode::kNotFound);
        if (disk_.IsTop(node)) node = disk_.MountedOn(node);
        const auto& siblings = disk_.node(disk_.node(node).parent).entries;
        const auto own = std::find_if(siblings.begin(), siblings.end(),
                                      [&](const auto& sibling) { return sibling.second.node == node; });
        path.insert(0, "/" + own->second.name);
    }
    return path.empty() ? "/" : path;
}

Status MemorySys::ReadFolder(const FileHandle& folder, const std::function<bool(const FolderEntry&)>& sink) {
    std::vector<FolderEntry> entries;
    {
        const std::lock_guard lock(mutex_);
        Result<NodeId> node = UseFolder(folder);
        if (!node.ok()) return node.status();
        if (!Allowed(*node, Access::kRead)) return Failure(StatusCode::kAccessDenied);
        const bool tellKinds = disk_.OptionsOf(*node).kindsInListing;
        for (const auto& [key, entry] : disk_.node(*node).entries)
            entries.push_back({entry.name, tellKinds ? disk_.node(entry.node).kind : FileKind::kOther});
    }
    std::sort(entries.begin(), entries.end(), [](const FolderEntry& a, const FolderEntry& b) {
        return std::pair(ScatterOrder(a.name), a.name) < std::pair(ScatterOrder(b.name), b.name);
    });
    for (const FolderEntry& entry : entries) {
        if (!sink(entry)) break;
    }
    return {};
}

Status MemorySys::MakeFolderAt(const FileHandle& folder, std::string_view name, uint32_t mode) {
    const std::lock_guard lock(mutex_);
    Result<Place> place = LookUpFree(folder, name);
    if (!place.ok()) return place.status();
    Result<NodeId> made = Create(*place, FileKind::kFolder, mode & ~kProcessMask);
    if (made.ok()) AddName(*place, *made, true);
    return made.status();
}

Status MemorySys::RemoveFolderAt(const FileHandle& folder, std::string_view name) {
    const std::lock_guard lock(mutex_);
    Result<Place> place = LookUpExisting(folder, name);
    if (!place.ok()) return place.status();
    if (disk_.node(place->node).kind != FileKind::kFolder) return Failure(StatusCode::kNotFolder);
    if (Status status = MayRemove(*place); !status.ok()) return status;
    if (!disk_.node(place->node).entries.empty()) return Failure(StatusCode::kNotEmpty);
    RemoveName(*place);
    return {};
}

// --- names ---------------------------------------------------------------------------------------------------------

Status MemorySys::RenameNoReplace(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                                  std::string_view to) {
    const std::lock_guard lock(mutex_);
    return Rename(LookUp(fromFolder, from), LookUp(toFolder, to), false);
}

Status MemorySys::Exchange(const FileHandle& folderA, std::string_view a, const FileHandle& folderB,
                           std::string_view b) {
    const std::lock_guard lock(mutex_);
    return Rename(LookUp(folderA, a), LookUp(folderB, b), true);
}

Status MemorySys::Rename(const Result<Place>& from, const Result<Place>& to, bool exchange) {
    if (!from.ok()) return from.status();
    if (!to.ok()) return to.status();
    if (disk_.node(from->folder).volume != disk_.node(to->folder).volume) return Failure(StatusCode::kCrossVolume);
    if (Status status = MayRename(*from, *to, exchange); !status.ok()) return status;
    if (from->node == to->node) return {};
    NameOperation operation;
    std::optional<MemoryEntry> back;
    if (exchange) back = MemoryEntry{from->name, to->node};
    operation.changes = {{from->folder, disk_.Fold(from->folder, from->name), back},
                         {to->folder, disk_.Fold(to->folder, to->name), MemoryEntry{to->name, from->node}}};
    for (const NodeId moved : {from->node, to->node}) {
        if (moved == 0) continue;
        operation.movesFolder = operation.movesFolder || disk_.node(moved).kind == FileKind::kFolder;
        Touch(moved, false);
    }
    disk_.Apply(std::move(operation));
    Touch(from->folder, true);
    Touch(to->folder, true);
    return {};
}

Status MemorySys::LinkAt(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                         std::string_view to) {
    const std::lock_guard lock(mutex_);
    Result<Place> source = LookUpExisting(fromFolder, from);
    if (!source.ok()) return source.status();
    Result<Place> target = LookUpFree(toFolder, to);
    if (!target.ok()) return target.status();
    const MemoryNode& node = disk_.node(source->node);
    if (node.volume != disk_.node(target->folder).volume) return Failure(StatusCode::kCrossVolume);
    const bool canLink = disk_.OptionsOf(source->node).hardLinks && node.kind != FileKind::kFolder;
    if (!canLink || node.immutable) return Failure(StatusCode::kAccessDenied);
    AddName(*target, source->node, false);
    return {};
}

Status MemorySys::RemoveFileAt(const FileHandle& folder, std::string_view name) {
    const std::lock_guard lock(mutex_);
    Result<Place> place = LookUpExisting(folder, name);
    if (!place.ok()) return place.status();
    if (disk_.node(place->node).kind == FileKind::kFolder) return Failure(StatusCode::kIsFolder);
    if (Status status = MayRemove(*place); !status.ok()) return status;
    RemoveName(*place);
    return {};
}

Result<std::string> MemorySys::ReadLinkAt(const FileHandle& folder, std::string_view name) {
    const std::lock_guard lock(mutex_);
    Result<Place> place = LookUpExisting(folder, name);
    if (!place.ok()) return place.status();
    if (disk_.node(place->node).kind != FileKind::kLink) return Failure(StatusCode::kInvalid);
    return disk_.node(place->node).linkText;
}

Status MemorySys::MakeLinkAt(std::string_view linkText, const FileHandle& folder, std::string_view name) {
    const std::lock_guard lock(mutex_);
    Result<Place> place = LookUpFree(folder, name);
    if (!place.ok()) return place.status();
    if (linkText.empty()) return Failure(StatusCode::kNotFound);
    Result<NodeId> made = Create(*place, FileKind::kLink, 0777);
    if (!made.ok()) return made.status();
    disk_.node(*made).linkText = linkText;
    AddName(*place, *made, true);
    return {};
}

}  // namespace kinsort
