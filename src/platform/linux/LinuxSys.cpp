#include "platform/linux/LinuxSys.h"

#include <algorithm>
#include <atomic>
#include <fstream>

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <linux/fs.h>
#include <signal.h>
#include <stdio.h>
#include <sys/ioctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/linux/FolderStream.h"
#include "platform/linux/LinuxAttributes.h"
#include "platform/linux/LinuxError.h"
#include "platform/linux/LinuxOpen.h"

namespace kinsort {
namespace {

constexpr unsigned kModeBits = 07777;

Status FromReturn(int value) {
    return value == 0 ? Status() : StatusFromErrno(errno);
}

// For calls where a volume that lacks the feature answers with EINVAL.
Status UnsupportedOr(int error) {
    return error == EINVAL ? StatusFromErrno(error, StatusCode::kUnsupported) : StatusFromErrno(error);
}

timespec ToTimespec(int64_t nanoseconds) {
    constexpr int64_t kSecond = 1'000'000'000;
    const int64_t rest = (nanoseconds % kSecond + kSecond) % kSecond;  // before 1970 too
    return {.tv_sec = (nanoseconds - rest) / kSecond, .tv_nsec = rest};
}

FileKind KindOfEntry(unsigned char type) {
    switch (type) {
        case DT_REG:
            return FileKind::kFile;
        case DT_DIR:
            return FileKind::kFolder;
        case DT_LNK:
            return FileKind::kLink;
        default:
            return FileKind::kOther;
    }
}

// The file mode mask, read without changing it: setting it and back would show in another thread's new files.
unsigned ProcessMask() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        unsigned mask = 0;
        if (word == "Umask:" && status >> std::oct >> mask) return mask;
    }
    return kModeBits;  // unknown: every new file gets its mode set
}

class LinuxSys final : public Sys {
  public:
    LinuxSys() : mask_(ProcessMask()) {}

    // --- folders ---------------------------------------------------------------------------------------------------
    Result<FileHandle> OpenFolder(std::string_view storedPath) override { return Wrap(OpenFolderByPath(storedPath)); }

