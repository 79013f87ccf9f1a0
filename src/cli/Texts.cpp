#include "cli/Texts.h"

#include <algorithm>
#include <array>

#include "cli/ShownText.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

struct StatusRow {
    StatusCode code;
    std::string_view keyword;
    std::string_view text;  // empty: the system's text says it best
};

constexpr std::array<StatusRow, static_cast<size_t>(StatusCode::kOther) + 1> kStatusRows = {{
    {StatusCode::kOk, "ok", ""},
    {StatusCode::kNotFound, "not-found", "it does not exist; check the name and the folder"},
    {StatusCode::kExists, "exists", "the name is taken; choose --on-conflict=replace or keep-both"},
    {StatusCode::kAccessDenied, "access-denied",
     "permission denied; check the rights of the file and of the folders it leaves and enters"},
    {StatusCode::kReadOnly, "read-only", "the volume is read-only; choose a folder on another one or remount it"},
    {StatusCode::kNoSpace, "no-space", "no space left on the volume; free some and try again"},
    {StatusCode::kQuota, "quota", "your share of the volume is used up; free some space and try again"},
    {StatusCode::kFileTooLarge, "file-too-large",
     "the file is too large for the volume; choose a folder on another one"},
    {StatusCode::kNameTooLong, "name-too-long", "the volume cannot hold this name; rename the item and try again"},
    {StatusCode::kNotFolder, "not-folder", "a folder is needed here and this is none; check the path"},
    {StatusCode::kIsFolder, "is-folder", "a file is needed here and this is a folder; check the path"},
    {StatusCode::kNotEmpty, "not-empty", "the folder is not empty; look at what is still in it"},
    {StatusCode::kIsLink, "is-link", "a link stands in the way and is not followed; name what it points to"},
    {StatusCode::kCrossVolume, "cross-volume", "the two places are on different volumes; copy instead"},
    {StatusCode::kUnsupported, "unsupported", "the volume cannot do this; choose a folder on another one"},
    {StatusCode::kTooManyOpen, "too-many-open",
     "too many files are open; raise the limit (ulimit -n) or use --threads 1"},
    {StatusCode::kOutOfMemory, "out-of-memory", "out of memory; close other programs and try again"},
    {StatusCode::kBusy, "busy", "it is in use by the system; try again when it is not"},
    {StatusCode::kInterrupted, "interrupted", "it was interrupted; try again"},
    {StatusCode::kStale, "stale", "the connection to the network folder was lost; connect again and try again"},
    {StatusCode::kIo, "io", "the device failed; check the disk and its connection"},
    {StatusCode::kInvalid, "invalid", "this is not possible for it; check the path, or 'kinsort history' for a batch"},
    {StatusCode::kLocked, "locked", "another process is working on it; wait until that is done"},
    {StatusCode::kTimedOut, "timed-out", "it did not answer in time; try again"},
    {StatusCode::kChanged, "changed", "it changed meanwhile; look at it and try again"},
    {StatusCode::kCorrupt, "corrupt", "what is stored there is damaged and is not acted on"},
    {StatusCode::kTooNew, "too-new", "it was written by a later version of kinsort; use that version"},
    {StatusCode::kOther, "other", ""},
}};

struct ReasonRow {
    ItemReason reason;
    std::string_view keyword;
    std::string_view text;
};

constexpr std::array<ReasonRow, static_cast<size_t>(ItemReason::kCancelled) + 1> kReasonRows = {{
    {ItemReason::kNone, "none", "done"},
    {ItemReason::kSystem, "system", ""},  // the status says it
    {ItemReason::kSourceGone, "source-gone", "it is gone since it was chosen; nothing is left to do for it"},
    {ItemReason::kSourceChanged, "source-changed",
     "it was changed while it was being copied; try again when it is quiet"},
    {ItemReason::kSameFile, "same-file", "it is in that folder already"},
    {ItemReason::kIntoItself, "into-itself", "a folder cannot go into itself; choose another folder with --to"},
    {ItemReason::kDuplicate, "duplicate", "it is named twice; the first time counts"},
    {ItemReason::kConflictSkipped, "conflict-skipped",
     "the name is taken in the target folder; choose --on-conflict=replace or keep-both"},
    {ItemReason::kTargetFolderChanged, "target-folder-changed",
     "the target folder was replaced by another one meanwhile; check it and try again"},
    {ItemReason::kTargetTaken, "target-taken", "another file took the place meanwhile; look at it and try again"},
    {ItemReason::kSpecialFile, "special-file", "a pipe, socket or device cannot be copied; it can only be moved"},
    {ItemReason::kFileChangedSince, "file-changed-since",
     "it was changed since the batch; it stays as it is, put it back yourself if you want to"},
    {ItemReason::kLastCopy, "last-copy", "it is the last copy there is, so it stays"},
    {ItemReason::kNotThereAnyMore, "not-there-any-more",
     "it was moved or removed since the batch; put it back and try again"},
    {ItemReason::kCancelled, "cancelled", "the batch was stopped before it"},
}};

