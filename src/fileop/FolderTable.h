// Opens the folders of a batch, each time making sure that it is still the folder that was planned for, and keeps a
// bounded number of them open.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "fileop/Batch.h"
#include "platform/Sys.h"

namespace kinsort {

class FolderTable {
  public:
    // `folders` stays the caller's and may grow. Identities of folders that were just made, and the device numbers of
    // folders known from an earlier boot, are written into it.
    FolderTable(Sys& sys, std::vector<FolderRecord>& folders);

    // The index for a folder given by stored path, opened and pinned now. Each folder has one index, however it is
    // reached.
    Result<uint32_t> AddByPath(const std::string& storedPath);
    // The index of a sub-folder. With `info` it exists and is pinned; without, a step will make it.
    uint32_t AddChild(uint32_t parent, std::string_view name, const FileInfo* info);
    // A folder for replaced files; made with mode 0700 when first opened.
    uint32_t AddKeepFolder(uint32_t parent, const std::string& name);

    // The open folder; kChanged when something else stands there now, kIsLink when a link does. Thread-safe.
    Result<std::shared_ptr<const FileHandle>> Open(uint32_t index);
    // Says that `index` was just made and is `info`. Not while other threads open folders.
    void SetMade(uint32_t index, const FileInfo& info);
    // From now on holds only a handful of folders open: descriptors have run out.
    void KeepFewOpen();
    // Closes all, so that the next Open looks again.
    void CloseAll();

    // Whether `info` may be on the volume of the folder; equal numbers are necessary, not sufficient, for a rename.
    bool IsOnVolumeOf(uint32_t index, const FileInfo& info) const { return folders_[index].device == info.device; }

  private:
    std::shared_ptr<const FileHandle> FindOpen(uint32_t index) const;
    Result<FileHandle> OpenFresh(uint32_t index);
    Result<FileHandle> OpenOrMakeKeep(const FileHandle& parent, const FolderRecord& folder);
    bool IsSame(FolderRecord& folder, const FileInfo& info, const FileHandle& handle);

    Sys& sys_;
    std::vector<FolderRecord>& folders_;
    size_t mostOpen_;
    // Every step of every thread looks here: readers must not wait for each other.
    mutable std::shared_mutex cacheMutex_;
    std::recursive_mutex openMutex_;  // a folder's parents are opened on the way
    std::unordered_map<uint32_t, std::shared_ptr<const FileHandle>> open_;
    std::deque<uint32_t> openOrder_;
    std::unordered_map<std::string, uint32_t> byPath_;
    std::unordered_multimap<uint64_t, uint32_t> byInode_;
};

}  // namespace kinsort
