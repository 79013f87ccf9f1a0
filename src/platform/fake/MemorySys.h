// An in-memory file system behind Sys, for tests: the same every time it runs, with volumes that can lack features or
// room, and with a power switch.
//
//   MemorySys sys;
//   sys.WriteFile("/home/a.txt", "hello");         // set-up: safe at once
//   ... run the engine on sys ...
//   for (uint64_t seed = 0; seed < 50; ++seed) {
//       std::unique_ptr<MemorySys> after = sys.AfterPowerCut(seed);
//       EXPECT_EQ(after->ReadFile("/home/a.txt"), "hello");
//   }
//
// What is durable, and what a cut may leave, stands in MemoryDisk.h. A sync of a file makes its content, size and
// attributes safe but not its name; a sync of a folder makes the names in it safe but not the folder's own name.
//
// Inode numbers count up, and a freed one is used again as soon as its removal is safe. Times come from a clock that
// steps with every change. The user is number 1000 and owns what it creates; set-up functions ignore permissions. A
// status carries 1000 + its code as the system's number, and no text.
//
// All functions may be called from several threads at once.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Sys.h"
#include "platform/fake/MemoryDisk.h"

namespace kinsort {

// One file, folder or link as ListTree finds it.
struct TreeEntry {
    std::string path;  // below the listed folder, without a leading separator
    FileKind kind = FileKind::kFile;
    std::string content;  // of a link its text
    uint32_t mode = 0;
    uint32_t links = 0;
    uint64_t inode = 0;
    int64_t modifiedNs = 0;
    std::map<std::string, std::string> userAttributes;
    bool operator==(const TreeEntry&) const = default;
};

// One line for a test's report; long content by its length.
std::ostream& operator<<(std::ostream& out, const TreeEntry& entry);

class MemorySys final : public Sys {
  public:
    explicit MemorySys(const MemoryVolumeOptions& root = {});

    // --- setting up and looking, by absolute path without links; a missing folder above is made -----------------
    // Everything done here is safe at once. A path that makes no sense ends the test program.
    void MakeFolders(std::string_view path, uint32_t mode = 0755);
    // Creates the file or overwrites it, as an editor would that writes in place.
    void WriteFile(std::string_view path, std::string_view content, uint32_t mode = 0644);
    void MakeLink(std::string_view linkText, std::string_view path);
    void MakeOther(std::string_view path);  // a pipe
    void SetUserAttribute(std::string_view path, std::string_view name, std::string_view value);
    void SetModeOf(std::string_view path, uint32_t mode);
    void SetOwnerOf(std::string_view path, uint32_t owner);
    void SetImmutable(std::string_view path, bool immutable);  // no new name, no removal, no writing
    void Remove(std::string_view path);                        // with all that is in it; nothing when it is missing
    void Move(std::string_view from, std::string_view to);     // replaces what stands at `to`
    bool Has(std::string_view path) const;
    std::optional<std::string> ReadFile(std::string_view path) const;
    std::optional<FileInfo> Look(std::string_view path) const;
    // Everything below the folder, sorted by path; mounted volumes too.
    std::vector<TreeEntry> ListTree(std::string_view path) const;

    // Makes an existing or new folder the top of a new volume.
    void AddVolume(std::string_view path, const MemoryVolumeOptions& options);
    // Changes what the volume that holds `path` can do; what is there stays.
    void ChangeVolume(std::string_view path, const MemoryVolumeOptions& options);
    uint64_t UsedBytes(std::string_view path) const;  // of the volume, in whole pages
    uint64_t UsedFiles(std::string_view path) const;

    // What each change moves the clock on by; 0 gives all later changes one time.
    void SetClockStep(int64_t nanoseconds);

    // --- the power switch --------------------------------------------------------------------------------------
    // A new file system as a cut at this moment could have left this one; the same seed gives the same one.
    std::unique_ptr<MemorySys> AfterPowerCut(uint64_t seed) const;
    // The same done to this one. Every open handle is dead: its calls fail with kStale. Locks are free, device
    // numbers and the boot id have changed.
    void PowerCut(uint64_t seed);
    size_t unsafeOperations() const;  // names that a cut could take back
    size_t openHandles() const;       // for finding leaks

