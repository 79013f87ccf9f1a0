#include "platform/linux/RuntimeFolder.h"

#include <cstdlib>

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/LinuxError.h"

namespace kinsort {
namespace {

constexpr mode_t kOthersMayWrite = S_IWGRP | S_IWOTH;

bool IsOwnFolder(const char* path) {
    struct stat info;
    return stat(path, &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == geteuid() &&
           (info.st_mode & kOthersMayWrite) == 0;
}

}  // namespace

std::string FindRuntimeFolder() {
    const char* login = std::getenv("XDG_RUNTIME_DIR");
    if (login != nullptr && login[0] == '/' && IsOwnFolder(login)) return std::string(login) + "/vel";
    return "/tmp/vel-" + std::to_string(geteuid());
}

Result<Descriptor> OpenRuntimeFolder(const std::string& path, uid_t owner) {
    if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) return StatusFromErrno(errno);
    Descriptor folder(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!folder.isOpen()) {
        // A link gives "not a folder" here; say what it is.
        const int error = errno;
        struct stat info;
        const bool isLink = lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
        return StatusFromErrno(isLink ? ELOOP : error);
    }
    struct stat info;
    if (fstat(folder.get(), &info) != 0) return StatusFromErrno(errno);
    if (info.st_uid != owner || (info.st_mode & kOthersMayWrite) != 0) return StatusFromErrno(EACCES);
    return folder;
}

}  // namespace kinsort
