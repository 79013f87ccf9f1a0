// A batch that uses every field a journal has, with values that are easily lost, for the tests of the journal.
#pragma once

#include <string>
#include <tuple>
#include <vector>

#include "fileop/JournalRecords.h"

namespace kinsort {

inline Step SampleStep(StepKind kind, uint32_t item) {
    static uint64_t counter = 0;
    const auto number = static_cast<int64_t>(++counter);
    Step step;
    step.kind = kind;
    step.item = item;
    step.mode = 0100755;
    step.target = {1, "target " + std::to_string(number)};
    if (!IsFolderStep(kind)) step.source = {0, "source\n\xff" + std::to_string(number)};
    if (IsReplace(kind)) step.keptFolder = 3;
    step.sourceId = {~uint64_t{0}, -number, ~uint64_t{1}, INT64_MIN, FileKind::kFile};
    step.targetId = {counter, number, counter + 1, INT64_MAX, FileKind::kLink};
    step.invertsBatch = ~uint64_t{2};
    step.invertsStep = 7;
    return step;
}

inline Batch SampleBatch(BatchId id = 3) {
    Batch batch;
    batch.header = {BatchKind::kRedo, id, 2, Durability::kJournal, false, -5, 0xFFFFFFFE, "boot-1"};
    batch.folders = {
        {kNoIndex, "/home/me/\xe5\x86\x99\xe7\x9c\x9f", ~uint64_t{0}, 2, 3, -4, 5, 60, false, false},
        {0, "sub folder", 1, ~uint64_t{0}, 0, 4, -5, 61, false, false},
        {1, "-deep\\er", 1, 2, ~uint64_t{0}, INT64_MIN, INT64_MAX, 62, false, false},
        {kNoIndex, "/", 1, 2, 9, 4, 5, 63, true, false},
    };
    batch.items = {{{0, std::string(255, 'n')}, 1, true}, {{kNoIndex, "gone"}, kNoIndex, false}};
    for (auto kind = static_cast<uint8_t>(StepKind::kMove); kind <= static_cast<uint8_t>(StepKind::kRemoveCopy); ++kind)
        batch.steps.push_back(SampleStep(static_cast<StepKind>(kind), kind % 2));
    batch.steps[0].isHardLink = true;
    batch.steps[2].dependsOnPrevious = true;
    batch.states.resize(batch.steps.size());
    constexpr StepProgress kProgress[] = {StepProgress::kDone,    StepProgress::kPrepared, StepProgress::kCopied,
                                          StepProgress::kFailed,  StepProgress::kSkipped,  StepProgress::kDone,
                                          StepProgress::kPending, StepProgress::kPrepared, StepProgress::kFailed};
    for (size_t i = 0; i < std::size(kProgress); ++i) {
        StepState& state = batch.states[i];
        state.progress = kProgress[i];
        const bool hasMade = state.progress != StepProgress::kPending && state.progress < StepProgress::kFailed;
        if (hasMade) state.made = {100 + i, -1, 2, -3, FileKind::kFolder};
    }
    batch.states[3].reason = ItemReason::kSystem;
    batch.states[3].status = Status::Failure(StatusCode::kNoSpace, 28);
    batch.states[4].reason = ItemReason::kConflictSkipped;
    batch.states[8].reason = ItemReason::kCancelled;
    batch.states[8].status = Status::Failure(StatusCode::kOther, -1);
    batch.isPlanned = batch.isEnded = batch.isCancelled = true;
    return batch;
}

struct SampleRecord {
    RecordType type;
    std::string payload;
};

// The records of the batch in the order in which the engine writes them.
inline std::vector<SampleRecord> RecordsOf(const Batch& batch) {
    std::vector<SampleRecord> records{{RecordType::kBegin, EncodeBegin(batch.header)}};
    for (const FolderRecord& folder : batch.folders)
        records.push_back({RecordType::kFolder, EncodeFolder(folder)});
    for (const BatchItem& item : batch.items)
        records.push_back({RecordType::kItem, EncodeItem(item)});
    for (uint32_t i = 0; i < batch.steps.size(); ++i)
        records.push_back({RecordType::kStep, EncodeStep(i, batch.steps[i])});
    records.push_back({RecordType::kPlanned, EncodePlanned(batch)});
    const auto stepsThatAre = [&batch](StepProgress progress, StepProgress orThat) {
        std::vector<uint32_t> indices;
        for (uint32_t i = 0; i < batch.states.size(); ++i) {
            const StepProgress is = batch.states[i].progress;
            if (is == progress || is == orThat) indices.push_back(i);
        }
        return indices;
    };
    constexpr std::tuple<RecordType, StepProgress> kMarks[] = {{RecordType::kPrepared, StepProgress::kPrepared},
                                                               {RecordType::kCopied, StepProgress::kCopied},
                                                               {RecordType::kDone, StepProgress::kDone}};
    for (const auto& [type, progress] : kMarks)
        records.push_back({type, EncodeProgress(stepsThatAre(progress, progress), batch.states)});
    records.push_back(
        {RecordType::kFailed, EncodeFailed(stepsThatAre(StepProgress::kFailed, StepProgress::kSkipped), batch.states)});
    records.push_back({RecordType::kFolderTimes, EncodeFolderTimes(batch.folders)});
    records.push_back({RecordType::kEnd, EncodeEnd({batch.isCancelled})});
    return records;
}

}  // namespace kinsort
