#include "fileop/FolderTable.h"

#include <utility>

namespace kinsort {

namespace {

// Far below the limits on descriptors, and enough for the folders that one group works in.
constexpr size_t kMostOpen = 256;
constexpr size_t kFewOpen = 6;

FolderRecord RecordOf(uint32_t parent, std::string name, const FileInfo* info) {
    FolderRecord record;
    record.parent = parent;
    record.name = std::move(name);
    if (info != nullptr) {
        record.device = info->device;
        record.inode = info->inode;
        record.createdNs = info->createdNs;
        record.modifiedNs = info->modifiedNs;
    }
    return record;
}

}  // namespace

FolderTable::FolderTable(Sys& sys, std::vector<FolderRecord>& folders)
    : sys_(sys), folders_(folders), mostOpen_(kMostOpen) {}

Result<uint32_t> FolderTable::AddByPath(const std::string& storedPath) {
    if (const auto known = byPath_.find(storedPath); known != byPath_.end()) return known->second;
    Result<FileHandle> handle = sys_.OpenFolder(storedPath);
    if (!handle.ok()) return handle.status();
    const Result<FileInfo> info = sys_.Stat(*handle);
    if (!info.ok()) return info.status();
    const auto [first, last] = byInode_.equal_range(info->inode);
    for (auto known = first; known != last; ++known) {
        const FolderRecord& other = folders_[known->second];
        if (other.device == info->device && other.createdNs == info->createdNs) {
            byPath_.emplace(storedPath, known->second);
            return known->second;
        }
    }
    const Result<std::string> resolved = sys_.PathOf(*handle);
    FolderRecord record = RecordOf(kNoIndex, resolved.ok() ? *resolved : storedPath, &*info);
    if (const Result<VolumeInfo> volume = sys_.DescribeVolume(*handle); volume.ok()) record.volumeId = volume->volumeId;
    folders_.push_back(std::move(record));
    const auto index = static_cast<uint32_t>(folders_.size() - 1);
    byPath_.emplace(storedPath, index);
    byInode_.emplace(info->inode, index);
    return index;
}

uint32_t FolderTable::AddChild(uint32_t parent, std::string_view name, const FileInfo* info) {
    FolderRecord record = RecordOf(parent, std::string(name), info);
    if (info == nullptr) record.device = folders_[parent].device;
    record.volumeId = folders_[parent].volumeId;
    folders_.push_back(std::move(record));
    return static_cast<uint32_t>(folders_.size() - 1);
}

uint32_t FolderTable::AddKeepFolder(uint32_t parent, const std::string& name) {
    const uint32_t index = AddChild(parent, name, nullptr);
    folders_[index].isKeep = true;
    return index;
}

Result<std::shared_ptr<const FileHandle>> FolderTable::Open(uint32_t index) {
    if (auto known = FindOpen(index)) return known;
    const std::lock_guard opening(openMutex_);
    if (auto known = FindOpen(index)) return known;  // another thread was faster
    Result<FileHandle> handle = OpenFresh(index);
    if (handle.code() == StatusCode::kTooManyOpen) {
        CloseAll();
        handle = OpenFresh(index);
    }
    if (!handle.ok()) return handle.status();
    const Result<FileInfo> info = sys_.Stat(*handle);
    if (!info.ok()) return info.status();
    FolderRecord& folder = folders_[index];
    if (folder.inode == 0) {
        SetMade(index, *info);
    } else if (!IsSame(folder, *info, *handle)) {
        return Status::Failure(StatusCode::kChanged);
    }
    auto shared = std::make_shared<const FileHandle>(std::move(*handle));
    const std::unique_lock lock(cacheMutex_);
    if (open_.size() >= mostOpen_) {
        open_.erase(openOrder_.front());
        openOrder_.pop_front();
    }
    open_.emplace(index, shared);
    openOrder_.push_back(index);
    return shared;
}

std::shared_ptr<const FileHandle> FolderTable::FindOpen(uint32_t index) const {
    const std::shared_lock lock(cacheMutex_);
    const auto found = open_.find(index);
    return found == open_.end() ? nullptr : found->second;
}

Result<FileHandle> FolderTable::OpenFresh(uint32_t index) {
    const FolderRecord& folder = folders_[index];
    if (folder.parent == kNoIndex) return sys_.OpenFolder(folder.name);
    const Result<std::shared_ptr<const FileHandle>> parent = Open(folder.parent);
    if (!parent.ok()) return parent.status();
    return folder.isKeep ? OpenOrMakeKeep(**parent, folder) : sys_.OpenFolderAt(**parent, folder.name);
}

Result<FileHandle> FolderTable::OpenOrMakeKeep(const FileHandle& parent, const FolderRecord& folder) {
    Result<FileHandle> handle = sys_.OpenFolderAt(parent, folder.name);
    if (handle.code() == StatusCode::kNotFound) {
        const Status made = sys_.MakeFolderAt(parent, folder.name, 0700);
        if (!made.ok() && made.code() != StatusCode::kExists) return made;
        handle = sys_.OpenFolderAt(parent, folder.name);
    }
    if (!handle.ok()) return handle;
    // Whoever can write here could take the only copy of a replaced file away.
    const Result<FileInfo> info = sys_.Stat(*handle);
    if (!info.ok()) return info.status();
    constexpr uint32_t kOthers = 0077;
    const bool isPrivate = info->owner == sys_.UserNumber() && (info->mode & kOthers) == 0;
    return isPrivate ? std::move(handle) : Result<FileHandle>(Status::Failure(StatusCode::kAccessDenied));
}

void FolderTable::SetMade(uint32_t index, const FileInfo& info) {
    FolderRecord& folder = folders_[index];
    folder.device = info.device;
    folder.inode = info.inode;
    folder.createdNs = info.createdNs;
}

void FolderTable::KeepFewOpen() {
    CloseAll();
    mostOpen_ = kFewOpen;
}

void FolderTable::CloseAll() {
    const std::unique_lock lock(cacheMutex_);
    open_.clear();
    openOrder_.clear();
}

bool FolderTable::IsSame(FolderRecord& folder, const FileInfo& info, const FileHandle& handle) {
    if (folder.inode != info.inode || folder.createdNs != info.createdNs) return false;
    if (!folder.isOtherBoot) return folder.device == info.device;
    const Result<VolumeInfo> volume = sys_.DescribeVolume(handle);
    if (!volume.ok() || volume->volumeId != folder.volumeId) return false;
    folder.device = info.device;
    folder.isOtherBoot = false;
    return true;
}

}  // namespace kinsort
