// The state of the in-memory file system: volumes, files, names, and which of it a power cut would leave.
//
// Content and attributes of a file exist twice, as they are and as they were at its last sync. Names exist as they are
// and as they are known to be safe, with the list of operations that lie between. One operation changes one name, or
// two at once (rename, exchange), and survives a cut whole or not at all. It needs those earlier operations that
// changed the same name, that created what it names or the folder it moves something into, that moved a folder when it
// moves one, and that emptied the folder it removes. Everything else may survive without the rest: that is more than
// most real volumes lose, and what the standards allow them to.
//
// A plain value: a copy is a second disk. Not thread-safe.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Sys.h"
#include "platform/fake/MemoryContent.h"

namespace kinsort {

// What a volume can do, and how much it holds. The default is a roomy volume that can do everything.
struct MemoryVolumeOptions {
    bool nameless = true;         // files without a name
    bool noReplace = true;        // renames that promise not to replace
    bool exchange = true;         //
    bool hardLinks = true;        //
    bool clone = true;            //
    bool copyRange = true;        //
    bool holes = true;            // tells where they are; otherwise all is data
    bool reserve = true;          //
    bool userAttributes = true;   //
    bool createdTimes = true;     //
    bool kindsInListing = true;   //
    bool stableIdentity = true;   // DescribeVolume knows a number that outlives a boot
    bool foldsCase = false;       // "A" and "a" are one name (ASCII)
    bool readOnly = false;        //
    uint64_t bytes = UINT64_MAX;  // room for content, in whole pages; a folder takes one
    uint64_t files = UINT64_MAX;  // room for files, folders and links
};

using NodeId = uint64_t;  // one file, folder or link; never used twice, 0 is none

struct MemoryEntry {
    std::string name;
    NodeId node = 0;
    bool operator==(const MemoryEntry&) const = default;
};

struct MemoryAttributes {
    uint32_t mode = 0;
    int64_t accessedNs = 0;
    int64_t modifiedNs = 0;
    std::map<std::string, std::string> user;
    bool operator==(const MemoryAttributes&) const = default;
};

struct MemoryNode {
    FileKind kind = FileKind::kFile;
    size_t volume = 0;
    uint64_t inode = 0;
    uint32_t owner = 0;
    int64_t createdNs = 0;
    int64_t changedNs = 0;
    bool immutable = false;
    std::string linkText;

    MemoryAttributes attributes;
    MemoryAttributes syncedAttributes;
    MemoryContent content;
    MemoryContent syncedContent;
    bool dirty = true;
    uint64_t reservedPages = 0;

    std::map<std::string, MemoryEntry> entries;        // of a folder, by folded name
    std::map<std::string, MemoryEntry> syncedEntries;  //
    NodeId parent = 0;                                 // of a folder; a volume's top has itself
    NodeId coveredBy = 0;                              // of a folder: the top of the volume that is mounted on it

    uint32_t names = 0;     // how many entries name it
    bool nameless = false;  // made without a name, and without one still
    bool released = false;  // neither named nor open: its room is free again
};

struct NameChange {
    NodeId folder = 0;
    std::string key;                   // the folded name
    std::optional<MemoryEntry> entry;  // what stands there afterwards; nothing: the name is free
};

struct NameOperation {
    std::vector<NameChange> changes;
    NodeId creates = 0;  // the node whose first name this gives
    NodeId removes = 0;  // the folder that this removes
    bool movesFolder = false;
};

struct MemoryVolume {
    MemoryVolumeOptions options;
    NodeId top = 0;
    NodeId mountedOn = 0;
    uint64_t usedPages = 0;
    uint64_t usedFiles = 0;
    uint64_t nextInode = 2;
    std::set<uint64_t> freeInodes{};  // handed out again, lowest first, as real volumes do
};

class MemoryDisk {
  public:
    explicit MemoryDisk(const MemoryVolumeOptions& root);

    // Mounts a new volume on an existing folder.
    void Mount(NodeId folder, const MemoryVolumeOptions& options, int64_t now);

    MemoryNode& node(NodeId id) { return nodes_.at(id); }
    const MemoryNode& node(NodeId id) const { return nodes_.at(id); }
    std::vector<MemoryVolume>& volumes() { return volumes_; }
    const MemoryVolume& VolumeOf(NodeId id) const { return volumes_[node(id).volume]; }
    const MemoryVolumeOptions& OptionsOf(NodeId id) const { return VolumeOf(id).options; }
    bool IsTop(NodeId id) const { return VolumeOf(id).top == id; }
    // The folder that the volume of this node covers; 0 for the first volume.
    NodeId MountedOn(NodeId id) const { return VolumeOf(id).mountedOn; }
    NodeId root() const { return volumes_.front().top; }

    // The name as the folder's volume compares it.
    std::string Fold(NodeId folder, std::string_view name) const;
    // What stands under the name, a mounted volume's top instead of the folder it covers; 0 when nothing does.
    NodeId Find(NodeId folder, std::string_view name) const;
    // The folder above; across mounts.
    NodeId ParentOf(NodeId folder) const;
    // Whether `folder` is `other` or lies below it on the same volume.
    bool LiesInside(NodeId folder, NodeId other) const;

    // A new node without a name; 0 when the volume is full.
    NodeId Create(size_t volume, FileKind kind, uint32_t mode, uint32_t owner, int64_t now);
    // Takes `pages` of the volume's room; false when there is less.
    bool TakePages(size_t volume, uint64_t pages);
    void GivePages(size_t volume, uint64_t pages) { volumes_[volume].usedPages -= pages; }
    // Pages that the node occupies.
    uint64_t PagesOf(const MemoryNode& node) const;
    // Frees the room of a node that has neither a name nor `open` handles.
    void ReleaseIfUnused(NodeId id, bool open);

    // Carries out an operation; it is unsafe until it is made safe.
    void Apply(NameOperation operation);
    // The same, safe at once together with what it needs.
    void ApplySafely(NameOperation operation);
    void SyncNode(NodeId id);  // content and attributes, and of a folder the names in it
    void SyncVolume(size_t volume);
    // Turns the disk into what a power cut may leave of it.
    void CutPower(uint64_t seed);

    size_t unsafeOperations() const { return operations_.size(); }

  private:
    void MakeSafe(const std::vector<bool>& chosen);
    std::vector<bool> AddNeeded(std::vector<bool> chosen) const;
    std::vector<bool> ChooseSurvivors(std::mt19937_64& random) const;
    void DropUnreachable();
    void Forget(NodeId id);
    void ForgetReleased();

    std::vector<MemoryVolume> volumes_;
    std::map<NodeId, MemoryNode> nodes_;
    std::vector<NameOperation> operations_;  // not yet safe, in the order in which they were done
    std::set<NodeId> released_;
    NodeId nextNode_ = 1;
};

}  // namespace kinsort
