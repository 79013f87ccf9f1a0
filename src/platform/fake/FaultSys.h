// A Sys in front of another one that numbers every call and makes chosen calls go wrong.
//
//   FaultSys faults(disk);
//   faults.At(17, Fault::Fail(StatusCode::kNoSpace));
//   faults.AtKind(SysCall::kSync, 2, Fault::Pretend());     // the second sync does nothing and says it did
//   faults.At(40, Fault::Kill());
//   ... run the engine on `faults`; then a new engine on `disk` finds what a killed one left.
//
// Calls count from 1, in the order in which they start; with a single engine thread the numbers are the same in every
// run. Closing counts. A call that fails here never reaches the other Sys. Thread-safe; hooks run outside any lock, may
// use the other Sys directly, and may plan further faults. The other Sys must outlive this one.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Sys.h"

namespace kinsort {

// One row for each function of Sys, in its order.
enum class SysCall : uint8_t {
    kOpenFolder,
    kOpenFolderAt,
    kOpenParent,
    kPathOf,
    kReadFolder,
    kMakeFolderAt,
    kRemoveFolderAt,
    kStat,
    kStatAt,
    kDescribeVolume,
    kRenameNoReplace,
    kExchange,
    kLinkAt,
    kRemoveFileAt,
    kReadLinkAt,
    kMakeLinkAt,
    kOpenForRead,
    kOpenForWrite,
    kCreateFileAt,
    kCreateNameless,
    kNameFile,
    kRead,
    kWrite,
    kCopyRange,
    kClone,
    kNextData,
    kNextHole,
    kSetSize,
    kReserve,
    kSetMode,
    kSetTimes,
    kSetTimesAt,
    kCopyUserAttributes,
    kSync,
    kSyncVolume,
    kStartWriteback,
    kTryLock,
    kBootId,
    kUserNumber,
    kClose,
};
constexpr size_t kSysCallCount = static_cast<size_t>(SysCall::kClose) + 1;

// The function's name in Sys.
std::string_view NameOfCall(SysCall call);

// What every call of a killed engine fails with: kOther and this number.
constexpr int kKilledSystemCode = -9999;

// What happens to one call.
struct Fault {
    enum class Kind : uint8_t {
        kFail,     // returns the status, does nothing
        kShorten,  // a transfer moves at most `most` bytes
        kHook,     // calls the hook first
        kPretend,  // says it succeeded, does nothing; for calls that return a plain Status
        kKill,     // this call and all later ones do nothing and fail; every handle is closed in the other Sys
        kSignal,   // ends this process by SIGKILL
    };
    Kind kind = Kind::kFail;
    Status status;
    size_t most = 0;
    std::function<void()> hook;

    static Fault Fail(StatusCode code);  // the system's number is -1000 - code
    static Fault Fail(Status status);
    static Fault Interrupt() { return Fail(StatusCode::kInterrupted); }  // once: the next try is another call
    static Fault Shorten(size_t most);
    static Fault Hook(std::function<void()> hook);
    static Fault Pretend() { return {.kind = Kind::kPretend, .status = {}, .most = 0, .hook = {}}; }
    static Fault Kill() { return {.kind = Kind::kKill, .status = {}, .most = 0, .hook = {}}; }
    static Fault Signal() { return {.kind = Kind::kSignal, .status = {}, .most = 0, .hook = {}}; }
};

class FaultSys final : public Sys {
  public:
    explicit FaultSys(Sys& inner);
    ~FaultSys() override;

    // --- planning: several faults may be planned; the first that fits a call strikes ---------------------------
    void At(uint64_t number, Fault fault);                     // the call with this number
    void From(uint64_t number, Fault fault);                   // this one and every later one
    void AtKind(SysCall call, uint64_t count, Fault fault);    // the count-th call of this kind, from 1
    void FromKind(SysCall call, uint64_t count, Fault fault);  // this one and every later one of the kind
    void Forget();                                             // all plans; what was killed stays so

    // --- looking ------------------------------------------------------------------------------------------------
    uint64_t calls() const;                 // made so far, those that failed here too
    uint64_t CountOf(SysCall call) const;   // of this kind
    SysCall CallAt(uint64_t number) const;  // which call had the number; it must have been made
    // "call 17, Sync", for a test's report.
    std::string Describe(uint64_t number) const;
    uint64_t strikes() const;  // how many calls met a fault: 0 means that a test tested nothing
    bool killed() const;
    size_t openHandles() const;

