#include "platform/fake/FaultSys.h"

#include <algorithm>
#include <csignal>
#include <type_traits>
#include <utility>

namespace kinsort {
namespace {

struct CallRow {
    SysCall call;
    std::string_view name;
};

// One row for each function of Sys, in the order of the enumeration.
constexpr CallRow kCalls[] = {
    {SysCall::kOpenFolder, "OpenFolder"},
    {SysCall::kOpenFolderAt, "OpenFolderAt"},
    {SysCall::kOpenParent, "OpenParent"},
    {SysCall::kPathOf, "PathOf"},
    {SysCall::kReadFolder, "ReadFolder"},
    {SysCall::kMakeFolderAt, "MakeFolderAt"},
    {SysCall::kRemoveFolderAt, "RemoveFolderAt"},
    {SysCall::kStat, "Stat"},
    {SysCall::kStatAt, "StatAt"},
    {SysCall::kDescribeVolume, "DescribeVolume"},
    {SysCall::kRenameNoReplace, "RenameNoReplace"},
    {SysCall::kExchange, "Exchange"},
    {SysCall::kLinkAt, "LinkAt"},
    {SysCall::kRemoveFileAt, "RemoveFileAt"},
    {SysCall::kReadLinkAt, "ReadLinkAt"},
    {SysCall::kMakeLinkAt, "MakeLinkAt"},
    {SysCall::kOpenForRead, "OpenForRead"},
    {SysCall::kOpenForWrite, "OpenForWrite"},
    {SysCall::kCreateFileAt, "CreateFileAt"},
    {SysCall::kCreateNameless, "CreateNameless"},
    {SysCall::kNameFile, "NameFile"},
    {SysCall::kRead, "Read"},
    {SysCall::kWrite, "Write"},
    {SysCall::kCopyRange, "CopyRange"},
    {SysCall::kClone, "Clone"},
    {SysCall::kNextData, "NextData"},
    {SysCall::kNextHole, "NextHole"},
    {SysCall::kSetSize, "SetSize"},
    {SysCall::kReserve, "Reserve"},
    {SysCall::kSetMode, "SetMode"},
    {SysCall::kSetTimes, "SetTimes"},
    {SysCall::kSetTimesAt, "SetTimesAt"},
    {SysCall::kCopyUserAttributes, "CopyUserAttributes"},
    {SysCall::kSync, "Sync"},
    {SysCall::kSyncVolume, "SyncVolume"},
    {SysCall::kStartWriteback, "StartWriteback"},
    {SysCall::kTryLock, "TryLock"},
    {SysCall::kBootId, "BootId"},
    {SysCall::kUserNumber, "UserNumber"},
    {SysCall::kClose, "Close"},
};

constexpr bool InOrder() {
    if (std::size(kCalls) != kSysCallCount) return false;
    for (size_t index = 0; index < kSysCallCount; ++index) {
        if (kCalls[index].call != static_cast<SysCall>(index)) return false;
    }
    return true;
}
static_assert(InOrder());

}  // namespace

std::string_view NameOfCall(SysCall call) {
    return kCalls[static_cast<size_t>(call)].name;
}

Fault Fault::Fail(StatusCode code) {
    return Fail(Status::Failure(code, -1000 - static_cast<int>(code)));
}

Fault Fault::Fail(Status status) {
    return {.kind = Kind::kFail, .status = std::move(status), .most = 0, .hook = {}};
}

Fault Fault::Shorten(size_t most) {
    return {.kind = Kind::kShorten, .status = {}, .most = most, .hook = {}};
}

Fault Fault::Hook(std::function<void()> hook) {
    return {.kind = Kind::kHook, .status = {}, .most = 0, .hook = std::move(hook)};
}

FaultSys::FaultSys(Sys& inner) : inner_(inner) {}
FaultSys::~FaultSys() = default;

// --- planning and looking ------------------------------------------------------------------------------------------

void FaultSys::At(uint64_t number, Fault fault) {
    const std::lock_guard lock(mutex_);
    plans_.push_back({std::nullopt, number, false, std::move(fault)});
}

void FaultSys::From(uint64_t number, Fault fault) {
    const std::lock_guard lock(mutex_);
    plans_.push_back({std::nullopt, number, true, std::move(fault)});
}

void FaultSys::AtKind(SysCall call, uint64_t count, Fault fault) {
    const std::lock_guard lock(mutex_);
    plans_.push_back({call, count, false, std::move(fault)});
}

void FaultSys::FromKind(SysCall call, uint64_t count, Fault fault) {
    const std::lock_guard lock(mutex_);
    plans_.push_back({call, count, true, std::move(fault)});
}

void FaultSys::Forget() {
    const std::lock_guard lock(mutex_);
    plans_.clear();
}

uint64_t FaultSys::calls() const {
    const std::lock_guard lock(mutex_);
    return history_.size();
}

uint64_t FaultSys::CountOf(SysCall call) const {
    const std::lock_guard lock(mutex_);
    return counts_[static_cast<size_t>(call)];
}

SysCall FaultSys::CallAt(uint64_t number) const {
    const std::lock_guard lock(mutex_);
    return history_.at(number - 1);
}

std::string FaultSys::Describe(uint64_t number) const {
    const std::lock_guard lock(mutex_);
    std::string text = "call " + std::to_string(number);
    if (number >= 1 && number <= history_.size()) text.append(", ").append(NameOfCall(history_[number - 1]));
    return text;
}

uint64_t FaultSys::strikes() const {
    const std::lock_guard lock(mutex_);
    return strikes_;
}

bool FaultSys::killed() const {
    const std::lock_guard lock(mutex_);
    return killed_;
}

size_t FaultSys::openHandles() const {
    const std::lock_guard lock(mutex_);
    return handles_.size();
}

// --- what happens to a call ----------------------------------------------------------------------------------------

FaultSys::Verdict FaultSys::Begin(SysCall call) {
    const Status dead = Status::Failure(StatusCode::kOther, kKilledSystemCode);
    std::optional<Fault> fault;
    {
        const std::lock_guard lock(mutex_);
        history_.push_back(call);
        const uint64_t count = ++counts_[static_cast<size_t>(call)];
        if (killed_) return {.proceed = false, .result = dead};
        const uint64_t number = history_.size();
        const auto plan = std::find_if(plans_.begin(), plans_.end(), [&](const Plan& p) {
            if (p.call && *p.call != call) return false;
            const uint64_t now = p.call ? count : number;
            return p.onwards ? now >= p.number : now == p.number;
        });
        if (plan == plans_.end()) return {};
        fault = plan->fault;
        ++strikes_;
    }
    switch (fault->kind) {
        case Fault::Kind::kFail:
            return {.proceed = false, .result = fault->status};
        case Fault::Kind::kPretend:
            return {.proceed = false, .result = {}};
        case Fault::Kind::kShorten:
            return {.most = fault->most, .result = {}};
        case Fault::Kind::kHook:
            fault->hook();
            return {};
        case Fault::Kind::kKill:
            Kill();
            return {.proceed = false, .result = dead};
        case Fault::Kind::kSignal:
            (void)std::raise(SIGKILL);
    }
    return {};
}

void FaultSys::Kill() {
    std::map<int, Inner> closed;
    const std::lock_guard lock(mutex_);
    killed_ = true;
    closed.swap(handles_);  // closes them in the other Sys, as the end of a process does
}

FaultSys::Inner FaultSys::InnerOf(const FileHandle& handle) {
    static const Inner none = std::make_shared<FileHandle>();
    const std::lock_guard lock(mutex_);
    const auto found = handles_.find(handle.number());
    return found == handles_.end() ? none : found->second;
}

Result<FileHandle> FaultSys::Wrap(Result<FileHandle> inner) {
    if (!inner.ok()) return inner;
    const std::lock_guard lock(mutex_);
    // Killed by another thread meanwhile: the handle goes with the rest.
    if (killed_) return Status::Failure(StatusCode::kOther, kKilledSystemCode);
    handles_[nextHandle_] = std::make_shared<FileHandle>(std::move(*inner));
    return FileHandle(this, nextHandle_++);
}

template <typename Function>
auto FaultSys::Do(SysCall call, Function function) -> decltype(function()) {
    const Verdict verdict = Begin(call);
    if (verdict.proceed) return function();
    if constexpr (!std::is_same_v<decltype(function()), Status>) {
        // There is no value to pretend with.
        if (verdict.result.ok()) return Status::Failure(StatusCode::kInvalid, kKilledSystemCode);
    }
    return verdict.result;
}

Result<size_t> FaultSys::Transfer(SysCall call, size_t length, const std::function<Result<size_t>(size_t)>& function) {
    const Verdict verdict = Begin(call);
    if (verdict.proceed) return function(std::min(length, verdict.most));
    return verdict.result.ok() ? Status::Failure(StatusCode::kInvalid, kKilledSystemCode) : verdict.result;
}

// --- Sys -----------------------------------------------------------------------------------------------------------

Result<FileHandle> FaultSys::OpenFolder(std::string_view storedPath) {
    return Do(SysCall::kOpenFolder, [&] { return Wrap(inner_.OpenFolder(storedPath)); });
}

Result<FileHandle> FaultSys::OpenFolderAt(const FileHandle& folder, std::string_view name) {
    return Do(SysCall::kOpenFolderAt, [&] { return Wrap(inner_.OpenFolderAt(*InnerOf(folder), name)); });
}

Result<FileHandle> FaultSys::OpenParent(const FileHandle& folder) {
    return Do(SysCall::kOpenParent, [&] { return Wrap(inner_.OpenParent(*InnerOf(folder))); });
}

Result<std::string> FaultSys::PathOf(const FileHandle& folder) {
    return Do(SysCall::kPathOf, [&] { return inner_.PathOf(*InnerOf(folder)); });
}

Status FaultSys::ReadFolder(const FileHandle& folder, const std::function<bool(const FolderEntry&)>& sink) {
    return Do(SysCall::kReadFolder, [&] { return inner_.ReadFolder(*InnerOf(folder), sink); });
}

Status FaultSys::MakeFolderAt(const FileHandle& folder, std::string_view name, uint32_t mode) {
    return Do(SysCall::kMakeFolderAt, [&] { return inner_.MakeFolderAt(*InnerOf(folder), name, mode); });
}

Status FaultSys::RemoveFolderAt(const FileHandle& folder, std::string_view name) {
    return Do(SysCall::kRemoveFolderAt, [&] { return inner_.RemoveFolderAt(*InnerOf(folder), name); });
}

Result<FileInfo> FaultSys::Stat(const FileHandle& handle) {
    return Do(SysCall::kStat, [&] { return inner_.Stat(*InnerOf(handle)); });
}

Result<FileInfo> FaultSys::StatAt(const FileHandle& folder, std::string_view name) {
    return Do(SysCall::kStatAt, [&] { return inner_.StatAt(*InnerOf(folder), name); });
}

Result<VolumeInfo> FaultSys::DescribeVolume(const FileHandle& handle) {
    return Do(SysCall::kDescribeVolume, [&] { return inner_.DescribeVolume(*InnerOf(handle)); });
}

Status FaultSys::RenameNoReplace(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                                 std::string_view to) {
    return Do(SysCall::kRenameNoReplace,
              [&] { return inner_.RenameNoReplace(*InnerOf(fromFolder), from, *InnerOf(toFolder), to); });
}

Status FaultSys::Exchange(const FileHandle& folderA, std::string_view a, const FileHandle& folderB,
                          std::string_view b) {
    return Do(SysCall::kExchange, [&] { return inner_.Exchange(*InnerOf(folderA), a, *InnerOf(folderB), b); });
}

Status FaultSys::LinkAt(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                        std::string_view to) {
    return Do(SysCall::kLinkAt, [&] { return inner_.LinkAt(*InnerOf(fromFolder), from, *InnerOf(toFolder), to); });
}

Status FaultSys::RemoveFileAt(const FileHandle& folder, std::string_view name) {
    return Do(SysCall::kRemoveFileAt, [&] { return inner_.RemoveFileAt(*InnerOf(folder), name); });
}

Result<std::string> FaultSys::ReadLinkAt(const FileHandle& folder, std::string_view name) {
    return Do(SysCall::kReadLinkAt, [&] { return inner_.ReadLinkAt(*InnerOf(folder), name); });
}

Status FaultSys::MakeLinkAt(std::string_view linkText, const FileHandle& folder, std::string_view name) {
    return Do(SysCall::kMakeLinkAt, [&] { return inner_.MakeLinkAt(linkText, *InnerOf(folder), name); });
}

Result<FileHandle> FaultSys::OpenForRead(const FileHandle& folder, std::string_view name) {
    return Do(SysCall::kOpenForRead, [&] { return Wrap(inner_.OpenForRead(*InnerOf(folder), name)); });
}

Result<FileHandle> FaultSys::OpenForWrite(const FileHandle& folder, std::string_view name) {
    return Do(SysCall::kOpenForWrite, [&] { return Wrap(inner_.OpenForWrite(*InnerOf(folder), name)); });
}

Result<FileHandle> FaultSys::CreateFileAt(const FileHandle& folder, std::string_view name, uint32_t mode) {
    return Do(SysCall::kCreateFileAt, [&] { return Wrap(inner_.CreateFileAt(*InnerOf(folder), name, mode)); });
}

Result<FileHandle> FaultSys::CreateNameless(const FileHandle& folder, uint32_t mode) {
    return Do(SysCall::kCreateNameless, [&] { return Wrap(inner_.CreateNameless(*InnerOf(folder), mode)); });
}

Status FaultSys::NameFile(const FileHandle& file, const FileHandle& folder, std::string_view name) {
    return Do(SysCall::kNameFile, [&] { return inner_.NameFile(*InnerOf(file), *InnerOf(folder), name); });
}

Result<size_t> FaultSys::Read(const FileHandle& file, uint64_t offset, std::span<std::byte> buffer) {
    return Transfer(SysCall::kRead, buffer.size(),
                    [&](size_t length) { return inner_.Read(*InnerOf(file), offset, buffer.first(length)); });
}

Result<size_t> FaultSys::Write(const FileHandle& file, uint64_t offset, std::span<const std::byte> data) {
    return Transfer(SysCall::kWrite, data.size(),
                    [&](size_t length) { return inner_.Write(*InnerOf(file), offset, data.first(length)); });
}

Result<size_t> FaultSys::CopyRange(const FileHandle& from, const FileHandle& to, uint64_t offset, uint64_t length) {
    return Transfer(SysCall::kCopyRange, static_cast<size_t>(length),
                    [&](size_t most) { return inner_.CopyRange(*InnerOf(from), *InnerOf(to), offset, most); });
}

Status FaultSys::Clone(const FileHandle& from, const FileHandle& to) {
    return Do(SysCall::kClone, [&] { return inner_.Clone(*InnerOf(from), *InnerOf(to)); });
}

Result<uint64_t> FaultSys::NextData(const FileHandle& file, uint64_t offset) {
    return Do(SysCall::kNextData, [&] { return inner_.NextData(*InnerOf(file), offset); });
}

Result<uint64_t> FaultSys::NextHole(const FileHandle& file, uint64_t offset) {
    return Do(SysCall::kNextHole, [&] { return inner_.NextHole(*InnerOf(file), offset); });
}

Status FaultSys::SetSize(const FileHandle& file, uint64_t size) {
    return Do(SysCall::kSetSize, [&] { return inner_.SetSize(*InnerOf(file), size); });
}

Status FaultSys::Reserve(const FileHandle& file, uint64_t size) {
    return Do(SysCall::kReserve, [&] { return inner_.Reserve(*InnerOf(file), size); });
}

Status FaultSys::SetMode(const FileHandle& handle, uint32_t mode) {
    return Do(SysCall::kSetMode, [&] { return inner_.SetMode(*InnerOf(handle), mode); });
}

Status FaultSys::SetTimes(const FileHandle& handle, int64_t accessedNs, int64_t modifiedNs) {
    return Do(SysCall::kSetTimes, [&] { return inner_.SetTimes(*InnerOf(handle), accessedNs, modifiedNs); });
}

Status FaultSys::SetTimesAt(const FileHandle& folder, std::string_view name, int64_t accessedNs, int64_t modifiedNs) {
    return Do(SysCall::kSetTimesAt, [&] { return inner_.SetTimesAt(*InnerOf(folder), name, accessedNs, modifiedNs); });
}

Status FaultSys::CopyUserAttributes(const FileHandle& from, const FileHandle& to) {
    return Do(SysCall::kCopyUserAttributes, [&] { return inner_.CopyUserAttributes(*InnerOf(from), *InnerOf(to)); });
}

Status FaultSys::Sync(const FileHandle& handle) {
    return Do(SysCall::kSync, [&] { return inner_.Sync(*InnerOf(handle)); });
}

Status FaultSys::SyncVolume(const FileHandle& handle) {
    return Do(SysCall::kSyncVolume, [&] { return inner_.SyncVolume(*InnerOf(handle)); });
}

void FaultSys::StartWriteback(const FileHandle& file, uint64_t offset, uint64_t length) {
    if (Begin(SysCall::kStartWriteback).proceed) inner_.StartWriteback(*InnerOf(file), offset, length);
}

Status FaultSys::TryLock(const FileHandle& file) {
    return Do(SysCall::kTryLock, [&] { return inner_.TryLock(*InnerOf(file)); });
}

std::string FaultSys::BootId() {
    return Begin(SysCall::kBootId).proceed ? inner_.BootId() : std::string();
}

uint32_t FaultSys::UserNumber() {
    (void)Begin(SysCall::kUserNumber);
    return inner_.UserNumber();
}

// A handle is gone whatever its closing says, as with the system.
Status FaultSys::Close(int number) {
    const Verdict verdict = Begin(SysCall::kClose);
    Inner closed;
    {
        const std::lock_guard lock(mutex_);
        const auto found = handles_.find(number);
        if (found == handles_.end())
            return verdict.proceed ? Status::Failure(StatusCode::kInvalid, kKilledSystemCode) : verdict.result;
        closed = std::move(found->second);
        handles_.erase(found);
    }
    const Status status = closed->Close();
    return verdict.proceed ? status : verdict.result;
}

}  // namespace kinsort
