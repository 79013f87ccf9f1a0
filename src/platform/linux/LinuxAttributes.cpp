#include "platform/linux/LinuxAttributes.h"

#include <string>
#include <string_view>
#include <vector>

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>
#include <sys/xattr.h>

#include "platform/linux/FolderStream.h"
#include "platform/linux/LinuxError.h"

namespace kinsort {
namespace {

constexpr uint64_t kBytesPerBlock = 512;  // of stx_blocks, whatever the volume's own blocks are

int64_t Nanoseconds(const statx_timestamp& time) {
    return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

FileKind KindOf(unsigned mode) {
    if (S_ISREG(mode)) return FileKind::kFile;
    if (S_ISDIR(mode)) return FileKind::kFolder;
    return S_ISLNK(mode) ? FileKind::kLink : FileKind::kOther;
}

// FNV-1a, so that a UUID of any shape becomes one number.
uint64_t HashText(std::string_view text) {
    uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

// The UUID under which the system lists the block device; 0 when it lists none.
uint64_t UuidOfDevice(dev_t device) {
    const FolderStream folder(opendir("/dev/disk/by-uuid"));
    if (folder == nullptr) return 0;
    while (const dirent* entry = readdir(folder.get())) {
        struct stat info;
        if (fstatat(dirfd(folder.get()), entry->d_name, &info, 0) != 0) continue;
        if (S_ISBLK(info.st_mode) && info.st_rdev == device) return HashText(entry->d_name);
    }
    return 0;
}

// The kernel's way of packing a device number, which many volumes hand out as their identity.
uint64_t PackDevice(dev_t device) {
    const uint64_t low = minor(device);
    return (low & 0xff) | (uint64_t{major(device)} << 8) | ((low & ~uint64_t{0xff}) << 12);
}

uint64_t VolumeId(const struct statfs& volume, dev_t device) {
    uint32_t parts[2];
    static_assert(sizeof volume.f_fsid == sizeof parts);
    memcpy(parts, &volume.f_fsid, sizeof parts);
    const uint64_t id = parts[0] | (uint64_t{parts[1]} << 32);
    return id == 0 || id == PackDevice(device) ? UuidOfDevice(device) : id;
}

// The value of one attribute into `value`, grown as needed; false with errno when it cannot be read.
bool ReadAttribute(int file, const char* name, std::vector<char>& value) {
    while (true) {
        const ssize_t length = fgetxattr(file, name, value.data(), value.size());
        if (length >= 0 && static_cast<size_t>(length) <= value.size() && !value.empty()) {
            value.resize(static_cast<size_t>(length));
            return true;
        }
        if (length < 0 && errno != ERANGE) return false;
        const ssize_t needed = fgetxattr(file, name, nullptr, 0);
        if (needed < 0) return false;
        value.resize(static_cast<size_t>(needed) + 1);
    }
}

Status CopyOneAttribute(int from, int to, const char* name) {
    std::vector<char> value(256);
    if (!ReadAttribute(from, name, value)) return errno == ENODATA ? Status() : StatusFromErrno(errno);
    if (fsetxattr(to, name, value.data(), value.size(), 0) != 0) return StatusFromErrno(errno);
    return {};
}

// The names of all attributes, each ended by NUL. The usual file has few or none: one call, nothing allocated.
Result<std::string_view> ListAttributes(int file, std::span<char> room, std::vector<char>& more) {
    ssize_t length = flistxattr(file, room.data(), room.size());
    if (length >= 0) return std::string_view(room.data(), static_cast<size_t>(length));
    while (errno == ERANGE) {
        more.resize(more.empty() ? 4096 : more.size() * 2);
        length = flistxattr(file, more.data(), more.size());
        if (length >= 0) return std::string_view(more.data(), static_cast<size_t>(length));
    }
    return StatusFromErrno(errno);
}

}  // namespace

Result<FileInfo> ReadFileInfo(int folder, const char* name) {
    struct statx raw;
    if (statx(folder, name, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW, STATX_BASIC_STATS | STATX_BTIME, &raw) != 0)
        return StatusFromErrno(errno);
    FileInfo info;
    info.kind = KindOf(raw.stx_mode);
    info.mode = raw.stx_mode & 07777u;
    info.links = raw.stx_nlink;
    info.owner = raw.stx_uid;
    info.device = makedev(raw.stx_dev_major, raw.stx_dev_minor);
    info.inode = raw.stx_ino;
    info.size = raw.stx_size;
    info.allocated = raw.stx_blocks * kBytesPerBlock;
    info.createdNs = (raw.stx_mask & STATX_BTIME) != 0 ? Nanoseconds(raw.stx_btime) : 0;
    info.modifiedNs = Nanoseconds(raw.stx_mtime);
    info.accessedNs = Nanoseconds(raw.stx_atime);
    info.changedNs = Nanoseconds(raw.stx_ctime);
    return info;
}

Result<VolumeInfo> ReadVolumeInfo(int descriptor) {
    struct statfs volume;
    struct stat file;
    if (fstatfs(descriptor, &volume) != 0 || fstat(descriptor, &file) != 0) return StatusFromErrno(errno);
    const uint64_t unit = static_cast<uint64_t>(volume.f_frsize != 0 ? volume.f_frsize : volume.f_bsize);
    return VolumeInfo{.volumeId = VolumeId(volume, file.st_dev), .freeBytes = volume.f_bavail * unit};
}

Status CopyUserAttributesBetween(int from, int to) {
    char room[1024];
    std::vector<char> more;
    Result<std::string_view> names = ListAttributes(from, room, more);
    if (!names.ok()) return names.code() == StatusCode::kUnsupported ? Status() : names.status();
    Status first;
    for (std::string_view rest = *names; !rest.empty(); rest.remove_prefix(rest.find('\0') + 1)) {
        if (!rest.starts_with("user.")) continue;
        const Status status = CopyOneAttribute(from, to, rest.data());
        if (first.ok()) first = status;
    }
    return first;
}

}  // namespace kinsort
