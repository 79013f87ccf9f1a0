#include "fileop/JournalRecords.h"

#include <utility>

#include "fileop/ByteStream.h"

namespace kinsort {

namespace {

// No record of an item or a step is longer, but for the names in it.
constexpr size_t kRecordWithoutNames = 128;

void PutIdentity(ByteWriter& writer, const FileIdentity& id) {
    writer.Put(id.inode);
    writer.Put(id.createdNs);
    writer.Put(id.size);
    writer.Put(id.modifiedNs);
    writer.Put(id.kind);
}

FileIdentity TakeIdentity(ByteReader& reader) {
    FileIdentity id;
    id.inode = reader.Take<uint64_t>();
    id.createdNs = reader.Take<int64_t>();
    id.size = reader.Take<uint64_t>();
    id.modifiedNs = reader.Take<int64_t>();
    id.kind = reader.Take<FileKind>();
    if (id.kind > FileKind::kOther) reader.Fail();
    return id;
}

void PutPlace(ByteWriter& writer, const Place& place) {
    writer.Put(place.folder);
    writer.PutText(place.name);
}

bool HoldsNul(std::string_view text) {
    return text.find('\0') != std::string_view::npos;
}

// A stored name is one component: a journal that says otherwise is not believed. Empty where there is none.
bool IsName(std::string_view name) {
    return name != "." && name != ".." && name.find('/') == std::string_view::npos && !HoldsNul(name);
}

Place TakePlace(ByteReader& reader, const Batch& batch) {
    Place place;
    place.folder = reader.Take<uint32_t>();
    place.name = reader.TakeText();
    if (!IsName(place.name) || (place.folder != kNoIndex && place.folder >= batch.folders.size())) reader.Fail();
    return place;
}

bool IsSomewhere(const Place& place) {
    return place.folder != kNoIndex && !place.name.empty();
}

bool TakeBool(ByteReader& reader) {
    const auto value = reader.Take<uint8_t>();
    if (value > 1) reader.Fail();
    return value == 1;
}

void ApplyBegin(ByteReader& reader, Batch& batch) {
    BatchHeader& header = batch.header;
    header.kind = reader.Take<BatchKind>();
    header.id = reader.Take<BatchId>();
    header.root = reader.Take<BatchId>();
    header.durability = reader.Take<Durability>();
    header.keepForUndo = TakeBool(reader);
    header.startedNs = reader.Take<int64_t>();
    header.user = reader.Take<uint32_t>();
    header.bootId = reader.TakeText();
    if (header.kind < BatchKind::kSort || header.kind > BatchKind::kRedo || header.id == 0) reader.Fail();
    if (header.durability > Durability::kContent) reader.Fail();
}

void ApplyFolder(ByteReader& reader, Batch& batch) {
    FolderRecord folder;
    folder.parent = reader.Take<uint32_t>();
    folder.name = reader.TakeText();
    folder.device = reader.Take<uint64_t>();
    folder.volumeId = reader.Take<uint64_t>();
    folder.inode = reader.Take<uint64_t>();
    folder.createdNs = reader.Take<int64_t>();
    folder.modifiedNs = reader.Take<int64_t>();
    folder.isKeep = TakeBool(reader);
    const bool isPath = folder.name.starts_with('/') && !HoldsNul(folder.name);
    const bool isChild = folder.parent < batch.folders.size() && !folder.name.empty() && IsName(folder.name);
    if (folder.parent == kNoIndex ? !isPath : !isChild) reader.Fail();
    if (reader.ok()) batch.folders.push_back(std::move(folder));
}

void ApplyItem(ByteReader& reader, Batch& batch) {
    BatchItem item;
    item.source = TakePlace(reader, batch);
    item.destination = reader.Take<uint32_t>();
    item.isMove = TakeBool(reader);
    if (item.destination != kNoIndex && item.destination >= batch.folders.size()) reader.Fail();
    if (reader.ok()) batch.items.push_back(std::move(item));
}

void ApplyStep(ByteReader& reader, Batch& batch) {
    const auto index = reader.Take<uint32_t>();
    Step step;
    step.kind = reader.Take<StepKind>();
    const auto flags = reader.Take<uint8_t>();
    step.isHardLink = (flags & 1) != 0;
    step.dependsOnPrevious = (flags & 2) != 0;
    step.item = reader.Take<uint32_t>();
    step.mode = reader.Take<uint32_t>();
    step.source = TakePlace(reader, batch);
    step.target = TakePlace(reader, batch);
    step.keptFolder = reader.Take<uint32_t>();
    step.sourceId = TakeIdentity(reader);
    step.targetId = TakeIdentity(reader);
    step.invertsBatch = reader.Take<BatchId>();
    step.invertsStep = reader.Take<uint32_t>();
    const bool isKnown = step.kind >= StepKind::kMove && step.kind <= StepKind::kRemoveCopy && flags <= 3;
    const bool isInPlan = index <= batch.steps.size() && step.item < batch.items.size();
    const bool hasPrevious = index > 0 || !step.dependsOnPrevious;
    const bool hasSource = IsFolderStep(step.kind) || IsSomewhere(step.source);
    const bool keptIsFolder = step.keptFolder < batch.folders.size();
    const bool hasKept = keptIsFolder || (step.keptFolder == kNoIndex && !IsReplace(step.kind));
    if (!isKnown || !isInPlan || !hasPrevious || !hasSource || !IsSomewhere(step.target) || !hasKept) reader.Fail();
    if (!reader.ok()) return;
    if (index == batch.steps.size()) {
        batch.steps.push_back(std::move(step));
        batch.states.emplace_back();
    } else {
        batch.steps[index] = std::move(step);
        batch.states[index] = {};
    }
}

void ApplyProgress(ByteReader& reader, Batch& batch, StepProgress progress) {
    for (auto count = reader.Take<uint32_t>(); count > 0 && reader.ok(); --count) {
        const auto index = reader.Take<uint32_t>();
        const FileIdentity made = TakeIdentity(reader);
        if (index >= batch.steps.size()) reader.Fail();
        if (!reader.ok()) return;
        batch.states[index].progress = progress;
        batch.states[index].made = made;
    }
}

void ApplyFailed(ByteReader& reader, Batch& batch) {
    for (auto count = reader.Take<uint32_t>(); count > 0 && reader.ok(); --count) {
        const auto index = reader.Take<uint32_t>();
        const bool isSkip = TakeBool(reader);
        const auto reason = reader.Take<ItemReason>();
        const auto code = reader.Take<StatusCode>();
        const auto systemCode = reader.Take<int32_t>();
        if (index >= batch.steps.size() || reason > ItemReason::kCancelled || code > StatusCode::kOther) reader.Fail();
        if (!reader.ok()) return;
        StepState& state = batch.states[index];
        state.progress = isSkip ? StepProgress::kSkipped : StepProgress::kFailed;
        state.reason = reason;
        if (code != StatusCode::kOk) state.status = Status::Failure(code, systemCode);
    }
}

void ApplyFolderTimes(ByteReader& reader, Batch& batch) {
    if (reader.Take<uint32_t>() != batch.folders.size()) reader.Fail();
    for (FolderRecord& folder : batch.folders)
        folder.modifiedAfterNs = reader.Take<int64_t>();
}

}  // namespace

std::string EncodeBegin(const BatchHeader& header) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.Put(header.kind);
    writer.Put(header.id);
    writer.Put(header.root);
    writer.Put(header.durability);
    writer.Put(static_cast<uint8_t>(header.keepForUndo));
    writer.Put(header.startedNs);
    writer.Put(header.user);
    writer.PutText(header.bootId);
    return bytes;
}

