// Every system call of the batch engine, one virtual function each, in neutral types. It exists so that a test can
// number the calls and fail, stop or kill the engine at any one of them, and so that an in-memory file system that
// forgets what was not synced can stand in for the disk.
//
// Rules that hold for every function:
// - names are stored names (bytes on Linux): one component, no separator, never empty, "." or "..";
// - a folder argument is an open folder; names are looked up in it and nowhere else, and no link is ever followed
//   unless the function says so;
// - failures come back as a Status with the system's number; kInterrupted and short transfers are the caller's
//   to repeat;
// - all functions may be called from several threads at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Status.h"

namespace kinsort {

enum class FileKind : uint8_t { kFile, kFolder, kLink, kOther };  // kOther: pipe, socket, device

struct FileInfo {
    FileKind kind = FileKind::kOther;
    uint32_t mode = 0;       // permission bits, platform's own
    uint32_t links = 0;      // names that this file has
    uint32_t owner = 0;      // user number
    uint64_t device = 0;     // volume number, stable until the next boot
    uint64_t inode = 0;      // file number in its volume
    uint64_t size = 0;       // bytes
    uint64_t allocated = 0;  // bytes on the volume; less than size for a sparse file
    int64_t createdNs = 0;   // nanoseconds since 1970 UTC; 0 where the volume does not keep it
    int64_t modifiedNs = 0;
    int64_t accessedNs = 0;
    int64_t changedNs = 0;  // last change of the file or its attributes; nobody can set it

    bool SameFile(const FileInfo& other) const {
        return device == other.device && inode == other.inode && createdNs == other.createdNs;
    }
};

struct VolumeInfo {
    uint64_t volumeId = 0;   // stays the same across boots where the volume has one, else 0
    uint64_t freeBytes = 0;  // for this user
};

struct FolderEntry {
    std::string name;
    FileKind kind = FileKind::kOther;  // what the listing says; kOther also where the volume does not tell
};

class Sys;

// An open file or folder; closes it when it goes. Move-only.
class FileHandle {
  public:
    FileHandle() = default;
    FileHandle(Sys* sys, int number) : sys_(sys), number_(number) {}
    FileHandle(FileHandle&& other) noexcept
        : sys_(std::exchange(other.sys_, nullptr)), number_(std::exchange(other.number_, -1)) {}
    FileHandle& operator=(FileHandle&& other) noexcept {
        if (this != &other) {
            Reset();
            sys_ = std::exchange(other.sys_, nullptr);
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }
    ~FileHandle() { Reset(); }

    bool isOpen() const { return sys_ != nullptr; }
    int number() const { return number_; }  // for the backend that made it
    inline void Reset();
    // Closes and reports what the system said: a write error can surface as late as here.
    inline Status Close();

  private:
    Sys* sys_ = nullptr;
    int number_ = -1;
};

class Sys {
  public:
    virtual ~Sys() = default;

    // --- folders ---------------------------------------------------------------------------------------------------
    // Opens a folder by absolute stored path of any length. Links on the way are followed: the user chose this path.
    virtual Result<FileHandle> OpenFolder(std::string_view storedPath) = 0;
    // Opens the sub-folder `name`; kIsLink when a link stands there, kNotFolder for a file.
    virtual Result<FileHandle> OpenFolderAt(const FileHandle& folder, std::string_view name) = 0;
    // The folder above, across mounts; the topmost folder gives itself. Where the rights allow passing that folder but
    // not listing it, the handle can be looked at, walked on from and used to look up names, but not listed or synced.
    virtual Result<FileHandle> OpenParent(const FileHandle& folder) = 0;
    // The absolute stored path under which the folder stands now, links resolved.
    virtual Result<std::string> PathOf(const FileHandle& folder) = 0;
    // Calls `sink` for each entry but "." and "..", in no particular order, until it returns false.
    virtual Status ReadFolder(const FileHandle& folder, const std::function<bool(const FolderEntry&)>& sink) = 0;
    // Creates a folder with permission bits `mode`, less the process's mask.
    virtual Status MakeFolderAt(const FileHandle& folder, std::string_view name, uint32_t mode) = 0;
    // Removes an empty folder; kNotEmpty otherwise.
    virtual Status RemoveFolderAt(const FileHandle& folder, std::string_view name) = 0;

    // --- looking ---------------------------------------------------------------------------------------------------
    virtual Result<FileInfo> Stat(const FileHandle& handle) = 0;
    virtual Result<FileInfo> StatAt(const FileHandle& folder, std::string_view name) = 0;  // of a link: the link itself
    virtual Result<VolumeInfo> DescribeVolume(const FileHandle& handle) = 0;