    Result<FileHandle> OpenFolderAt(const FileHandle& folder, std::string_view name) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        return Wrap(OpenBeneath(folder.number(), stored.c_str(), O_RDONLY | O_DIRECTORY));
    }

    Result<FileHandle> OpenParent(const FileHandle& folder) override {
        int number = openat(folder.number(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        // A folder that others own may let us pass without letting us list it.
        if (number < 0 && errno == EACCES) number = openat(folder.number(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC);
        return Wrap(number);
    }

    Result<std::string> PathOf(const FileHandle& folder) override { return PathOfFolder(folder.number()); }

    Status ReadFolder(const FileHandle& folder, const std::function<bool(const FolderEntry&)>& sink) override {
        const FolderStream stream = ListFolder(folder.number());
        if (stream == nullptr) return StatusFromErrno(errno);
        FolderEntry entry;
        while (true) {
            errno = 0;
            const dirent* raw = readdir(stream.get());
            if (raw == nullptr) return FromReturn(errno);
            entry.name = raw->d_name;
            if (entry.name == "." || entry.name == "..") continue;
            entry.kind = KindOfEntry(raw->d_type);
            if (!sink(entry)) return {};
        }
    }

    Status MakeFolderAt(const FileHandle& folder, std::string_view name, uint32_t mode) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        return FromReturn(mkdirat(folder.number(), stored.c_str(), mode));
    }

    Status RemoveFolderAt(const FileHandle& folder, std::string_view name) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        if (unlinkat(folder.number(), stored.c_str(), AT_REMOVEDIR) == 0) return {};
        // The standard allows either number for a folder that holds something.
        return errno == EEXIST ? StatusFromErrno(ENOTEMPTY) : StatusFromErrno(errno);
    }

    // --- looking ---------------------------------------------------------------------------------------------------
    Result<FileInfo> Stat(const FileHandle& handle) override { return ReadFileInfo(handle.number(), ""); }

    Result<FileInfo> StatAt(const FileHandle& folder, std::string_view name) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        return ReadFileInfo(folder.number(), stored.c_str());
    }

    Result<VolumeInfo> DescribeVolume(const FileHandle& handle) override { return ReadVolumeInfo(handle.number()); }

    // --- names -----------------------------------------------------------------------------------------------------
    Status RenameNoReplace(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                           std::string_view to) override {
        return Rename(fromFolder, from, toFolder, to, RENAME_NOREPLACE);
    }

    Status Exchange(const FileHandle& folderA, std::string_view a, const FileHandle& folderB,
                    std::string_view b) override {
        return Rename(folderA, a, folderB, b, RENAME_EXCHANGE);
    }

    Status LinkAt(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                  std::string_view to) override {
        const StoredName source(from);
        const StoredName target(to);
        if (source.error() != 0) return StatusFromErrno(source.error());
        if (target.error() != 0) return StatusFromErrno(target.error());
        return FromReturn(linkat(fromFolder.number(), source.c_str(), toFolder.number(), target.c_str(), 0));
    }

    Status RemoveFileAt(const FileHandle& folder, std::string_view name) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        return FromReturn(unlinkat(folder.number(), stored.c_str(), 0));
    }

    Result<std::string> ReadLinkAt(const FileHandle& folder, std::string_view name) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        char text[PATH_MAX];  // a link's text is never longer
        const ssize_t length = readlinkat(folder.number(), stored.c_str(), text, sizeof text);
        if (length < 0) return StatusFromErrno(errno);
        return std::string(text, static_cast<size_t>(length));
    }

    Status MakeLinkAt(std::string_view linkText, const FileHandle& folder, std::string_view name) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        return FromReturn(symlinkat(std::string(linkText).c_str(), folder.number(), stored.c_str()));
    }

    // --- content ---------------------------------------------------------------------------------------------------
    Result<FileHandle> OpenForRead(const FileHandle& folder, std::string_view name) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        constexpr int kFlags = O_RDONLY | O_NONBLOCK | O_NOCTTY;
        int number = OpenBeneath(folder.number(), stored.c_str(), kFlags | O_NOATIME);
        // Only a file's owner may read it without leaving a trace in its access time.
        if (number < 0 && errno == EPERM) number = OpenBeneath(folder.number(), stored.c_str(), kFlags);
        return WrapRegular(number);
    }

    Result<FileHandle> OpenForWrite(const FileHandle& folder, std::string_view name) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        return WrapRegular(OpenBeneath(folder.number(), stored.c_str(), O_RDWR | O_NONBLOCK | O_NOCTTY));
    }

    Result<FileHandle> CreateFileAt(const FileHandle& folder, std::string_view name, uint32_t mode) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        mode &= kModeBits;
        return WrapNew(OpenBeneath(folder.number(), stored.c_str(), O_RDWR | O_CREAT | O_EXCL, mode), mode);
    }

    Result<FileHandle> CreateNameless(const FileHandle& folder, uint32_t mode) override {
        mode &= kModeBits;
        const int number = openat(folder.number(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, mode);
        // A system that does not know the flag takes this for opening a folder for writing.
        if (number < 0 && (errno == EISDIR || errno == EINVAL)) return StatusFromErrno(errno, StatusCode::kUnsupported);
        return WrapNew(number, mode);
    }

    Status NameFile(const FileHandle& file, const FileHandle& folder, std::string_view name) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        if (linkByDescriptor_.load(std::memory_order_relaxed)) {
            if (linkat(file.number(), "", folder.number(), stored.c_str(), AT_EMPTY_PATH) == 0) return {};
            // Without the right to do this the answer is "not found", which can also be the truth.
            if (errno != ENOENT && errno != EPERM) return StatusFromErrno(errno);
        }
        char path[32];
        snprintf(path, sizeof path, "/proc/self/fd/%d", file.number());
        if (linkat(AT_FDCWD, path, folder.number(), stored.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            const int error = errno;
            const bool noWay = error == ENOENT && access("/proc/self/fd", F_OK) != 0;  // nothing is mounted there
            return noWay ? StatusFromErrno(error, StatusCode::kUnsupported) : StatusFromErrno(error);
        }
        linkByDescriptor_.store(false, std::memory_order_relaxed);
        return {};
    }

    Result<size_t> Read(const FileHandle& file, uint64_t offset, std::span<std::byte> buffer) override {
        return Count(pread(file.number(), buffer.data(), buffer.size(), static_cast<off_t>(offset)));
    }

    Result<size_t> Write(const FileHandle& file, uint64_t offset, std::span<const std::byte> data) override {
        return Count(pwrite(file.number(), data.data(), data.size(), static_cast<off_t>(offset)));
    }

    Result<size_t> CopyRange(const FileHandle& from, const FileHandle& to, uint64_t offset, uint64_t length) override {
        off_t fromOffset = static_cast<off_t>(offset);
        off_t toOffset = fromOffset;
        constexpr uint64_t kMost = 1u << 30;  // a call that is not huge can be cancelled between two
        const ssize_t count =
            copy_file_range(from.number(), &fromOffset, to.number(), &toOffset, std::min(length, kMost), 0);
        if (count < 0) return UnsupportedOr(errno);
        return static_cast<size_t>(count);
    }

    Status Clone(const FileHandle& from, const FileHandle& to) override {
        return ioctl(to.number(), FICLONE, from.number()) == 0 ? Status() : UnsupportedOr(errno);
    }

    Result<uint64_t> NextData(const FileHandle& file, uint64_t offset) override {
        const off_t found = lseek(file.number(), static_cast<off_t>(offset), SEEK_DATA);
        if (found >= 0) return static_cast<uint64_t>(found);
        if (errno != ENXIO && errno != EINVAL) return StatusFromErrno(errno);
        const bool allIsData = errno == EINVAL;  // a volume that does not know of holes
        return SizeOr(file, allIsData ? offset : UINT64_MAX);
    }

    Result<uint64_t> NextHole(const FileHandle& file, uint64_t offset) override {
        const off_t found = lseek(file.number(), static_cast<off_t>(offset), SEEK_HOLE);
        if (found >= 0) return static_cast<uint64_t>(found);
        if (errno != ENXIO && errno != EINVAL) return StatusFromErrno(errno);
        return SizeOr(file, UINT64_MAX);
    }

    Status SetSize(const FileHandle& file, uint64_t size) override {
        return FromReturn(ftruncate(file.number(), static_cast<off_t>(size)));
    }

    Status Reserve(const FileHandle& file, uint64_t size) override {
        if (size == 0) return {};
        return FromReturn(fallocate(file.number(), FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)));
    }

    // --- attributes ------------------------------------------------------------------------------------------------
    Status SetMode(const FileHandle& handle, uint32_t mode) override {
        return FromReturn(fchmod(handle.number(), mode & kModeBits));
    }

    Status SetTimes(const FileHandle& handle, int64_t accessedNs, int64_t modifiedNs) override {
        const timespec times[] = {ToTimespec(accessedNs), ToTimespec(modifiedNs)};
        return FromReturn(futimens(handle.number(), times));
    }

    Status SetTimesAt(const FileHandle& folder, std::string_view name, int64_t accessedNs,
                      int64_t modifiedNs) override {
        const StoredName stored(name);
        if (stored.error() != 0) return StatusFromErrno(stored.error());
        const timespec times[] = {ToTimespec(accessedNs), ToTimespec(modifiedNs)};
        return FromReturn(utimensat(folder.number(), stored.c_str(), times, AT_SYMLINK_NOFOLLOW));
    }

    Status CopyUserAttributes(const FileHandle& from, const FileHandle& to) override {
        return CopyUserAttributesBetween(from.number(), to.number());
    }

    // --- durability and locks --------------------------------------------------------------------------------------
    Status Sync(const FileHandle& handle) override { return FromReturn(fsync(handle.number())); }

    Status SyncVolume(const FileHandle& handle) override { return FromReturn(syncfs(handle.number())); }

    void StartWriteback(const FileHandle& file, uint64_t offset, uint64_t length) override {
        (void)sync_file_range(file.number(), static_cast<off64_t>(offset), static_cast<off64_t>(length),
                              SYNC_FILE_RANGE_WRITE);
    }

    Status TryLock(const FileHandle& file) override {
        struct flock whole = {};
        whole.l_type = F_WRLCK;
        whole.l_whence = SEEK_SET;
        if (fcntl(file.number(), F_OFD_SETLK, &whole) == 0) return {};
        return errno == EAGAIN || errno == EACCES ? StatusFromErrno(errno, StatusCode::kLocked)
                                                  : StatusFromErrno(errno);
    }

    // --- the process -----------------------------------------------------------------------------------------------
    std::string BootId() override {
        std::string id;
        std::ifstream("/proc/sys/kernel/random/boot_id") >> id;
        return id;
    }

    uint32_t UserNumber() override { return geteuid(); }

    Status Close(int number) override {
        if (close(number) == 0) return {};
        // The descriptor is gone all the same, so there is nothing to try again.
        return errno == EINTR ? StatusFromErrno(EINTR, StatusCode::kIo) : StatusFromErrno(errno);
    }

  private:
    Result<FileHandle> Wrap(int number) {
        if (number < 0) return StatusFromErrno(errno);
        return FileHandle(this, number);
    }

    // Opening tells links and sockets from files, but not folders, pipes and devices.
    Result<FileHandle> WrapRegular(int number) {
        if (number < 0) return errno == ENXIO ? StatusFromErrno(ENXIO, StatusCode::kInvalid) : StatusFromErrno(errno);
        FileHandle handle(this, number);
        struct stat info;
        if (fstat(number, &info) != 0) return StatusFromErrno(errno);
        if (S_ISDIR(info.st_mode)) return StatusFromErrno(EISDIR);
        if (!S_ISREG(info.st_mode)) return StatusFromErrno(EINVAL);
        return handle;
    }

    Result<FileHandle> WrapNew(int number, unsigned mode) {
        if (number < 0) return StatusFromErrno(errno);
        FileHandle handle(this, number);
        if ((mode & mask_) != 0 && fchmod(number, mode) != 0) return StatusFromErrno(errno);
        return handle;
    }

    static Result<size_t> Count(ssize_t count) {
        if (count < 0) return StatusFromErrno(errno);
        return static_cast<size_t>(count);
    }

    // The smaller of `offset` and the file's size.
    static Result<uint64_t> SizeOr(const FileHandle& file, uint64_t offset) {
        struct stat info;
        if (fstat(file.number(), &info) != 0) return StatusFromErrno(errno);
        return std::min(offset, static_cast<uint64_t>(info.st_size));
    }

    static Status Rename(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                         std::string_view to, unsigned flags) {
        const StoredName source(from);
        const StoredName target(to);
        if (source.error() != 0) return StatusFromErrno(source.error());
        if (target.error() != 0) return StatusFromErrno(target.error());
        if (renameat2(fromFolder.number(), source.c_str(), toFolder.number(), target.c_str(), flags) == 0) return {};
        if (errno != EINVAL) return StatusFromErrno(errno);
        // One number for two things: a volume that does not know the flag, and a folder that would go into itself.
        const bool intoItself = LiesInside(toFolder.number(), fromFolder.number(), source.c_str()) ||
                                LiesInside(fromFolder.number(), toFolder.number(), target.c_str());
        return StatusFromErrno(EINVAL, intoItself ? StatusCode::kInvalid : StatusCode::kUnsupported);
    }

    const unsigned mask_;
    // Whether to try naming a file by its descriptor alone, which is quicker but needs a right on older systems.
    std::atomic<bool> linkByDescriptor_ = true;
};

}  // namespace

std::unique_ptr<Sys> MakeLinuxSys() {
    return std::make_unique<LinuxSys>();
}

void PrepareLinuxProcess() {
    rlimit files = {};
    if (getrlimit(RLIMIT_NOFILE, &files) == 0 && files.rlim_cur < files.rlim_max) {
        files.rlim_cur = files.rlim_max;
        (void)setrlimit(RLIMIT_NOFILE, &files);
    }
    // A table of descriptors that grows while threads share it waits for all processors each time: let it grow now.
    constexpr rlim_t kManyFiles = 8192;
    const int last = static_cast<int>(std::min(kManyFiles, files.rlim_cur - 1));
    if (const int high = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, last); high >= 0) close(high);
    (void)signal(SIGXFSZ, SIG_IGN);
    (void)signal(SIGPIPE, SIG_IGN);
}

}  // namespace kinsort
