#include "fileop/JournalStore.h"

#include <algorithm>
#include <utility>

#include "fileop/FileContent.h"
#include "fileop/JournalRecords.h"

namespace kinsort {

namespace {

constexpr uint64_t kLargestJournal = uint64_t{4} << 30;
constexpr uint32_t kOthersMayWrite = 0022;

bool IsPrivate(const FileInfo& info, uint32_t user) {
    return info.owner == user && (info.mode & kOthersMayWrite) == 0;
}

}  // namespace

JournalStore::JournalStore(Sys& sys, std::string storedPath) : sys_(sys), path_(std::move(storedPath)) {}

Status JournalStore::MakePath() {
    for (size_t slash = path_.find('/', 1);; slash = path_.find('/', slash + 1)) {
        const std::string prefix = path_.substr(0, slash);
        const Result<FileHandle> there = sys_.OpenFolder(prefix);
        if (there.code() == StatusCode::kNotFound) {
            const size_t last = prefix.find_last_of('/');
            const Result<FileHandle> above = sys_.OpenFolder(last == 0 ? "/" : prefix.substr(0, last));
            if (!above.ok()) return above.status();
            const Status made = sys_.MakeFolderAt(*above, prefix.substr(last + 1), 0700);
            if (!made.ok() && made.code() != StatusCode::kExists) return made;
            if (Status synced = sys_.Sync(*above); !synced.ok()) return synced;
        } else if (!there.ok()) {
            return there.status();
        }
        if (slash == std::string::npos) return {};
    }
}

Status JournalStore::Open() {
    if (folder_.isOpen()) return {};
    Result<FileHandle> folder = sys_.OpenFolder(path_);
    if (folder.code() == StatusCode::kNotFound) {
        if (Status made = MakePath(); !made.ok()) return made;
        folder = sys_.OpenFolder(path_);
    }
    if (!folder.ok()) return folder.status();
    const Result<FileInfo> info = sys_.Stat(*folder);
    if (!info.ok()) return info.status();
    if (!IsPrivate(*info, sys_.UserNumber())) return Status::Failure(StatusCode::kAccessDenied);
    folder_ = std::move(*folder);
    return {};
}

Result<NewJournal> JournalStore::Create() {
    const Result<std::vector<BatchId>> ids = List();
    if (!ids.ok()) return ids.status();
    for (BatchId id = ids->empty() ? 1 : ids->back() + 1;; ++id) {
        Result<FileHandle> file = sys_.CreateFileAt(folder_, JournalName(id), 0600);
        if (file.code() == StatusCode::kExists) continue;
        if (!file.ok()) return file.status();
        const Status locked = sys_.TryLock(*file);
        if (locked.code() == StatusCode::kLocked) continue;  // taken for a dead one by somebody who is tidying up
        if (!locked.ok()) return locked;
        const Result<FileInfo> info = sys_.Stat(*file);
        if (!info.ok()) return info.status();
        if (info->links == 0) continue;  // tidied away before the lock
        return NewJournal{id, Journal(sys_, std::move(*file), 0, 0)};
    }
}

Result<std::vector<BatchId>> JournalStore::List() {
    std::vector<BatchId> ids;
    const Status read = sys_.ReadFolder(folder_, [&ids](const FolderEntry& entry) {
        if (const BatchId id = IdOfJournalName(entry.name); id != 0) ids.push_back(id);
        return true;
    });
    if (!read.ok()) return read;
    std::sort(ids.begin(), ids.end());
    return ids;
}

Result<LoadedBatch> JournalStore::Load(BatchId id) {
    const Result<FileHandle> file = sys_.OpenForRead(folder_, JournalName(id));
    if (!file.ok()) return file.status();
    const Result<FileInfo> info = sys_.Stat(*file);
    if (!info.ok()) return info.status();
    if (!IsPrivate(*info, sys_.UserNumber()) || info->links != 1) return Status::Failure(StatusCode::kAccessDenied);
    const Result<std::string> bytes = ReadWhole(sys_, *file, kLargestJournal);
    if (!bytes.ok()) return bytes.status();

    const JournalScan scan = ScanJournal(*bytes);
    LoadedBatch loaded;
    loaded.verdict = scan.verdict;
    loaded.validLength = scan.validLength;
    loaded.recordCount = scan.records.size();
    for (const Record& record : scan.records) {
        if (!ApplyRecord(record, loaded.batch)) {
            loaded.verdict = ScanVerdict::kDamaged;
            break;
        }
    }
    const BatchHeader& header = loaded.batch.header;
    if (!scan.records.empty() && header.id != id && loaded.isTrusted()) loaded.verdict = ScanVerdict::kDamaged;
    loaded.batch.header.id = id;
    return loaded;
}

bool JournalStore::IsEnded(BatchId id) {
    const Result<FileHandle> file = sys_.OpenForRead(folder_, JournalName(id));
    if (!file.ok()) return false;
    const Result<FileInfo> info = sys_.Stat(*file);
    if (!info.ok() || info->size < kEndFrameSize) return false;
    const auto readFrom = [&](uint64_t at) {
        std::string bytes(info->size - at, '\0');
        const Result<size_t> got = ReadUpTo(sys_, *file, at, std::as_writable_bytes(std::span(bytes)));
        if (!got.ok() || *got != bytes.size()) bytes.clear();
        return bytes;
    };
    // After a power cut a last frame may stand behind a gap.
    const std::optional<uint64_t> start = ReadEndFrame(readFrom(info->size - kEndFrameSize));
    return start && *start <= info->size - kEndFrameSize && AreUnbroken(readFrom(*start));
}

Result<FileHandle> JournalStore::Lock(BatchId id) {
    Result<FileHandle> file = sys_.OpenForWrite(folder_, JournalName(id));
    if (!file.ok()) return file;
    if (Status locked = sys_.TryLock(*file); !locked.ok()) return locked;
    return file;
}

Result<Journal> JournalStore::Continue(FileHandle locked, const LoadedBatch& loaded) {
    if (loaded.verdict == ScanVerdict::kTorn) {
        if (Status cut = sys_.SetSize(locked, loaded.validLength); !cut.ok()) return cut;
        // Otherwise a power cut could bring a good frame back that stands just where the new ones end.
        if (Status synced = sys_.Sync(locked); !synced.ok()) return synced;
    }
    return Journal(sys_, std::move(locked), loaded.validLength, loaded.recordCount);
}

Status JournalStore::SyncNames() {
    return sys_.Sync(folder_);
}

Status JournalStore::Remove(BatchId id) {
    return sys_.RemoveFileAt(folder_, JournalName(id));
}

}  // namespace kinsort