struct ActionRow {
    BatchAction action;
    std::string_view keyword;
    std::string_view done;  // "Moved"
    std::string_view not_;  // "not moved"
};

constexpr std::array<ActionRow, 5> kActionRows = {{
    {BatchAction::kCopy, "copy", "Copied", "not copied"},
    {BatchAction::kMove, "move", "Moved", "not moved"},
    {BatchAction::kUndo, "undo", "Took back", "not taken back"},
    {BatchAction::kRedo, "redo", "Did again", "not done again"},
    {BatchAction::kFinish, "finish", "Finished", "not finished"},
}};

consteval bool RowsAreInOrder() {
    for (size_t i = 0; i < kStatusRows.size(); ++i) {
        if (kStatusRows[i].code != static_cast<StatusCode>(i)) return false;
    }
    for (size_t i = 0; i < kReasonRows.size(); ++i) {
        if (kReasonRows[i].reason != static_cast<ItemReason>(i)) return false;
    }
    for (size_t i = 0; i < kActionRows.size(); ++i) {
        if (kActionRows[i].action != static_cast<BatchAction>(i)) return false;
    }
    return true;
}
static_assert(RowsAreInOrder(), "rows stand in the order of their values");

const ActionRow& RowOf(BatchAction action) {
    return kActionRows[static_cast<size_t>(action)];
}

}  // namespace

std::string StatusText(const Status& status) {
    // A failure of our own that brings its text knows best.
    if (status.systemCode() == 0 && !status.systemText().empty()) return ShownText(ToUtf8(status.systemText()));
    const std::string_view text = kStatusRows[static_cast<size_t>(status.code())].text;
    if (!text.empty()) return std::string(text);
    if (!status.systemText().empty()) return "the system says: " + ShownText(ToUtf8(status.systemText()));
    return "it failed for an unknown reason (" + std::to_string(status.systemCode()) + ")";
}

std::string BatchStatusText(const Status& status) {
    if (!status.path().empty()) return StatusText(status);
    if (status.code() == StatusCode::kNotFound) return "there is no such batch; 'kinsort history' lists them";
    if (status.code() == StatusCode::kInvalid) {
        return "this cannot be done with it now; 'kinsort history' shows its state";
    }
    return StatusText(status);
}

namespace {

// Whether it is what the system said that tells why: also of an item that was not there when the batch was planned.
bool IsToldByStatus(const ItemReport& report) {
    const bool wasNeverThere = report.reason == ItemReason::kSourceGone && report.target.empty();
    return report.reason == ItemReason::kSystem || (wasNeverThere && !report.status.ok());
}

}  // namespace

std::string ReasonText(const ItemReport& report) {
    if (IsToldByStatus(report)) return StatusText(report.status);
    return std::string(kReasonRows[static_cast<size_t>(report.reason)].text);
}

std::string_view WarningText(BatchWarning warning) {
    switch (warning) {
        case BatchWarning::kAttributesLost:
            return "Some user attributes could not be kept: the target volume does not hold them.";
    }
    return "";
}

std::string_view StatusKeyword(StatusCode code) {
    return kStatusRows[static_cast<size_t>(code)].keyword;
}

std::string_view ReasonKeyword(const ItemReport& report) {
    if (IsToldByStatus(report)) return StatusKeyword(report.status.code());
    return kReasonRows[static_cast<size_t>(report.reason)].keyword;
}

std::string_view OutcomeKeyword(ItemOutcome outcome) {
    constexpr std::array<std::string_view, 4> kKeywords = {"done", "skipped", "failed", "not-reached"};
    return kKeywords[static_cast<size_t>(outcome)];
}

std::string_view StateKeyword(BatchState state) {
    constexpr std::array<std::string_view, 6> kKeywords = {"done",    "undone",  "unfinished",
                                                           "running", "damaged", "foreign"};
    return kKeywords[static_cast<size_t>(state)];
}

std::string_view ActionKeyword(BatchAction action) {
    return RowOf(action).keyword;
}

std::string OutcomeText(ItemOutcome outcome, BatchAction action) {
    switch (outcome) {
        case ItemOutcome::kDone:
            return "done, but";
        case ItemOutcome::kSkipped:
            return "skipped";
        case ItemOutcome::kFailed:
            return std::string(RowOf(action).not_);
        case ItemOutcome::kNotReached:
            return "not reached";
    }
    return {};
}

std::string DoneText(BatchAction action, uint64_t count) {
    return std::string(RowOf(action).done) + " " + Counted(count, "item");
}

std::string Counted(uint64_t count, std::string_view thing) {
    return std::to_string(count) + " " + std::string(thing) + (count == 1 ? "" : "s");
}

std::string ShownLines(std::string_view text) {
    std::string shown;
    for (;;) {
        const size_t end = std::min(text.find('\n'), text.size());
        shown += ShownText(text.substr(0, end));
        if (end == text.size()) return shown;
        shown += '\n';
        text.remove_prefix(end + 1);
    }
}

}  // namespace kinsort
