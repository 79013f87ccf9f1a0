#include "platform/linux/WindowFolder.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <optional>
#include <utility>

#include <errno.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <time.h>
#include <unistd.h>

#include "platform/WindowMessages.h"
#include "platform/linux/FolderStream.h"
#include "platform/linux/LinuxError.h"
#include "platform/linux/RuntimeFolder.h"

namespace kinsort {

namespace {

constexpr std::string_view kPrefix = "window-";
constexpr std::string_view kRecordEnding = ".class";
constexpr size_t kHandleDigits = 16;
// Handles stay whole in programs that keep every number as floating point.
constexpr WindowHandle kHandleMask = (WindowHandle{1} << 53) - 1;
constexpr int kBacklog = 64;

std::string SocketName(WindowHandle handle) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string name(kPrefix);
    for (size_t i = kHandleDigits; i-- > 0;)
        name += kDigits[(handle >> (4 * i)) & 0xF];
    return name;
}

std::string RecordName(WindowHandle handle) {
    return SocketName(handle).append(kRecordEnding);
}

WindowHandle HandleOfRecord(std::string_view name) {
    if (!name.starts_with(kPrefix) || !name.ends_with(kRecordEnding)) return kNoWindow;
    const std::string_view digits = name.substr(kPrefix.size(), name.size() - kPrefix.size() - kRecordEnding.size());
    WindowHandle handle = kNoWindow;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), handle, 16);
    return error == std::errc() && RecordName(handle) == name ? handle : kNoWindow;
}

// The socket's address through the open folder: as short as sockets need it, whatever the folder's path, and the folder
// cannot be exchanged meanwhile.
sockaddr_un AddressOf(int folder, WindowHandle handle) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    const std::string path = "/proc/self/fd/" + std::to_string(folder) + "/" + SocketName(handle);
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return address;
}

// The fixed part of a record; the class name in UTF-16 follows.
struct RecordHead {
    uint32_t magic = kMagic;
    uint32_t processId = 0;
    int64_t madeAtNs = 0;

    static constexpr uint32_t kMagic = 0x3152'4C56;  // "VLR1"
};

