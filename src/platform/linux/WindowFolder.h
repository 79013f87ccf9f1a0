// The top-level windows of all programs of this user, as files in the runtime folder. For the window with the handle h
// there are its socket "window-h" and its record "window-h.class": process, time and class name. The record is locked
// while the window lives; one that is not locked was left by a program that died, and is removed with its socket by
// whoever comes across it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

#include "platform/Status.h"
#include "platform/WindowHandle.h"
#include "platform/linux/Descriptor.h"

namespace kinsort {

// The two files of a window of ours; removed when it goes.
class WindowFiles {
  public:
    WindowFiles(Descriptor folder, WindowHandle handle, Descriptor record)
        : folder_(std::move(folder)), handle_(handle), record_(std::move(record)) {}
    WindowFiles(WindowFiles&& other) noexcept = default;
    WindowFiles& operator=(WindowFiles&&) = delete;
    ~WindowFiles();

    WindowHandle handle() const { return handle_; }
    int socket() const { return socket_.get(); }

  private:
    friend class WindowFolder;

    Descriptor folder_;
    WindowHandle handle_;
    Descriptor record_;
    Descriptor socket_;
};

struct WindowRecord {
    WindowHandle handle = kNoWindow;
    uint32_t processId = 0;
    int64_t madeAtNs = 0;  // since the system started
    std::u16string className;
};

class WindowFolder {
  public:
    // Nothing is created before the first call that needs it. What belongs to others than `owner` does not count.
    WindowFolder(std::string path, uid_t owner) : path_(std::move(path)), owner_(owner) {}

    // A new window of this process with a listening socket, which does not block.
    Result<WindowFiles> Create(std::u16string_view className) const;
    // The windows that live, the newest first.
    std::vector<WindowRecord> List() const;
    bool IsAlive(WindowHandle handle) const;
    // A connection to the window, which does not block. kNotFound when it is gone, kBusy when too many wait already,
    // kAccessDenied when somebody else listens there.
    Result<Descriptor> Connect(WindowHandle handle) const;

    // Whether the process at the other end is the owner's.
    bool IsPeerOwner(int connection) const;

  private:
    std::string path_;
    uid_t owner_;
};

}  // namespace kinsort