    // --- names -----------------------------------------------------------------------------------------------------
    // Atomic; kExists when the target name is taken, kCrossVolume between volumes. On a volume that cannot promise
    // "no replace" it fails with kUnsupported and nothing happened. kInvalid for a folder that would go into itself,
    // here and in Exchange.
    virtual Status RenameNoReplace(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                                   std::string_view to) = 0;
    // Swaps two existing names atomically; kUnsupported where the volume cannot.
    virtual Status Exchange(const FileHandle& folderA, std::string_view a, const FileHandle& folderB,
                            std::string_view b) = 0;
    // A second name for the same file; kExists when taken. Links are not followed. kAccessDenied for a folder, and on
    // a volume that has no second names: the system does not tell the difference.
    virtual Status LinkAt(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                          std::string_view to) = 0;
    // Removes a name that is not a folder.
    virtual Status RemoveFileAt(const FileHandle& folder, std::string_view name) = 0;
    virtual Result<std::string> ReadLinkAt(const FileHandle& folder, std::string_view name) = 0;
    virtual Status MakeLinkAt(std::string_view linkText, const FileHandle& folder, std::string_view name) = 0;

    // --- content ---------------------------------------------------------------------------------------------------
    // A regular file for reading; never waits for a pipe's other end. kIsLink when a link stands there, kIsFolder for
    // a folder, kInvalid for a pipe, socket or device.
    virtual Result<FileHandle> OpenForRead(const FileHandle& folder, std::string_view name) = 0;
    // An existing regular file for reading and writing. Fails as OpenForRead does.
    virtual Result<FileHandle> OpenForWrite(const FileHandle& folder, std::string_view name) = 0;
    // A new empty file; kExists when the name is taken. Mode as given, mask not applied.
    virtual Result<FileHandle> CreateFileAt(const FileHandle& folder, std::string_view name, uint32_t mode) = 0;
    // A new empty file without a name on the folder's volume; it vanishes when closed unless it was named.
    // kUnsupported where the volume cannot.
    virtual Result<FileHandle> CreateNameless(const FileHandle& folder, uint32_t mode) = 0;
    // Gives a nameless file its name; kExists when taken.
    virtual Status NameFile(const FileHandle& file, const FileHandle& folder, std::string_view name) = 0;
    virtual Result<size_t> Read(const FileHandle& file, uint64_t offset, std::span<std::byte> buffer) = 0;
    virtual Result<size_t> Write(const FileHandle& file, uint64_t offset, std::span<const std::byte> data) = 0;
    // Copies inside the kernel; returns the bytes copied, 0 at the end of `from`; kUnsupported or kCrossVolume where
    // it cannot.
    virtual Result<size_t> CopyRange(const FileHandle& from, const FileHandle& to, uint64_t offset,
                                     uint64_t length) = 0;
    // Shares the whole content of `from` with the empty `to` (a clone); kUnsupported or kCrossVolume where it cannot.
    virtual Status Clone(const FileHandle& from, const FileHandle& to) = 0;
    // First offset >= `offset` that holds data; the file's size when only a hole follows.
    virtual Result<uint64_t> NextData(const FileHandle& file, uint64_t offset) = 0;
    // First offset >= `offset` that is a hole; the file's size counts as one.
    virtual Result<uint64_t> NextHole(const FileHandle& file, uint64_t offset) = 0;
    virtual Status SetSize(const FileHandle& file, uint64_t size) = 0;
    // Reserves room without changing the size; kUnsupported where the volume cannot.
    virtual Status Reserve(const FileHandle& file, uint64_t size) = 0;

    // --- attributes ------------------------------------------------------------------------------------------------
    virtual Status SetMode(const FileHandle& handle, uint32_t mode) = 0;
    virtual Status SetTimes(const FileHandle& handle, int64_t accessedNs, int64_t modifiedNs) = 0;
    virtual Status SetTimesAt(const FileHandle& folder, std::string_view name, int64_t accessedNs,
                              int64_t modifiedNs) = 0;
    // Copies the attributes that belong to the user, not owner or access lists. Success when there are none.
    virtual Status CopyUserAttributes(const FileHandle& from, const FileHandle& to) = 0;

    // --- durability and locks --------------------------------------------------------------------------------------
    // Returns once the file's content and size, or the folder's names, survive a power cut. After a failure the
    // content must be taken as lost: a second try may succeed without having written anything.
    virtual Status Sync(const FileHandle& handle) = 0;
    // The same for everything on the handle's volume.
    virtual Status SyncVolume(const FileHandle& handle) = 0;
    // Starts writing back what is dirty, without waiting. Only a hint.
    virtual void StartWriteback(const FileHandle& file, uint64_t offset, uint64_t length) = 0;
    // Takes the exclusive lock of a file that is open for writing; kLocked when another holder, in this process or
    // another, has it. Ends with the handle, and with the process however it ends.
    virtual Status TryLock(const FileHandle& file) = 0;

    // --- the process -----------------------------------------------------------------------------------------------
    // Changes with every boot; device numbers are comparable only while it is the same.
    virtual std::string BootId() = 0;
    virtual uint32_t UserNumber() = 0;
    virtual Status Close(int number) = 0;  // FileHandle's; nobody else calls it
};

inline void FileHandle::Reset() {
    if (isOpen()) (void)Close();
}

inline Status FileHandle::Close() {
    if (!isOpen()) return {};
    return std::exchange(sys_, nullptr)->Close(std::exchange(number_, -1));
}

}  // namespace kinsort