std::string EncodeFolder(const FolderRecord& folder) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.Put(folder.parent);
    writer.PutText(folder.name);
    writer.Put(folder.device);
    writer.Put(folder.volumeId);
    writer.Put(folder.inode);
    writer.Put(folder.createdNs);
    writer.Put(folder.modifiedNs);
    writer.Put(static_cast<uint8_t>(folder.isKeep));
    return bytes;
}

std::string EncodeItem(const BatchItem& item) {
    std::string bytes;
    bytes.reserve(kRecordWithoutNames + item.source.name.view().size());
    ByteWriter writer(bytes);
    PutPlace(writer, item.source);
    writer.Put(item.destination);
    writer.Put(static_cast<uint8_t>(item.isMove));
    return bytes;
}

std::string EncodeStep(uint32_t index, const Step& step) {
    std::string bytes;
    bytes.reserve(kRecordWithoutNames + step.source.name.view().size() + step.target.name.view().size());
    ByteWriter writer(bytes);
    writer.Put(index);
    writer.Put(step.kind);
    writer.Put(static_cast<uint8_t>((step.isHardLink ? 1 : 0) | (step.dependsOnPrevious ? 2 : 0)));
    writer.Put(step.item);
    writer.Put(step.mode);
    PutPlace(writer, step.source);
    PutPlace(writer, step.target);
    writer.Put(step.keptFolder);
    PutIdentity(writer, step.sourceId);
    PutIdentity(writer, step.targetId);
    writer.Put(step.invertsBatch);
    writer.Put(step.invertsStep);
    return bytes;
}

