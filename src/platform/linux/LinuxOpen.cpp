#include "platform/linux/LinuxOpen.h"

#include <utility>

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <linux/openat2.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/linux/Descriptor.h"
#include "platform/linux/FolderStream.h"
#include "platform/linux/LinuxError.h"
#include "platform/linux/PathWalk.h"

namespace kinsort {
namespace {

long CallOpenat2(int folder, const char* name, int flags, unsigned mode) {
    open_how how = {};
    how.flags = static_cast<unsigned>(flags);
    how.mode = mode;
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_MAGICLINKS;
    return syscall(SYS_openat2, folder, name, &how, sizeof how);
}

// Old kernels do not have it, and some sandboxes refuse it with an error that looks like a permission problem; hence
// asked once, on a name that can always be opened.
bool HasOpenat2() {
    static const bool has = [] {
        Descriptor root(open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
        Descriptor probe(static_cast<int>(CallOpenat2(root.get(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC, 0)));
        return probe.get() >= 0;
    }();
    return has;
}

bool SameInode(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// What the kernel calls the folder: empty with errno ENAMETOOLONG when that is longer than it can say.
std::string ShortPathOf(int folder) {
    char link[32];
    snprintf(link, sizeof link, "/proc/self/fd/%d", folder);
    char text[PATH_MAX];
    const ssize_t length = readlink(link, text, sizeof text);
    if (length < 0) return {};
    std::string path(text, static_cast<size_t>(length));
    constexpr std::string_view kDeleted = " (deleted)";
    const bool looksDeleted = path.ends_with(kDeleted);
    struct stat info;
    if (looksDeleted && (fstat(folder, &info) != 0 || info.st_nlink == 0)) path.clear();
    if (!path.starts_with('/')) {
        errno = ENOENT;
        return {};
    }
    return path;
}

// The name that `child` has in `parent`, found by looking at every sub-folder.
Result<std::string> NameInParent(int child, int parent) {
    struct stat wanted;
    if (fstat(child, &wanted) != 0) return StatusFromErrno(errno);
    const FolderStream list = ListFolder(parent);
    if (list == nullptr) return StatusFromErrno(errno);
    while (const dirent* entry = readdir(list.get())) {
        if (strcmp(entry->d_name, ".") == 0 || strcmp(entry->d_name, "..") == 0) continue;
        if (entry->d_type != DT_DIR && entry->d_type != DT_UNKNOWN) continue;
        struct stat info;
        if (fstatat(parent, entry->d_name, &info, AT_SYMLINK_NOFOLLOW) == 0 && SameInode(info, wanted))
            return std::string(entry->d_name);
    }
    return StatusFromErrno(ENOENT);
}

}  // namespace

StoredName::StoredName(std::string_view name) {
    if (name.empty() || name == "." || name == ".." || name.find('/') != std::string_view::npos ||
        name.find('\0') != std::string_view::npos) {
        error_ = EINVAL;
    } else if (name.size() > kMaxLength) {
        error_ = ENAMETOOLONG;
    }
    const size_t length = error_ == 0 ? name.size() : 0;
    memcpy(text_, name.data(), length);
    text_[length] = '\0';
}

int OpenBeneath(int folder, const char* name, int flags, unsigned mode) {
    flags |= O_CLOEXEC;
    if (HasOpenat2()) return static_cast<int>(CallOpenat2(folder, name, flags, mode));
    // One name without a separator cannot lead out of its folder but by being a link.
    const int number = openat(folder, name, flags | O_NOFOLLOW, mode);
    if (number >= 0 || errno != ENOTDIR) return number;
    // For a link where a folder is wanted this call says "not a folder"; say what it is.
    struct stat info;
    const bool isLink = fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(info.st_mode);
    errno = isLink ? ELOOP : ENOTDIR;
    return -1;
}

int OpenFolderByPath(std::string_view path) {
    if (!path.starts_with('/') || path.find('\0') != std::string_view::npos) {
        errno = EINVAL;
        return -1;
    }
    const Result<PathPlace> place = FindPlace(path);
    if (!place.ok()) {
        errno = place.status().systemCode();
        return -1;
    }
    return openat(place->folder(), place->text.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

Result<std::string> PathOfFolder(int folder) {
    std::string below;
    Descriptor current(fcntl(folder, F_DUPFD_CLOEXEC, 0));
    if (current.get() < 0) return StatusFromErrno(errno);
    while (true) {
        const std::string head = ShortPathOf(current.get());
        if (!head.empty()) return (head == "/" && !below.empty() ? "" : head) + below;
        if (errno != ENAMETOOLONG) return StatusFromErrno(errno);
        Descriptor parent(openat(current.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (parent.get() < 0) return StatusFromErrno(errno);
        const Result<std::string> name = NameInParent(current.get(), parent.get());
        if (!name.ok()) return name.status();
        below.insert(0, "/" + *name);
        current = std::move(parent);
    }
}

bool LiesInside(int folder, int holder, const char* name) {
    struct stat wanted;
    if (fstatat(holder, name, &wanted, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISDIR(wanted.st_mode)) return false;
    Descriptor current(fcntl(folder, F_DUPFD_CLOEXEC, 0));
    struct stat info;
    while (current.get() >= 0 && fstat(current.get(), &info) == 0) {
        if (SameInode(info, wanted)) return true;
        Descriptor parent(openat(current.get(), "..", O_PATH | O_DIRECTORY | O_CLOEXEC));
        struct stat above;
        if (parent.get() < 0 || fstat(parent.get(), &above) != 0 || SameInode(info, above)) return false;
        current = std::move(parent);
    }
    return false;
}

}  // namespace kinsort