    // --- Sys ----------------------------------------------------------------------------------------------------
    Result<FileHandle> OpenFolder(std::string_view storedPath) override;
    Result<FileHandle> OpenFolderAt(const FileHandle& folder, std::string_view name) override;
    Result<FileHandle> OpenParent(const FileHandle& folder) override;
    Result<std::string> PathOf(const FileHandle& folder) override;
    Status ReadFolder(const FileHandle& folder, const std::function<bool(const FolderEntry&)>& sink) override;
    Status MakeFolderAt(const FileHandle& folder, std::string_view name, uint32_t mode) override;
    Status RemoveFolderAt(const FileHandle& folder, std::string_view name) override;
    Result<FileInfo> Stat(const FileHandle& handle) override;
    Result<FileInfo> StatAt(const FileHandle& folder, std::string_view name) override;
    Result<VolumeInfo> DescribeVolume(const FileHandle& handle) override;
    Status RenameNoReplace(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                           std::string_view to) override;
    Status Exchange(const FileHandle& folderA, std::string_view a, const FileHandle& folderB,
                    std::string_view b) override;
    Status LinkAt(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                  std::string_view to) override;
    Status RemoveFileAt(const FileHandle& folder, std::string_view name) override;
    Result<std::string> ReadLinkAt(const FileHandle& folder, std::string_view name) override;
    Status MakeLinkAt(std::string_view linkText, const FileHandle& folder, std::string_view name) override;
    Result<FileHandle> OpenForRead(const FileHandle& folder, std::string_view name) override;
    Result<FileHandle> OpenForWrite(const FileHandle& folder, std::string_view name) override;
    Result<FileHandle> CreateFileAt(const FileHandle& folder, std::string_view name, uint32_t mode) override;
    Result<FileHandle> CreateNameless(const FileHandle& folder, uint32_t mode) override;
    Status NameFile(const FileHandle& file, const FileHandle& folder, std::string_view name) override;
    Result<size_t> Read(const FileHandle& file, uint64_t offset, std::span<std::byte> buffer) override;
    Result<size_t> Write(const FileHandle& file, uint64_t offset, std::span<const std::byte> data) override;
    Result<size_t> CopyRange(const FileHandle& from, const FileHandle& to, uint64_t offset, uint64_t length) override;
    Status Clone(const FileHandle& from, const FileHandle& to) override;
    Result<uint64_t> NextData(const FileHandle& file, uint64_t offset) override;
    Result<uint64_t> NextHole(const FileHandle& file, uint64_t offset) override;
    Status SetSize(const FileHandle& file, uint64_t size) override;
    Status Reserve(const FileHandle& file, uint64_t size) override;
    Status SetMode(const FileHandle& handle, uint32_t mode) override;
    Status SetTimes(const FileHandle& handle, int64_t accessedNs, int64_t modifiedNs) override;
    Status SetTimesAt(const FileHandle& folder, std::string_view name, int64_t accessedNs, int64_t modifiedNs) override;
    Status CopyUserAttributes(const FileHandle& from, const FileHandle& to) override;
    Status Sync(const FileHandle& handle) override;
    Status SyncVolume(const FileHandle& handle) override;
    void StartWriteback(const FileHandle& file, uint64_t offset, uint64_t length) override;
    Status TryLock(const FileHandle& file) override;
    std::string BootId() override;
    uint32_t UserNumber() override;
    Status Close(int number) override;

  private:
    struct Plan {
        std::optional<SysCall> call;  // nothing: the number counts all calls
        uint64_t number = 0;
        bool onwards = false;
        Fault fault;
    };
    // The other Sys's handle; shared, so that one thread's call keeps it while another thread's call kills.
    using Inner = std::shared_ptr<FileHandle>;

    struct Verdict {
        bool proceed = true;
        size_t most = SIZE_MAX;  // bytes of a transfer
        Status result = {};      // when it does not proceed
    };
    Verdict Begin(SysCall call);
    void Kill();
    Inner InnerOf(const FileHandle& handle);
    Result<FileHandle> Wrap(Result<FileHandle> inner);
    template <typename Function>
    auto Do(SysCall call, Function function) -> decltype(function());
    Result<size_t> Transfer(SysCall call, size_t length, const std::function<Result<size_t>(size_t)>& function);

    Sys& inner_;
    mutable std::mutex mutex_;
    std::vector<Plan> plans_;
    std::vector<SysCall> history_;
    std::array<uint64_t, kSysCallCount> counts_{};
    std::map<int, Inner> handles_;
    int nextHandle_ = 1;
    uint64_t strikes_ = 0;
    bool killed_ = false;
};

}  // namespace kinsort
