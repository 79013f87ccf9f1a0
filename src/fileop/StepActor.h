// What a single step does to the file system, phase by phase. It decides nothing about order, durability or questions:
// that is the runner's.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include "fileop/Batch.h"
#include "fileop/FileContent.h"
#include "fileop/FolderTable.h"
#include "platform/Sys.h"

namespace kinsort {

struct StepResult {
    ItemReason reason = ItemReason::kNone;
    Status status;

    bool ok() const { return reason == ItemReason::kNone; }
};

// Content that is complete and has no visible name yet.
struct PreparedContent {
    FileHandle file;  // closed for links, which have no content to prepare
    // Where its temporary name is; null when it has none, as on volumes with nameless files.
    std::shared_ptr<const FileHandle> temporaryFolder;
    FileInfo source;  // what was copied, as it was when it was read
};

class StepActor {
  public:
    StepActor(Sys& sys, FolderTable& folders, const Batch& batch, const CancelToken& cancel)
        : sys_(sys), folders_(folders), batch_(batch), cancel_(cancel) {}

    // Makes the content of a copy or transfer and says in `made` what it is. Nothing becomes visible.
    StepResult Prepare(uint32_t index, const ByteSink& copied, PreparedContent& prepared, FileIdentity& made);
    // Removes what Prepare left when its step is not published.
    void Discard(uint32_t index, PreparedContent& prepared);
    // kRemoveCopy: makes sure that removing is safe. kNotThereAnyMore when there is nothing to remove.
    StepResult VerifyRemoval(uint32_t index);

    // A move: makes sure that its source is what was planned for, and says in `made` what it is.
    StepResult VerifyMove(uint32_t index, FileIdentity& made);

    // The visible change: a name appears, moves or goes. kTargetTaken when the target's name is occupied by something
    // that the plan does not know. Sets `made` where it is known only now.
    StepResult Publish(uint32_t index, PreparedContent& prepared, FileIdentity& made);
    // A transfer's last act. When the source changed since it was read, the transfer is taken back instead.
    StepResult RemoveSource(uint32_t index, const FileInfo& copied, const FileIdentity& made);
    // Removes a transfer's target again and puts back what it replaced.
    StepResult TakeBack(uint32_t index, const FileIdentity& made);
    // kMakeFolder, kOpenFolder, kFinishFolder, kRemoveFolder.
    StepResult ActOnFolder(uint32_t index, FileIdentity& made);

    // Swaps the kept name of a replacing step, which holds the new file, with its target, which must be the file that
    // was asked about.
    StepResult ExchangeWithKept(uint32_t index, const FileIdentity& made);

    // True once when user attributes could not be copied; for a warning.
    bool lostAttributes() const { return lostAttributes_.load(std::memory_order_relaxed); }

  private:
    using Folder = std::shared_ptr<const FileHandle>;

    bool IsTurningBack() const { return batch_.header.kind != BatchKind::kSort; }
    StepResult SourceFailed(const Status& status) const;
    StepResult CheckSource(const Step& step, const FileInfo& info) const;
    StepResult OpenFolder(uint32_t index, bool isTarget, Folder& folder);
    StepResult MakeEmptyFile(uint32_t index, const Folder& folder, uint32_t mode, PreparedContent& prepared);
    StepResult CopyOnce(uint32_t index, const FileHandle& sourceFolder, const Folder& targetFolder,
                        const ByteSink& copied, PreparedContent& prepared, FileIdentity& made);
    StepResult CopyAttributes(const FileHandle& from, const FileInfo& info, PreparedContent& prepared);
    StepResult PublishMove(uint32_t index, const FileIdentity& made);
    StepResult PublishContent(uint32_t index, PreparedContent& prepared, FileIdentity& made);
    StepResult PlaceContent(uint32_t index, PreparedContent& prepared, const FileHandle& folder, std::string_view name,
                            FileIdentity& made);
    StepResult PlaceLink(const Step& step, const FileHandle& folder, std::string_view name, FileIdentity& made);
    StepResult RemoveVerified(uint32_t index);
    StepResult RemoveUnchangedSource(uint32_t index, const FileInfo& copied);
    StepResult MakeFolder(const Step& step, const FileHandle& parent, FileIdentity& made);
    void CopyFolderAttributes(const Step& step, const FileHandle& folder);
    Status RenameFile(const FileHandle& fromFolder, std::string_view from, const FileHandle& toFolder,
                      std::string_view to, FileKind kind);
    // Two names trade places: at once where the volume can, else by three renames.
    Status Swap(const FileHandle& keptFolder, std::string_view kept, const FileHandle& targetFolder,
                std::string_view target);
    // Whether the kept name of a step still holds the new file.
    bool IsStillKept(const FileHandle& keptFolder, uint32_t index, const FileIdentity& made);
    Status SwapByRenames(const FileHandle& keptFolder, std::string_view kept, const FileHandle& targetFolder,
                         std::string_view target);

    Sys& sys_;
    FolderTable& folders_;
    const Batch& batch_;
    const CancelToken& cancel_;
    std::atomic<bool> lostAttributes_{false};
};

// Where a replaced file waits for a moment on a volume that cannot swap two names.
std::string SwapName(std::string_view keptName);

}  // namespace kinsort
