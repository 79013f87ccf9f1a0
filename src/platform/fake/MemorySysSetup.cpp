// What tests do to the in-memory file system behind the engine's back, and its power switch.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "platform/fake/MemorySys.h"

namespace kinsort {
namespace {

void Require(bool holds, const char* what, std::string_view path) {
    if (holds) return;
    std::fprintf(stderr, "MemorySys: %s: %.*s\n", what, static_cast<int>(path.size()), path.data());
    std::abort();
}

// The folder part and the last name.
std::pair<std::string_view, std::string_view> SplitPath(std::string_view path) {
    Require(path.starts_with('/') && path.size() > 1 && !path.ends_with('/'), "not an absolute path to a name", path);
    const size_t cut = path.rfind('/');
    return {path.substr(0, cut), path.substr(cut + 1)};
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const TreeEntry& entry) {
    constexpr const char* kKinds[] = {"file", "folder", "link", "other"};
    out << kKinds[static_cast<size_t>(entry.kind)] << " \"" << entry.path << "\" mode " << std::oct << entry.mode
        << std::dec << " links " << entry.links << " inode " << entry.inode << " modified " << entry.modifiedNs;
    if (entry.content.size() > 60) return out << " with " << entry.content.size() << " bytes";
    return out << " \"" << entry.content << "\"";
}

// --- finding and adding --------------------------------------------------------------------------------------------

NodeId MemorySys::FindNode(std::string_view path) const {
    NodeId node = disk_.root();
    while (!path.empty() && node != 0) {
        path.remove_prefix(1);  // the separator
        const std::string_view name = path.substr(0, path.find('/'));
        path.remove_prefix(name.size());
        if (!name.empty()) node = disk_.Find(node, name);
    }
    return node;
}

NodeId MemorySys::NodeAt(std::string_view path) const {
    const NodeId node = FindNode(path);
    Require(node != 0, "nothing there", path);
    return node;
}

MemorySys::Place MemorySys::Prepare(std::string_view path) {
    const auto [above, name] = SplitPath(path);
    NodeId folder = disk_.root();
    if (!above.empty()) {
        const Place place = Prepare(above);
        folder = place.node != 0 ? place.node : AddSafely(place, FileKind::kFolder, 0755);
    }
    Require(disk_.node(folder).kind == FileKind::kFolder, "not a folder", above);
    return {folder, std::string(name), disk_.Find(folder, name)};
}

NodeId MemorySys::AddSafely(const Place& place, FileKind kind, uint32_t mode) {
    const NodeId node = disk_.Create(disk_.node(place.folder).volume, kind, mode, kUser, Tick());
    Require(node != 0, "no room to set up", place.name);
    const MemoryEntry entry{place.name, node};
    disk_.ApplySafely({.changes = {{place.folder, disk_.Fold(place.folder, place.name), entry}}, .creates = node});
    disk_.SyncNode(node);
    return node;
}

void MemorySys::RemoveSafely(const Place& place) {
    const bool folder = disk_.node(place.node).kind == FileKind::kFolder;
    Require(!disk_.IsTop(place.node), "a mounted volume", place.name);
    const auto entries = disk_.node(place.node).entries;
    for (const auto& [key, entry] : entries)
        RemoveSafely({place.node, entry.name, disk_.Find(place.node, entry.name)});
    disk_.ApplySafely({.changes = {{place.folder, disk_.Fold(place.folder, place.name), std::nullopt}},
                       .removes = folder ? place.node : 0});
    disk_.ReleaseIfUnused(place.node, opened_.contains(place.node));
}

void MemorySys::MakeFolders(std::string_view path, uint32_t mode) {
    const std::lock_guard lock(mutex_);
    const Place place = Prepare(path);
    if (place.node == 0) AddSafely(place, FileKind::kFolder, mode);
}

void MemorySys::WriteFile(std::string_view path, std::string_view content, uint32_t mode) {
    const std::lock_guard lock(mutex_);
    const Place place = Prepare(path);
    const NodeId node = place.node != 0 ? place.node : AddSafely(place, FileKind::kFile, mode);
    MemoryNode& file = disk_.node(node);
    Require(file.kind == FileKind::kFile, "not a file", path);
    disk_.GivePages(file.volume, disk_.PagesOf(file));
    file.content = {};
    file.content.Write(0, std::as_bytes(std::span(content)));
    Require(disk_.TakePages(file.volume, disk_.PagesOf(file)), "no room to set up", path);
    Touch(node, true);
    disk_.SyncNode(node);
}

void MemorySys::MakeLink(std::string_view linkText, std::string_view path) {
    const std::lock_guard lock(mutex_);
    disk_.node(AddSafely(Prepare(path), FileKind::kLink, 0777)).linkText = linkText;
}

void MemorySys::MakeOther(std::string_view path) {
    const std::lock_guard lock(mutex_);
    AddSafely(Prepare(path), FileKind::kOther, 0644);
}

void MemorySys::SetUserAttribute(std::string_view path, std::string_view name, std::string_view value) {
    const std::lock_guard lock(mutex_);
    MemoryNode& node = disk_.node(NodeAt(path));
    node.attributes.user[std::string(name)] = value;
    node.syncedAttributes.user[std::string(name)] = value;
}

void MemorySys::SetModeOf(std::string_view path, uint32_t mode) {
    const std::lock_guard lock(mutex_);
    MemoryNode& node = disk_.node(NodeAt(path));
    node.attributes.mode = node.syncedAttributes.mode = mode;
}

void MemorySys::SetOwnerOf(std::string_view path, uint32_t owner) {
    const std::lock_guard lock(mutex_);
    disk_.node(NodeAt(path)).owner = owner;
}

void MemorySys::SetImmutable(std::string_view path, bool immutable) {
    const std::lock_guard lock(mutex_);
    disk_.node(NodeAt(path)).immutable = immutable;
}

void MemorySys::Remove(std::string_view path) {
    const std::lock_guard lock(mutex_);
    if (FindNode(path) != 0) RemoveSafely(Prepare(path));
}

void MemorySys::Move(std::string_view from, std::string_view to) {
    const std::lock_guard lock(mutex_);
    const Place source = Prepare(from);
    const Place target = Prepare(to);
    Require(source.node != 0, "nothing there", from);
    Require(disk_.node(source.folder).volume == disk_.node(target.folder).volume, "on another volume", to);
    if (target.node != 0) RemoveSafely(target);
    disk_.ApplySafely(
        {.changes = {{source.folder, disk_.Fold(source.folder, source.name), std::nullopt},
                     {target.folder, disk_.Fold(target.folder, target.name), MemoryEntry{target.name, source.node}}},
         .movesFolder = disk_.node(source.node).kind == FileKind::kFolder});
}

// --- looking -------------------------------------------------------------------------------------------------------

bool MemorySys::Has(std::string_view path) const {
    const std::lock_guard lock(mutex_);
    return FindNode(path) != 0;
}

std::optional<std::string> MemorySys::ReadFile(std::string_view path) const {
    const std::lock_guard lock(mutex_);
    const NodeId node = FindNode(path);
    if (node == 0 || disk_.node(node).kind != FileKind::kFile) return std::nullopt;
    return disk_.node(node).content.ToText();
}

std::optional<FileInfo> MemorySys::Look(std::string_view path) const {
    const std::lock_guard lock(mutex_);
    const NodeId node = FindNode(path);
    if (node == 0) return std::nullopt;
    return Describe(node);
}

TreeEntry MemorySys::DescribeEntry(NodeId node, std::string path) const {
    const MemoryNode& seen = disk_.node(node);
    return {.path = std::move(path),
            .kind = seen.kind,
            .content = seen.kind == FileKind::kLink ? seen.linkText : seen.content.ToText(),
            .mode = seen.attributes.mode,
            .links = seen.names,
            .inode = seen.inode,
            .modifiedNs = seen.attributes.modifiedNs,
            .userAttributes = seen.attributes.user};
}

void MemorySys::ListInto(NodeId folder, const std::string& prefix, std::vector<TreeEntry>& entries) const {
    for (const auto& [key, entry] : disk_.node(folder).entries) {
        const NodeId node = disk_.Find(folder, entry.name);
        entries.push_back(DescribeEntry(node, prefix + entry.name));
        if (disk_.node(node).kind == FileKind::kFolder) ListInto(node, prefix + entry.name + "/", entries);
    }
}

std::vector<TreeEntry> MemorySys::ListTree(std::string_view path) const {
    const std::lock_guard lock(mutex_);
    std::vector<TreeEntry> entries;
    ListInto(NodeAt(path), "", entries);
    std::sort(entries.begin(), entries.end(), [](const TreeEntry& a, const TreeEntry& b) { return a.path < b.path; });
    return entries;
}

// --- volumes and the process ---------------------------------------------------------------------------------------

void MemorySys::AddVolume(std::string_view path, const MemoryVolumeOptions& options) {
    const std::lock_guard lock(mutex_);
    const Place place = Prepare(path);
    disk_.Mount(place.node != 0 ? place.node : AddSafely(place, FileKind::kFolder, 0755), options, Tick());
}

void MemorySys::ChangeVolume(std::string_view path, const MemoryVolumeOptions& options) {
    const std::lock_guard lock(mutex_);
    disk_.volumes()[disk_.node(NodeAt(path)).volume].options = options;
}

uint64_t MemorySys::UsedBytes(std::string_view path) const {
    const std::lock_guard lock(mutex_);
    return disk_.VolumeOf(NodeAt(path)).usedPages * MemoryContent::kPageSize;
}

uint64_t MemorySys::UsedFiles(std::string_view path) const {
    const std::lock_guard lock(mutex_);
    return disk_.VolumeOf(NodeAt(path)).usedFiles;
}

void MemorySys::SetClockStep(int64_t nanoseconds) {
    const std::lock_guard lock(mutex_);
    clockStep_ = nanoseconds;
}

size_t MemorySys::openHandles() const {
    const std::lock_guard lock(mutex_);
    return handles_.size();
}

size_t MemorySys::unsafeOperations() const {
    const std::lock_guard lock(mutex_);
    return disk_.unsafeOperations();
}

// --- the power switch ----------------------------------------------------------------------------------------------

MemorySys::MemorySys(const MemorySys& other, uint64_t seed) : disk_(other.disk_) {
    nextHandle_ = other.nextHandle_;
    boot_ = other.boot_;
    clock_ = other.clock_;
    clockStep_ = other.clockStep_;
    PowerCut(seed);
}

std::unique_ptr<MemorySys> MemorySys::AfterPowerCut(uint64_t seed) const {
    const std::lock_guard lock(mutex_);
    return std::unique_ptr<MemorySys>(new MemorySys(*this, seed));
}

void MemorySys::PowerCut(uint64_t seed) {
    const std::lock_guard lock(mutex_);
    handles_.clear();
    opened_.clear();
    locks_.clear();
    firstLiveHandle_ = nextHandle_;
    ++boot_;
    disk_.CutPower(seed);
}

}  // namespace kinsort