int64_t NanosecondsSinceStart() {
    timespec now = {};
    clock_gettime(CLOCK_BOOTTIME, &now);
    return int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

Status WriteRecord(int record, std::u16string_view className) {
    const RecordHead head{.processId = static_cast<uint32_t>(getpid()), .madeAtNs = NanosecondsSinceStart()};
    std::vector<char> bytes(sizeof head + className.size() * sizeof(char16_t));
    std::memcpy(bytes.data(), &head, sizeof head);
    std::memcpy(bytes.data() + sizeof head, className.data(), className.size() * sizeof(char16_t));
    const ssize_t put = pwrite(record, bytes.data(), bytes.size(), 0);
    if (put < 0) return StatusFromErrno(errno);
    return static_cast<size_t>(put) == bytes.size() ? Status() : StatusFromErrno(ENOSPC);
}

std::optional<WindowRecord> ReadRecord(int record, WindowHandle handle) {
    std::array<char, sizeof(RecordHead) + kMaxClassNameUnits * sizeof(char16_t)> bytes;
    const ssize_t got = pread(record, bytes.data(), bytes.size(), 0);
    RecordHead head;
    if (got <= static_cast<ssize_t>(sizeof head)) return std::nullopt;
    std::memcpy(&head, bytes.data(), sizeof head);
    if (head.magic != RecordHead::kMagic) return std::nullopt;
    std::u16string className((static_cast<size_t>(got) - sizeof head) / sizeof(char16_t), u'\0');
    std::memcpy(className.data(), bytes.data() + sizeof head, className.size() * sizeof(char16_t));
    return WindowRecord{handle, head.processId, head.madeAtNs, std::move(className)};
}

void RemoveFiles(int folder, WindowHandle handle, uid_t owner) {
    struct stat info;
    const std::string socketName = SocketName(handle);
    const bool isOurSocket = fstatat(folder, socketName.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
                             S_ISSOCK(info.st_mode) && info.st_uid == owner;
    if (isOurSocket) unlinkat(folder, socketName.c_str(), 0);
    unlinkat(folder, RecordName(handle).c_str(), 0);
}

// The record of a window that lives; not open when there is none. Removes one whose program has died.
Descriptor OpenLiveRecord(int folder, WindowHandle handle, uid_t owner) {
    Descriptor record(openat(folder, RecordName(handle).c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat info;
    if (!record.isOpen() || fstat(record.get(), &info) != 0 || !S_ISREG(info.st_mode) || info.st_uid != owner) {
        return Descriptor();
    }
    if (flock(record.get(), LOCK_SH | LOCK_NB) != 0) return record;
    // A window that is just being made waits for our lock and then notices that its record was taken away.
    RemoveFiles(folder, handle, owner);
    return Descriptor();
}

// A new record that is locked by us; not open when the try is to be repeated.
Result<Descriptor> MakeRecord(int folder, WindowHandle handle) {
    Descriptor record(
        openat(folder, RecordName(handle).c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!record.isOpen()) return errno == EEXIST ? Result<Descriptor>(Descriptor()) : StatusFromErrno(errno);
    while (flock(record.get(), LOCK_EX) != 0) {
        if (errno != EINTR) return StatusFromErrno(errno);
    }
    struct stat info;
    if (fstat(record.get(), &info) != 0) return StatusFromErrno(errno);
    return info.st_nlink == 0 ? Descriptor() : std::move(record);
}

Result<Descriptor> Listen(int folder, WindowHandle handle) {
    Descriptor listener(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!listener.isOpen()) return StatusFromErrno(errno);
    const sockaddr_un address = AddressOf(folder, handle);
    // The mode before the name: the name is never there with another one.
    if (fchmod(listener.get(), 0600) != 0 ||
        bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener.get(), kBacklog) != 0) {
        return StatusFromErrno(errno);
    }
    return listener;
}

}  // namespace

WindowFiles::~WindowFiles() {
    if (record_.isOpen()) RemoveFiles(folder_.get(), handle_, geteuid());
}

Result<WindowFiles> WindowFolder::Create(std::u16string_view className) const {
    const bool isName =
        !className.empty() && className.size() <= kMaxClassNameUnits && className.find(u'\0') == className.npos;
    if (!isName) return StatusFromErrno(EINVAL);
    (void)List();  // what dead programs left goes at the latest now
    // A number that is taken, and a record that somebody cleaned away, are as rare as can be.
    for (int round = 0; round < 8; ++round) {
        Result<Descriptor> folder = OpenRuntimeFolder(path_, owner_);
        if (!folder.ok()) return folder.status();
        WindowHandle handle = kNoWindow;
        if (getrandom(&handle, sizeof handle, 0) != sizeof handle) return StatusFromErrno(errno);
        handle &= kHandleMask;
        if (handle == kNoWindow) continue;
        Result<Descriptor> record = MakeRecord(folder->get(), handle);
        if (!record.ok()) return record.status();
        if (!record->isOpen()) continue;
        WindowFiles files(std::move(*folder), handle, std::move(*record));
        Status status = WriteRecord(files.record_.get(), className);
        if (!status.ok()) return status;
        Result<Descriptor> listener = Listen(files.folder_.get(), handle);
        if (!listener.ok()) return listener.status();
        files.socket_ = std::move(*listener);
        return files;
    }
    return StatusFromErrno(EBUSY);
}

std::vector<WindowRecord> WindowFolder::List() const {
    std::vector<WindowRecord> windows;
    Result<Descriptor> folder = OpenRuntimeFolder(path_, owner_);
    if (!folder.ok()) return windows;
    const FolderStream entries = ListFolder(folder->get());
    if (entries == nullptr) return windows;
    while (const dirent* entry = readdir(entries.get())) {
        const WindowHandle handle = HandleOfRecord(entry->d_name);
        if (handle == kNoWindow) continue;
        const Descriptor record = OpenLiveRecord(folder->get(), handle, owner_);
        if (!record.isOpen()) continue;
        if (std::optional<WindowRecord> window = ReadRecord(record.get(), handle))
            windows.push_back(std::move(*window));
    }
    std::ranges::sort(windows, [](const WindowRecord& a, const WindowRecord& b) {
        return a.madeAtNs != b.madeAtNs ? a.madeAtNs > b.madeAtNs : a.handle > b.handle;
    });
    return windows;
}

bool WindowFolder::IsAlive(WindowHandle handle) const {
    if (handle == kNoWindow) return false;
    const Result<Descriptor> folder = OpenRuntimeFolder(path_, owner_);
    return folder.ok() && OpenLiveRecord(folder->get(), handle, owner_).isOpen();
}

Result<Descriptor> WindowFolder::Connect(WindowHandle handle) const {
    const Result<Descriptor> folder = OpenRuntimeFolder(path_, owner_);
    if (!folder.ok()) return folder.status();
    Descriptor connection(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!connection.isOpen()) return StatusFromErrno(errno);
    const sockaddr_un address = AddressOf(folder->get(), handle);
    while (connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        if (errno == EINTR) continue;
        if (errno == EAGAIN) return StatusFromErrno(EAGAIN, StatusCode::kBusy);
        const bool isGone = errno == ENOENT || errno == ECONNREFUSED;
        return isGone ? StatusFromErrno(errno, StatusCode::kNotFound) : StatusFromErrno(errno);
    }
    if (!IsPeerOwner(connection.get())) return StatusFromErrno(EACCES);
    return connection;
}

bool WindowFolder::IsPeerOwner(int connection) const {
    ucred peer = {};
    socklen_t size = sizeof peer;
    return getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && size == sizeof peer &&
           peer.uid == owner_;
}

}  // namespace kinsort
