// The one result type of the house: what went wrong (a code that every platform shares), the system's own number and
// text for it, and the path it is about. A backend translates system errors into it once; nobody else reads errno.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace kinsort {

// What a failure means to the caller. Cancelling is not a failure and has no code here.
enum class StatusCode : uint8_t {
    kOk,
    kNotFound,      // the name, or a folder on the way to it, does not exist
    kExists,        // the name is taken already
    kAccessDenied,  // permissions, an immutable file, a sticky folder
    kReadOnly,      // the volume is mounted read-only
    kNoSpace,       // no blocks or no file entries left
    kQuota,         // the user's share is used up
    kFileTooLarge,  // larger than the volume or the process limit allows
    kNameTooLong,   // a name the volume cannot hold
    kNotFolder,     // a folder was expected
    kIsFolder,      // a file was expected
    kNotEmpty,      // a folder that should be empty is not
    kIsLink,        // a link stands where none is followed
    kCrossVolume,   // source and target are on different volumes
    kUnsupported,   // the volume or the system cannot do this
    kTooManyOpen,   // no descriptor left
    kOutOfMemory,   //
    kBusy,          // in use by the system: a mount point, a running program
    kInterrupted,   // a signal came first; try again
    kStale,         // a network handle that is no longer valid
    kIo,            // the device failed
    kInvalid,       // the request itself makes no sense
    kLocked,        // another process holds the lock
    kTimedOut,      //
    kChanged,       // what is there is not what was looked at before
    kCorrupt,       // stored data that does not check out
    kTooNew,        // stored data of a later format
    kOther,
};

// Whether there is no room left: on the volume, or in the user's share of it.
constexpr bool MeansFull(StatusCode code) {
    return code == StatusCode::kNoSpace || code == StatusCode::kQuota;
}

class [[nodiscard]] Status {
  public:
    Status() = default;  // success

    // `systemCode` is the platform's own number, 0 when the failure is ours; `systemText` its text in the user's
    // language, empty when there is none.
    static Status Failure(StatusCode code, int systemCode = 0, std::u16string systemText = {}) {
        Status status;
        status.code_ = code;
        if (systemCode != 0 || !systemText.empty()) {
            status.detail_ = std::make_shared<const Detail>(Detail{systemCode, std::move(systemText), {}});
        }
        return status;
    }

    bool ok() const { return code_ == StatusCode::kOk; }
    StatusCode code() const { return code_; }
    int systemCode() const { return detail_ ? detail_->systemCode : 0; }
    const std::u16string& systemText() const { return detail_ ? detail_->systemText : Empty(); }
    // The path the failure is about, inner form; empty when nobody said.
    const std::u16string& path() const { return detail_ ? detail_->path : Empty(); }

    // The same failure, said of `path`. A success stays one.
    Status At(std::u16string path) const {
        if (ok()) return *this;
        Status status;
        status.code_ = code_;
        status.detail_ = std::make_shared<const Detail>(Detail{systemCode(), systemText(), std::move(path)});
        return status;
    }

  private:
    struct Detail {
        int systemCode;
        std::u16string systemText;
        std::u16string path;
    };
    static const std::u16string& Empty() {
        static const std::u16string empty;
        return empty;
    }
    StatusCode code_ = StatusCode::kOk;
    std::shared_ptr<const Detail> detail_;  // none where the code says it all
};

// A value, or the status that says why there is none.
template <typename T>
class [[nodiscard]] Result {
  public:
    Result(T value) : value_(std::move(value)) {}            // NOLINT(google-explicit-constructor): reads as a return
    Result(Status failure) : status_(std::move(failure)) {}  // NOLINT(google-explicit-constructor)

    bool ok() const { return value_.has_value(); }
    const Status& status() const { return status_; }
    StatusCode code() const { return status_.code(); }
    T& value() { return *value_; }
    const T& value() const { return *value_; }
    T& operator*() { return *value_; }
    const T& operator*() const { return *value_; }
    T* operator->() { return &*value_; }
    const T* operator->() const { return &*value_; }

  private:
    std::optional<T> value_;
    Status status_;
};

}  // namespace kinsort
