#include "platform/linux/LinuxFileStreams.h"

#include <string>
#include <utility>

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/Descriptor.h"
#include "platform/linux/LinuxError.h"

namespace kinsort {
namespace {

constexpr size_t kBufferBytes = 1 << 16;

// Opening never waits, not even for the other end of a pipe; reading and writing do.
Result<Descriptor> OpenAndLock(const PathPlace& place, int flags, int lock) {
    Descriptor file(openat(place.folder(), place.text.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666));
    if (!file.isOpen()) return StatusFromErrno(errno);
    struct stat info = {};
    if (fstat(file.get(), &info) != 0) return StatusFromErrno(errno);
    if (S_ISDIR(info.st_mode)) return StatusFromErrno(EISDIR);
    // A volume that knows no locks, or a file that cannot be locked, is used without.
    if (flock(file.get(), lock | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
        return StatusFromErrno(EBUSY, StatusCode::kLocked);
    }
    const int state = fcntl(file.get(), F_GETFL);
    if (state < 0 || fcntl(file.get(), F_SETFL, state & ~O_NONBLOCK) != 0) return StatusFromErrno(errno);
    return file;
}

class LinuxInput final : public InputFile {
  public:
    LinuxInput(Descriptor file, std::u16string_view path) : file_(std::move(file)), path_(path) {}

    Result<size_t> Read(std::span<std::byte> bytes) override {
        size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t count = read(file_.get(), bytes.data() + done, bytes.size() - done);
            if (count == 0) break;
            if (count > 0) {
                done += static_cast<size_t>(count);
            } else if (errno != EINTR) {
                return StatusFromErrno(errno).At(path_);
            }
        }
        return done;
    }

  private:
    Descriptor file_;
    std::u16string path_;
};

class LinuxOutput final : public OutputFile {
  public:
    LinuxOutput(Descriptor file, std::u16string_view path) : file_(std::move(file)), path_(path) {
        buffer_.reserve(kBufferBytes);
    }
    ~LinuxOutput() override { static_cast<void>(Close()); }

    Status Write(std::span<const std::byte> bytes) override {
        if (!failure_.ok()) return failure_;
        if (!file_.isOpen()) return Status::Failure(StatusCode::kInvalid).At(path_);
        const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        if (buffer_.size() + text.size() < kBufferBytes) {
            buffer_ += text;
            return {};
        }
        Flush(buffer_);
        buffer_.clear();
        if (failure_.ok()) Flush(text);
        return failure_;
    }

    Status Close() override {
        if (!file_.isOpen()) return failure_;
        if (failure_.ok()) Flush(buffer_);
        buffer_.clear();
        // Volumes at the other end of a network may say only now that something could not be stored.
        if (close(file_.Release()) != 0 && errno != EINTR && failure_.ok()) Fail(errno);
        return failure_;
    }

  private:
    void Fail(int error) { failure_ = StatusFromErrno(error).At(path_); }

    void Flush(std::string_view text) {
        while (!text.empty()) {
            const ssize_t count = write(file_.get(), text.data(), text.size());
            if (count >= 0) {
                text.remove_prefix(static_cast<size_t>(count));
            } else if (errno != EINTR) {
                Fail(errno);
                return;
            }
        }
    }

    Descriptor file_;
    std::u16string path_;
    std::string buffer_;
    Status failure_;
};

}  // namespace

Result<std::unique_ptr<InputFile>> OpenLinuxInput(const PathPlace& place, std::u16string_view path) {
    Result<Descriptor> file = OpenAndLock(place, O_RDONLY, LOCK_SH);
    if (!file.ok()) return file.status().At(std::u16string(path));
    // Only a hint: the file is read from end to end.
    static_cast<void>(posix_fadvise(file->get(), 0, 0, POSIX_FADV_SEQUENTIAL));
    return std::unique_ptr<InputFile>(std::make_unique<LinuxInput>(std::move(*file), path));
}

Result<std::unique_ptr<OutputFile>> OpenLinuxOutput(const PathPlace& place, OutputStart start,
                                                    std::u16string_view path) {
    Result<Descriptor> file = OpenAndLock(place, O_WRONLY | O_CREAT | O_APPEND, LOCK_EX);
    if (!file.ok()) return file.status().At(std::u16string(path));
    // Not at the opening: a file that is locked must stay as it is. What cannot be cut (a pipe) has nothing to lose.
    if (start == OutputStart::kEmpty && ftruncate(file->get(), 0) != 0 && errno != EINVAL) {
        return StatusFromErrno(errno).At(std::u16string(path));
    }
    return std::unique_ptr<OutputFile>(std::make_unique<LinuxOutput>(std::move(*file), path));
}

}  // namespace kinsort