std::string EncodePlanned(const Batch& batch) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.Put(static_cast<uint32_t>(batch.steps.size()));
    return bytes;
}

std::string EncodeProgress(const std::vector<uint32_t>& indices, const std::vector<StepState>& states) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.Put(static_cast<uint32_t>(indices.size()));
    for (const uint32_t index : indices) {
        writer.Put(index);
        PutIdentity(writer, states[index].made);
    }
    return bytes;
}

std::string EncodeFailed(const std::vector<uint32_t>& indices, const std::vector<StepState>& states) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.Put(static_cast<uint32_t>(indices.size()));
    for (const uint32_t index : indices) {
        const StepState& state = states[index];
        writer.Put(index);
        writer.Put(static_cast<uint8_t>(state.progress == StepProgress::kSkipped));
        writer.Put(state.reason);
        writer.Put(state.status.code());
        writer.Put(static_cast<int32_t>(state.status.systemCode()));
    }
    return bytes;
}

std::string EncodeFolderTimes(const std::vector<FolderRecord>& folders) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.Put(static_cast<uint32_t>(folders.size()));
    for (const FolderRecord& folder : folders)
        writer.Put(folder.modifiedAfterNs);
    return bytes;
}

std::string EncodeEnd(const EndRecord& end) {
    std::string bytes;
    ByteWriter writer(bytes);
    writer.Put(static_cast<uint8_t>(end.isCancelled));
    return bytes;
}

bool ApplyRecord(const Record& record, Batch& batch) {
    const bool isBegun = batch.header.id != 0;
    if (isBegun == (record.type == RecordType::kBegin)) return false;
    ByteReader reader(record.payload);
    switch (record.type) {
        case RecordType::kBegin:
            ApplyBegin(reader, batch);
            break;
        case RecordType::kFolder:
            ApplyFolder(reader, batch);
            break;
        case RecordType::kItem:
            ApplyItem(reader, batch);
            break;
        case RecordType::kStep:
            ApplyStep(reader, batch);
            break;
        case RecordType::kPlanned:
            if (reader.Take<uint32_t>() != batch.steps.size()) reader.Fail();
            batch.isPlanned = reader.ok();
            break;
        case RecordType::kPrepared:
            ApplyProgress(reader, batch, StepProgress::kPrepared);
            break;
        case RecordType::kCopied:
            ApplyProgress(reader, batch, StepProgress::kCopied);
            break;
        case RecordType::kDone:
            ApplyProgress(reader, batch, StepProgress::kDone);
            break;
        case RecordType::kFailed:
            ApplyFailed(reader, batch);
            break;
        case RecordType::kFolderTimes:
            ApplyFolderTimes(reader, batch);
            break;
        case RecordType::kEnd:
            batch.isCancelled = TakeBool(reader);
            batch.isEnded = true;
            break;
        default:
            return false;
    }
    return reader.ok() && reader.atEnd();
}

}  // namespace kinsort
