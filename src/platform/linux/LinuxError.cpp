#include "platform/linux/LinuxError.h"

#include <algorithm>
#include <vector>

#include <errno.h>
#include <string.h>

#include "text/Utf8.h"

namespace kinsort {
namespace {

struct Row {
    int error;
    StatusCode code;
};

// To add one: a number, and what a caller who cannot see the number should take it for.
constexpr Row kRows[] = {
    {ENOENT, StatusCode::kNotFound},
    {EEXIST, StatusCode::kExists},
    {EACCES, StatusCode::kAccessDenied},
    {EPERM, StatusCode::kAccessDenied},
    {EROFS, StatusCode::kReadOnly},
    {ENOSPC, StatusCode::kNoSpace},
    {EDQUOT, StatusCode::kQuota},
    {EFBIG, StatusCode::kFileTooLarge},
    {EOVERFLOW, StatusCode::kFileTooLarge},
    {ENAMETOOLONG, StatusCode::kNameTooLong},
    {EILSEQ, StatusCode::kNameTooLong},  // a volume that takes only well-formed names
    {ENOTDIR, StatusCode::kNotFolder},
    {EISDIR, StatusCode::kIsFolder},
    {ENOTEMPTY, StatusCode::kNotEmpty},
    {ELOOP, StatusCode::kIsLink},
    {EXDEV, StatusCode::kCrossVolume},
    {EOPNOTSUPP, StatusCode::kUnsupported},
    {ENOSYS, StatusCode::kUnsupported},
    {ENOTTY, StatusCode::kUnsupported},  // an ioctl that the volume does not know
    {EMLINK, StatusCode::kUnsupported},  // as many names as the volume can give one file
    {ENOLCK, StatusCode::kUnsupported},
    {EMFILE, StatusCode::kTooManyOpen},
    {ENFILE, StatusCode::kTooManyOpen},
    {ENOMEM, StatusCode::kOutOfMemory},
    {EBUSY, StatusCode::kBusy},
    {ETXTBSY, StatusCode::kBusy},
    {EAGAIN, StatusCode::kBusy},
    {EINTR, StatusCode::kInterrupted},
    {ESTALE, StatusCode::kStale},
    {ENOTCONN, StatusCode::kStale},  // the program behind a user-space volume is gone
    {EIO, StatusCode::kIo},
    {EREMOTEIO, StatusCode::kIo},
    {EUCLEAN, StatusCode::kIo},  // the volume's own structures are damaged
    {EBADMSG, StatusCode::kIo},
    {ENODEV, StatusCode::kIo},
    {EINVAL, StatusCode::kInvalid},
    {EBADF, StatusCode::kInvalid},
    {EDEADLK, StatusCode::kLocked},
    {ETIMEDOUT, StatusCode::kTimedOut},
};

Status Build(int error, StatusCode code) {
    char buffer[256];
    // The variant that returns the text, which need not be in the buffer.
    const char* text = strerror_r(error, buffer, sizeof buffer);
    return Status::Failure(code, error, FromUtf8(text));
}

constexpr int kHighestError = EHWPOISON;

std::vector<Status> BuildAll() {
    std::vector<Status> all;
    all.reserve(kHighestError + 1);
    for (int error = 0; error <= kHighestError; ++error)
        all.push_back(Build(error, CodeOfErrno(error)));
    return all;
}

}  // namespace

StatusCode CodeOfErrno(int error) {
    const Row* row = std::find_if(std::begin(kRows), std::end(kRows), [&](const Row& r) { return r.error == error; });
    return row == std::end(kRows) ? StatusCode::kOther : row->code;
}

Status StatusFromErrno(int error) {
    static const std::vector<Status> all = BuildAll();
    if (error < 0 || error > kHighestError) return Build(error, StatusCode::kOther);
    return all[static_cast<size_t>(error)];
}

Status StatusFromErrno(int error, StatusCode code) {
    return code == CodeOfErrno(error) ? StatusFromErrno(error) : Build(error, code);
}

}  // namespace kinsort