    // --- Sys -----------------------------------------------------------------------------------------------------
    Result<FileHandle> OpenFolder(std::string_view storedPath) override;
    Result<FileHandle> OpenFolderAt(const FileHandle& folder, std::string_view name) override;
    Result<FileHandle> OpenParent(const FileHandle& folder) override;
    Result<std::string> PathOf(const FileHandle& folder) override;
    Status ReadFolder(const FileHandle& folder, const std::function<bool(const FolderEntry&)>& sink) override;
    Status MakeFolderAt(const FileHandle& folder, std::string_view name, uint32_t mode) override;
    Status RemoveFolderAt(const FileHandle& folder, std::string_view name) override;
    Result<FileInfo> Stat(const FileHandle& handle) override;
    Result<FileInfo> StatAt(const FileHandle& folder, std::string_view name) override;
    Result<VolumeInfo> DescribeVolume(const FileHandle& handle) override;
    Status RenameNoReplace(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                           std::string_view to) override;
    Status Exchange(const FileHandle& folderA, std::string_view a, const FileHandle& folderB,
                    std::string_view b) override;
    Status LinkAt(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                  std::string_view to) override;
    Status RemoveFileAt(const FileHandle& folder, std::string_view name) override;
    Result<std::string> ReadLinkAt(const FileHandle& folder, std::string_view name) override;
    Status MakeLinkAt(std::string_view linkText, const FileHandle& folder, std::string_view name) override;
    Result<FileHandle> OpenForRead(const FileHandle& folder, std::string_view name) override;
    Result<FileHandle> OpenForWrite(const FileHandle& folder, std::string_view name) override;
    Result<FileHandle> CreateFileAt(const FileHandle& folder, std::string_view name, uint32_t mode) override;
    Result<FileHandle> CreateNameless(const FileHandle& folder, uint32_t mode) override;
    Status NameFile(const FileHandle& file, const FileHandle& folder, std::string_view name) override;
    Result<size_t> Read(const FileHandle& file, uint64_t offset, std::span<std::byte> buffer) override;
    Result<size_t> Write(const FileHandle& file, uint64_t offset, std::span<const std::byte> data) override;
    Result<size_t> CopyRange(const FileHandle& from, const FileHandle& to, uint64_t offset, uint64_t length) override;
    Status Clone(const FileHandle& from, const FileHandle& to) override;
    Result<uint64_t> NextData(const FileHandle& file, uint64_t offset) override;
    Result<uint64_t> NextHole(const FileHandle& file, uint64_t offset) override;
    Status SetSize(const FileHandle& file, uint64_t size) override;
    Status Reserve(const FileHandle& file, uint64_t size) override;
    Status SetMode(const FileHandle& handle, uint32_t mode) override;
    Status SetTimes(const FileHandle& handle, int64_t accessedNs, int64_t modifiedNs) override;
    Status SetTimesAt(const FileHandle& folder, std::string_view name, int64_t accessedNs, int64_t modifiedNs) override;
    Status CopyUserAttributes(const FileHandle& from, const FileHandle& to) override;
    Status Sync(const FileHandle& handle) override;
    Status SyncVolume(const FileHandle& handle) override;
    void StartWriteback(const FileHandle& file, uint64_t offset, uint64_t length) override;
    Status TryLock(const FileHandle& file) override;
    std::string BootId() override;
    uint32_t UserNumber() override;
    Status Close(int number) override;

  private:
    static constexpr uint32_t kUser = 1000;
    enum class Access : uint8_t { kNone = 0, kRead = 4, kWrite = 2, kEnter = 1 };  // the permission bits
    struct Opened {
        NodeId node = 0;
        bool writable = false;
    };
    struct Transfer {
        NodeId source = 0;
        NodeId target = 0;
    };
    // A name in an open folder, looked up: `node` is 0 when nothing stands there.
    struct Place {
        NodeId folder = 0;
        std::string name;
        NodeId node = 0;
    };

    MemorySys(const MemorySys& other, uint64_t seed);

    static Status Failure(StatusCode code) { return Status::Failure(code, 1000 + static_cast<int>(code)); }

    Result<Opened> Use(const FileHandle& handle) const;
    Result<NodeId> UseFolder(const FileHandle& handle) const;
    Result<NodeId> UseFile(const FileHandle& handle, bool forWriting) const;
    Result<Transfer> UseBoth(const FileHandle& from, const FileHandle& to, bool MemoryVolumeOptions::*feature) const;
    Result<Place> LookUp(const FileHandle& folder, std::string_view name) const;
    Result<Place> LookUpExisting(const FileHandle& folder, std::string_view name) const;
    Result<Place> LookUpFree(const FileHandle& folder, std::string_view name) const;
    Result<NodeId> Walk(NodeId start, std::string_view path, int& linksLeft) const;
    bool Allowed(NodeId node, Access access) const;
    bool OwnerOf(NodeId node) const;
    Status MayChangeNames(NodeId folder) const;
    Status MayRemove(const Place& place) const;
    Status MayRename(const Place& from, const Place& to, bool exchange) const;

    Status Rename(const Result<Place>& from, const Result<Place>& to, bool exchange);
    FileHandle Open(NodeId node, bool writable);
    Result<FileHandle> OpenFile(const FileHandle& folder, std::string_view name, bool writable);
    Result<NodeId> Create(const Place& place, FileKind kind, uint32_t mode);
    void AddName(const Place& place, NodeId node, bool creates);
    void RemoveName(const Place& place);
    void Touch(NodeId node, bool content);
    Result<size_t> WriteInto(NodeId file, uint64_t offset, std::span<const std::byte> data);
    Status MayChangeAttributes(NodeId node) const;
    Status SetTimesOf(NodeId node, int64_t accessedNs, int64_t modifiedNs);
    size_t MakeRoom(NodeId file, uint64_t offset, size_t length);
    FileInfo Describe(NodeId node) const;
    int64_t Tick();

    // Of the set-up functions.
    NodeId FindNode(std::string_view path) const;  // 0 when nothing stands there
    NodeId NodeAt(std::string_view path) const;    // must exist
    Place Prepare(std::string_view path);          // makes the folders above
    NodeId AddSafely(const Place& place, FileKind kind, uint32_t mode);
    void RemoveSafely(const Place& place);
    void ListInto(NodeId folder, const std::string& prefix, std::vector<TreeEntry>& entries) const;
    TreeEntry DescribeEntry(NodeId node, std::string path) const;

    mutable std::mutex mutex_;
    MemoryDisk disk_;
    std::map<int, Opened> handles_;
    std::map<NodeId, int> locks_;        // the handle that holds it
    std::map<NodeId, uint32_t> opened_;  // how many handles
    int nextHandle_ = 3;
    int firstLiveHandle_ = 3;  // those before died in a power cut
    uint32_t boot_ = 1;
    int64_t clock_ = 1'700'000'000'000'000'000;
    int64_t clockStep_ = 1'000'003;
};

}  // namespace kinsort
