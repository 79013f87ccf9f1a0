#include "platform/linux/LinuxSharedMemory.h"

#include <algorithm>
#include <utility>

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/Descriptor.h"
#include "platform/linux/LinuxError.h"
#include "platform/linux/RuntimeFolder.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

// A file of the runtime folder. Takes its name away when it goes, if it made the file and the name still means it.
class NamedFile {
  public:
    NamedFile(Descriptor folder, Descriptor file, std::string name, bool isCreator)
        : folder_(std::move(folder)), file_(std::move(file)), name_(std::move(name)), isCreator_(isCreator) {}
    NamedFile(NamedFile&& other) noexcept = default;
    NamedFile& operator=(NamedFile&&) = delete;
    ~NamedFile() {
        if (!isCreator_ || !file_.isOpen()) return;
        struct stat mine, named;
        if (fstat(file_.get(), &mine) == 0 && fstatat(folder_.get(), name_.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
            mine.st_ino == named.st_ino)
            unlinkat(folder_.get(), name_.c_str(), 0);
    }

    int get() const { return file_.get(); }
    bool isCreator() const { return isCreator_; }

  private:
    Descriptor folder_;
    Descriptor file_;
    std::string name_;
    bool isCreator_;
};

bool IsName(std::string_view name) {
    constexpr size_t kMaxLength = 200;
    return !name.empty() && name.size() <= kMaxLength && name[0] != '.' && std::ranges::all_of(name, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-' ||
               c == '.';
    });
}

// Whether the open file is one that only its owner, our user, can have written, and that has no other name by which
// writing to it would change something else.
Status CheckOwned(int file, uid_t owner) {
    struct stat info;
    if (fstat(file, &info) != 0) return StatusFromErrno(errno);
    const bool isOurs = S_ISREG(info.st_mode) && info.st_uid == owner && (info.st_mode & (S_IWGRP | S_IWOTH)) == 0 &&
                        info.st_nlink <= 1;
    return isOurs ? Status() : StatusFromErrno(EACCES);
}

Result<NamedFile> OpenNamed(const std::string& folderPath, uid_t owner, std::u16string_view wideName,
                            SharedOpening opening) {
    const std::string name = ToUtf8(wideName);
    if (!IsName(name)) return StatusFromErrno(EINVAL);
    Result<Descriptor> folder = OpenRuntimeFolder(folderPath, owner);
    if (!folder.ok()) return folder.status();
    // Without O_NONBLOCK a pipe that stands under the name would hold us up.
    constexpr int kFlags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    // The name can come and go between the two attempts; a few rounds settle it.
    for (int round = 0; round < 8; ++round) {
        if (opening == SharedOpening::kOpenOrCreate) {
            Descriptor file(openat(folder->get(), name.c_str(), kFlags));
            if (file.isOpen()) {
                Status owned = CheckOwned(file.get(), owner);
                if (!owned.ok()) return owned;
                return NamedFile(std::move(*folder), std::move(file), name, false);
            }
            if (errno != ENOENT) return StatusFromErrno(errno);
        }
        Descriptor file(openat(folder->get(), name.c_str(), kFlags | O_CREAT | O_EXCL, 0600));
        if (file.isOpen()) return NamedFile(std::move(*folder), std::move(file), name, true);
        if (errno != EEXIST || opening == SharedOpening::kCreateNew) return StatusFromErrno(errno);
    }
    return StatusFromErrno(EBUSY);
}

class FileBlock : public SharedBlock {
  public:
    explicit FileBlock(NamedFile file) : file_(std::move(file)) {}

    Result<size_t> Read(uint64_t offset, std::span<std::byte> bytes) override {
        size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t got =
                pread(file_.get(), bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
            if (got < 0 && errno == EINTR) continue;
            if (got < 0) return StatusFromErrno(errno);
            if (got == 0) break;
            done += static_cast<size_t>(got);
        }
        return done;
    }

    Status Write(uint64_t offset, std::span<const std::byte> bytes) override {
        while (!bytes.empty()) {
            const ssize_t put = pwrite(file_.get(), bytes.data(), bytes.size(), static_cast<off_t>(offset));
            if (put < 0 && errno == EINTR) continue;
            if (put < 0) return StatusFromErrno(errno);
            bytes = bytes.subspan(static_cast<size_t>(put));
            offset += static_cast<size_t>(put);
        }
        return {};
    }

  private:
    NamedFile file_;
};

class FileMutex : public SharedMutex {
  public:
    explicit FileMutex(NamedFile file) : file_(std::move(file)) {}

    Status Lock() override {
        while (flock(file_.get(), LOCK_EX) != 0) {
            if (errno != EINTR) return StatusFromErrno(errno);
        }
        return {};
    }

    void Unlock() override { flock(file_.get(), LOCK_UN); }

  private:
    NamedFile file_;
};

}  // namespace

LinuxSharedMemory::LinuxSharedMemory() : LinuxSharedMemory(FindRuntimeFolder()) {}

LinuxSharedMemory::LinuxSharedMemory(std::string folder) : LinuxSharedMemory(std::move(folder), geteuid()) {}

LinuxSharedMemory::LinuxSharedMemory(std::string folder, uid_t owner) : folder_(std::move(folder)), owner_(owner) {}

Result<std::unique_ptr<SharedBlock>> LinuxSharedMemory::OpenSharedBlock(std::u16string_view name, uint32_t bytes,
                                                                        SharedOpening opening) {
    if (bytes == 0 || bytes > kMaxBlockBytes) return StatusFromErrno(EINVAL);
    Result<NamedFile> file = OpenNamed(folder_, owner_, name, opening);
    if (!file.ok()) return file.status();
    if (file->isCreator() && ftruncate(file->get(), bytes) != 0) return StatusFromErrno(errno);
    return std::unique_ptr<SharedBlock>(std::make_unique<FileBlock>(std::move(*file)));
}

Result<std::unique_ptr<SharedMutex>> LinuxSharedMemory::OpenSharedMutex(std::u16string_view name) {
    Result<NamedFile> file = OpenNamed(folder_, owner_, name, SharedOpening::kOpenOrCreate);
    if (!file.ok()) return file.status();
    return std::unique_ptr<SharedMutex>(std::make_unique<FileMutex>(std::move(*file)));
}

int32_t LinuxSharedMemory::ProgramNumber() const {
    return getpid();
}

}  // namespace kinsort
