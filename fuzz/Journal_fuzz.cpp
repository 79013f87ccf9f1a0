// Any bytes as a journal: what is accepted can be written again byte for byte, and makes a batch in which every index
// leads somewhere.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "fileop/Batch.h"
#include "fileop/JournalFormat.h"
#include "fileop/JournalRecords.h"

namespace {

using namespace kinsort;

void Require(bool condition) {
    if (!condition) std::abort();
}

bool IsIndex(uint32_t index, size_t count, bool mayBeNone) {
    return index < count || (mayBeNone && index == kNoIndex);
}

void CheckIndices(const Batch& batch) {
    const size_t folders = batch.folders.size();
    Require(batch.states.size() == batch.steps.size());
    for (size_t i = 0; i < folders; ++i)
        Require(batch.folders[i].parent == kNoIndex || batch.folders[i].parent < i);
    for (const BatchItem& item : batch.items)
        Require(IsIndex(item.source.folder, folders, true) && IsIndex(item.destination, folders, true));
    for (size_t i = 0; i < batch.steps.size(); ++i) {
        const Step& step = batch.steps[i];
        Require(step.item < batch.items.size() && IsIndex(step.target.folder, folders, false));
        Require(IsIndex(step.source.folder, folders, IsFolderStep(step.kind)));
        Require(IsIndex(step.keptFolder, folders, !IsReplace(step.kind)));
        Require(i > 0 || !step.dependsOnPrevious);
    }
    if (folders > 0) Require(StoredPathOf(batch.folders, static_cast<uint32_t>(folders - 1)).starts_with('/'));
}

// The payload that the batch gives for the record that was just applied to it; the record's own where several records
// could stand for it.
std::string EncodeAgain(const Record& record, const Batch& batch) {
    switch (record.type) {
        case RecordType::kBegin:
            return EncodeBegin(batch.header);
        case RecordType::kFolder:
            return EncodeFolder(batch.folders.back());
        case RecordType::kItem:
            return EncodeItem(batch.items.back());
        case RecordType::kStep: {
            uint32_t index = 0;  // the first field
            for (size_t i = 4; i-- > 0;)
                index = (index << 8) | static_cast<uint8_t>(record.payload[i]);
            return EncodeStep(index, batch.steps[index]);
        }
        case RecordType::kPlanned:
            return EncodePlanned(batch);
        case RecordType::kFolderTimes:
            return EncodeFolderTimes(batch.folders);
        case RecordType::kEnd:
            return EncodeEnd({batch.isCancelled});
        default:
            return std::string(record.payload);
    }
}

void CheckRecords(const JournalScan& scan) {
    Batch batch;
    for (const Record& record : scan.records) {
        if (!ApplyRecord(record, batch)) break;
        Require(EncodeAgain(record, batch) == record.payload);
    }
    CheckIndices(batch);
}

// Half of the inputs are the file itself; of the others the head and the frames' heads are made here, so that records
// are reached at all behind a checksum.
std::string JournalOf(std::string_view input) {
    std::string bytes;
    AppendJournalHead(bytes);
    uint64_t sequence = 0;
    while (input.size() > 2) {
        const auto length = std::min<size_t>(static_cast<uint8_t>(input[1]), input.size() - 2);
        AppendFrame(bytes, static_cast<RecordType>(input[0]), sequence++, 0, input.substr(2, length));
        input.remove_prefix(2 + length);
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const bool isRaw = (input[0] & 1) == 0;
    const std::string bytes = isRaw ? std::string(input.substr(1)) : JournalOf(input.substr(1));
    const JournalScan scan = ScanJournal(bytes);
    Require(scan.validLength <= bytes.size());
    Require((scan.verdict == ScanVerdict::kWhole) == (scan.validLength == bytes.size() && !bytes.empty()));
    Require(isRaw || scan.verdict == ScanVerdict::kWhole);
    CheckRecords(scan);
    return 0;
}
