#include "platform/fake/MemoryDisk.h"

#include <algorithm>
#include <utility>

namespace kinsort {
namespace {

using Key = std::pair<NodeId, std::string>;

void SetEntry(std::map<std::string, MemoryEntry>& entries, const NameChange& change) {
    if (change.entry) {
        entries[change.key] = *change.entry;
    } else {
        entries.erase(change.key);
    }
}

}  // namespace

MemoryDisk::MemoryDisk(const MemoryVolumeOptions& root) {
    volumes_.push_back({.options = root});
    volumes_[0].top = Create(0, FileKind::kFolder, 0755, 0, 0);
    node(volumes_[0].top).parent = volumes_[0].top;
    node(volumes_[0].top).names = 1;
    SyncNode(volumes_[0].top);
}

void MemoryDisk::Mount(NodeId folder, const MemoryVolumeOptions& options, int64_t now) {
    const size_t index = volumes_.size();
    volumes_.push_back({.options = options, .mountedOn = folder});
    const NodeId top = Create(index, FileKind::kFolder, node(folder).attributes.mode, node(folder).owner, now);
    node(top).parent = top;
    node(top).names = 1;
    volumes_[index].top = top;
    node(folder).coveredBy = top;
    SyncNode(top);
}

std::string MemoryDisk::Fold(NodeId folder, std::string_view name) const {
    std::string key(name);
    if (!volumes_[node(folder).volume].options.foldsCase) return key;
    for (char& c : key) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return key;
}

NodeId MemoryDisk::Find(NodeId folder, std::string_view name) const {
    const MemoryNode& holder = node(folder);
    const auto found = holder.entries.find(Fold(folder, name));
    if (found == holder.entries.end()) return 0;
    const NodeId id = found->second.node;
    return node(id).coveredBy != 0 ? node(id).coveredBy : id;
}

NodeId MemoryDisk::ParentOf(NodeId folder) const {
    const NodeId parent = node(folder).parent;
    if (parent != folder) return parent;
    const NodeId covered = volumes_[node(folder).volume].mountedOn;
    return covered == 0 ? folder : ParentOf(covered);
}

bool MemoryDisk::LiesInside(NodeId folder, NodeId other) const {
    while (folder != other) {
        const NodeId above = node(folder).parent;
        if (above == folder || above == 0) return false;
        folder = above;
    }
    return true;
}

NodeId MemoryDisk::Create(size_t volume, FileKind kind, uint32_t mode, uint32_t owner, int64_t now) {
    MemoryVolume& holder = volumes_[volume];
    if (holder.usedFiles >= holder.options.files) return 0;
    if (!TakePages(volume, kind == FileKind::kFolder ? 1 : 0)) return 0;
    ++holder.usedFiles;
    const NodeId id = nextNode_++;
    MemoryNode& made = nodes_[id];
    made.kind = kind;
    made.volume = volume;
    if (holder.freeInodes.empty()) {
        made.inode = holder.nextInode++;
    } else {
        made.inode = holder.freeInodes.extract(holder.freeInodes.begin()).value();
    }
    made.owner = owner;
    made.createdNs = made.changedNs = now;
    made.attributes = {.mode = mode, .accessedNs = now, .modifiedNs = now, .user = {}};
    made.syncedAttributes = made.attributes;
    return id;
}

bool MemoryDisk::TakePages(size_t volume, uint64_t pages) {
    MemoryVolume& holder = volumes_[volume];
    const uint64_t room = holder.options.bytes / MemoryContent::kPageSize;
    if (room < holder.usedPages || room - holder.usedPages < pages) return false;
    holder.usedPages += pages;
    return true;
}

uint64_t MemoryDisk::PagesOf(const MemoryNode& node) const {
    if (node.kind == FileKind::kFolder) return 1;
    return node.reservedPages + node.content.CountPages(node.reservedPages);
}

void MemoryDisk::ReleaseIfUnused(NodeId id, bool open) {
    MemoryNode& unused = node(id);
    if (open || unused.names > 0 || unused.released) return;
    unused.released = true;
    GivePages(unused.volume, PagesOf(unused));
    --volumes_[unused.volume].usedFiles;
    released_.insert(id);
    if (operations_.empty()) ForgetReleased();
}

void MemoryDisk::Apply(NameOperation operation) {
    for (const NameChange& change : operation.changes) {
        MemoryNode& folder = node(change.folder);
        const auto before = folder.entries.find(change.key);
        if (before != folder.entries.end()) --node(before->second.node).names;
        if (change.entry) {
            MemoryNode& named = node(change.entry->node);
            ++named.names;
            named.nameless = false;
            if (named.kind == FileKind::kFolder) named.parent = change.folder;
        }
        SetEntry(folder.entries, change);
    }
    operations_.push_back(std::move(operation));
}

void MemoryDisk::ApplySafely(NameOperation operation) {
    Apply(std::move(operation));
    std::vector<bool> last(operations_.size());
    last.back() = true;
    MakeSafe(AddNeeded(std::move(last)));
}

void MemoryDisk::SyncNode(NodeId id) {
    MemoryNode& synced = node(id);
    synced.syncedAttributes = synced.attributes;
    synced.syncedContent = synced.content;
    synced.dirty = false;
    if (synced.kind != FileKind::kFolder) return;
    std::vector<bool> inFolder;
    for (const NameOperation& operation : operations_) {
        inFolder.push_back(std::any_of(operation.changes.begin(), operation.changes.end(),
                                       [&](const NameChange& change) { return change.folder == id; }));
    }
    MakeSafe(AddNeeded(std::move(inFolder)));
}

void MemoryDisk::SyncVolume(size_t volume) {
    std::vector<bool> chosen;
    for (const NameOperation& operation : operations_)
        chosen.push_back(node(operation.changes.front().folder).volume == volume);
    MakeSafe(chosen);
    for (auto& [id, synced] : nodes_) {
        if (synced.volume != volume || !synced.dirty) continue;
        synced.syncedAttributes = synced.attributes;
        synced.syncedContent = synced.content;
        synced.dirty = false;
    }
}

// The chosen operations and all that they need, from the last one back.
std::vector<bool> MemoryDisk::AddNeeded(std::vector<bool> chosen) const {
    std::set<Key> neededKeys;
    std::set<NodeId> neededNodes;     // whose creation is needed
    std::set<NodeId> emptiedFolders;  // everything in them is needed
    bool needFolderMoves = false;
    for (size_t index = operations_.size(); index-- > 0;) {
        const NameOperation& operation = operations_[index];
        const bool created = operation.creates != 0 && neededNodes.contains(operation.creates);
        bool needed = chosen[index] || created || (operation.movesFolder && needFolderMoves);
        for (const NameChange& change : operation.changes) {
            needed =
                needed || emptiedFolders.contains(change.folder) || neededKeys.contains({change.folder, change.key});
        }
        if (!needed) continue;
        chosen[index] = true;
        for (const NameChange& change : operation.changes) {
            neededKeys.insert({change.folder, change.key});
            if (change.entry) neededNodes.insert(change.entry->node);
            // What is moved must not be lost with the folder it goes to.
            if (operation.changes.size() > 1 || created) neededNodes.insert(change.folder);
        }
        if (operation.removes != 0) emptiedFolders.insert(operation.removes);
        needFolderMoves = needFolderMoves || operation.movesFolder;
    }
    return chosen;
}

std::vector<bool> MemoryDisk::ChooseSurvivors(std::mt19937_64& random) const {
    constexpr uint64_t kSurvivalInSixteenths[] = {0, 4, 8, 14, 15, 16};
    const uint64_t survival = kSurvivalInSixteenths[random() % std::size(kSurvivalInSixteenths)];
    std::vector<bool> survives(operations_.size());
    std::set<Key> lostKeys;
    std::set<NodeId> lostNodes;    // not created
    std::set<NodeId> lostFolders;  // something in them was lost
    bool lostFolderMove = false;
    for (size_t index = 0; index < operations_.size(); ++index) {
        const NameOperation& operation = operations_[index];
        bool lost = random() % 16 >= survival || (operation.movesFolder && lostFolderMove) ||
                    lostFolders.contains(operation.removes);
        for (const NameChange& change : operation.changes) {
            lost = lost || lostKeys.contains({change.folder, change.key}) || lostNodes.contains(change.folder) ||
                   (change.entry && lostNodes.contains(change.entry->node));
        }
        survives[index] = !lost;
        if (!lost) continue;
        for (const NameChange& change : operation.changes) {
            lostKeys.insert({change.folder, change.key});
            lostFolders.insert(change.folder);
        }
        if (operation.creates != 0) lostNodes.insert(operation.creates);
        lostFolderMove = lostFolderMove || operation.movesFolder;
    }
    return survives;
}

void MemoryDisk::MakeSafe(const std::vector<bool>& chosen) {
    std::vector<NameOperation> rest;
    for (size_t index = 0; index < operations_.size(); ++index) {
        if (!chosen[index]) {
            rest.push_back(std::move(operations_[index]));
            continue;
        }
        for (const NameChange& change : operations_[index].changes)
            SetEntry(node(change.folder).syncedEntries, change);
    }
    operations_ = std::move(rest);
    if (operations_.empty()) ForgetReleased();
}

void MemoryDisk::CutPower(uint64_t seed) {
    std::mt19937_64 random(seed);
    std::vector<bool> survivors = ChooseSurvivors(random);
    released_.clear();  // what was released may come back
    MakeSafe(survivors);
    operations_.clear();
    for (auto& [id, left] : nodes_) {
        left.entries = left.syncedEntries;
        if (!left.dirty) continue;
        left.content = MemoryContent::AfterPowerCut(left.syncedContent, left.content, random);
        if (random() % 2 == 0) left.attributes = left.syncedAttributes;
        left.syncedContent = left.content;
        left.syncedAttributes = left.attributes;
        left.dirty = false;
    }
    DropUnreachable();
}

void MemoryDisk::DropUnreachable() {
    for (auto& [id, left] : nodes_)
        left.names = 0;
    std::vector<NodeId> folders;
    for (MemoryVolume& volume : volumes_) {
        node(volume.top).names = 1;
        folders.push_back(volume.top);
        volume.usedPages = 0;
        volume.usedFiles = 0;
    }
    while (!folders.empty()) {
        const NodeId folder = folders.back();
        folders.pop_back();
        for (const auto& [key, entry] : node(folder).entries) {
            MemoryNode& named = node(entry.node);
            ++named.names;
            if (named.kind != FileKind::kFolder) continue;
            named.parent = folder;
            folders.push_back(entry.node);
        }
    }
    std::vector<NodeId> gone;
    for (auto& [id, left] : nodes_) {
        left.released = false;
        left.reservedPages = 0;  // not worth keeping through a cut
        if (left.names == 0) {
            gone.push_back(id);
            continue;
        }
        ++volumes_[left.volume].usedFiles;
        volumes_[left.volume].usedPages += PagesOf(left);
    }
    for (const NodeId id : gone)
        Forget(id);
}

void MemoryDisk::Forget(NodeId id) {
    volumes_[node(id).volume].freeInodes.insert(node(id).inode);
    nodes_.erase(id);
}

// Only while no operation is unsafe: otherwise a cut could bring such a node back.
void MemoryDisk::ForgetReleased() {
    for (const NodeId id : std::exchange(released_, {}))
        Forget(id);
}

}  // namespace kinsort
