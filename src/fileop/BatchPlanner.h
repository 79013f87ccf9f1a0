// Looks at what was queued and writes the steps of a batch: which files, from where to where, what is replaced. Nothing
// outside is changed by planning.
#pragma once

#include <functional>
#include <memory>
#include <memory_resource>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "fileop/Batch.h"
#include "fileop/ConflictResolver.h"
#include "fileop/FolderNames.h"
#include "fileop/FolderTable.h"

namespace kinsort {

// What became of a step that met something unforeseen.
enum class Replan : uint8_t { kAgain, kSkipped, kFailed, kCancelled };

// Places, looked up without a copy of the name.
struct PlaceView {
    uint32_t folder;
    std::string_view name;

    PlaceView(uint32_t inFolder, std::string_view itsName) : folder(inFolder), name(itsName) {}
    PlaceView(const Place& place) : folder(place.folder), name(place.name) {}  // NOLINT: a view, made wherever needed
};
struct PlaceHash {
    using is_transparent = void;
    size_t operator()(const PlaceView& place) const {
        return std::hash<std::string_view>()(place.name) ^ (size_t{place.folder} * 0x9E3779B97F4A7C15);
    }
};
struct PlaceEqual {
    using is_transparent = void;
    bool operator()(const PlaceView& a, const PlaceView& b) const { return a.folder == b.folder && a.name == b.name; }
};
using PlaceSet = std::pmr::unordered_set<Place, PlaceHash, PlaceEqual>;

class BatchPlanner {
  public:
    // Writes into `batch`; `journalFolder` is the stored path below which replaced files are kept when they are on
    // its volume.
    BatchPlanner(const FileOperationServices& services, Batch& batch, FolderTable& folders, ConflictResolver& resolver);

    // Adds the steps for all items; looks at them on up to `threads` threads. A refusal is written into the item's
    // report. False when the user cancelled in a question, or when `goesOn`, called before each item, says so.
    bool PlanItems(std::span<const QueuedItem> requests, unsigned threads,
                   const std::function<bool(const QueuedItem&)>& goesOn);
    // An item's refusal; null when there is nothing to tell.
    const ItemReport* refusal(size_t item) const {
        const auto found = refusals_.find(item);
        return found == refusals_.end() ? nullptr : &found->second;
    }

    // The target of step `index` turned out to be taken: asks and rewrites the step, or says why not.
    Replan ReplanTaken(uint32_t index);
    // The rename of step `index` crosses volumes after all: rewrites it as a transfer; a folder gets further steps at
    // the end of the plan.
    Replan ReplanAsTransfer(uint32_t index);

  private:
    struct Target {
        Place place;
        StepKind kind;
        uint32_t keptFolder = kNoIndex;
        FileIdentity replaced;
        bool isMerge = false;
    };
    // What one look at an item found, before anything is decided.
    struct Looked {
        Place source;              // its folder is kNoIndex when that cannot be: `info` says why
        std::u16string_view name;  // of the source, inner form
        Result<uint32_t> destination = kNoIndex;
        Result<FileInfo> info = Status::Failure(StatusCode::kNotFound);   // of the source
        Result<FileInfo> there = Status::Failure(StatusCode::kNotFound);  // what has its name in the destination
        const FolderNames* taken = nullptr;  // the names in the destination; null where each is looked for
    };
    enum class Choice : uint8_t { kGo, kSkip, kCancel };

    void Refuse(ItemOutcome outcome, ItemReason reason, Status status = {});
    void Resolve(const QueuedItem& request, Looked& looked);
    // Lists the destinations that many of the items go to.
    void ListDestinations(std::span<Looked> looked, std::vector<std::unique_ptr<FolderNames>>& listed);
    void LookAt(Looked& looked);  // on any thread
    bool PlanItem(const QueuedItem& request, const Looked& looked);
    Result<FileInfo> StatAt(const Place& place);
    // A folder that was named last: items of one folder tend to follow each other.
    struct NamedFolder {
        std::u16string path;  // inner form; empty before the first
        Result<uint32_t> index = kNoIndex;
    };
    const Result<uint32_t>& FolderOf(std::u16string_view path, NamedFolder& last);
    // Chooses the target name of a source, asking when it is taken. `known` is what stands there, null to look now.
    Choice ChooseTarget(const Place& source, const FileInfo& info, uint32_t folder, bool isMove,
                        const Result<FileInfo>* known, Target& target);
    Choice ResolveConflict(const Place& source, const FileInfo& info, const FileInfo* there, Target& target);
    std::string FreeNameIn(uint32_t folder, std::string_view name, FileKind kind);
    uint32_t KeptFolderFor(uint32_t targetFolder);
    bool LiesInside(uint32_t folder, const FileInfo& ancestor);
    // Adds the steps that place one file or folder; false on cancel.
    bool AddSteps(const Place& source, const FileInfo& info, uint32_t folder, bool isMove,
                  const Result<FileInfo>* there);
    bool AddFolder(const Place& source, const FileInfo& info, const Target& target, bool isMove);
    // The contents of a folder, then what finishes it; `targetInfo` is null for a folder that a step makes.
    bool AddContents(const Place& source, const FileInfo& info, const Place& target, const FileInfo* targetInfo,
                     bool isMove);
    Status ListNames(uint32_t folder, std::vector<std::string>& names);
    uint32_t AddStep(StepKind kind, const Place& source, const FileIdentity& sourceId, const Place& target);
    // The target is the source under another name: the move only has to drop the source's name.
    void AddDrop(const Place& source, const FileInfo& info, const Place& sameFile);
    ConflictSide SideOf(const Place& place, const FileInfo& info) const;

    const FileOperationServices& services_;
    Batch& batch_;
    FolderTable& folders_;
    ConflictResolver& resolver_;
    std::unordered_map<size_t, ItemReport> refusals_;  // by item
    size_t item_ = 0;                                  // the item that steps and refusals are for at the moment
    const QueuedItem* request_ = nullptr;              // what was asked for it; null when it is planned anew
    std::pmr::monotonic_buffer_resource places_;       // of the sets, which only grow
    PlaceSet plannedSources_{&places_};
    PlaceSet plannedTargets_{&places_};
    std::unordered_map<uint32_t, uint32_t> keptFolders_;  // target folder to kept folder
    NamedFolder lastSourceFolder_;
    NamedFolder lastDestination_;
    uint32_t keptBesideJournal_ = kNoIndex;
};

}  // namespace kinsort
