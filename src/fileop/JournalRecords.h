// What the journal says of a batch, record by record, and the batch that the records say.
#pragma once

#include <string>
#include <vector>

#include "fileop/Batch.h"
#include "fileop/JournalFormat.h"

namespace kinsort {

struct EndRecord {
    bool isCancelled = false;
};

std::string EncodeBegin(const BatchHeader& header);
std::string EncodeFolder(const FolderRecord& folder);
std::string EncodeItem(const BatchItem& item);
std::string EncodeStep(uint32_t index, const Step& step);
std::string EncodePlanned(const Batch& batch);
// For kPrepared, kCopied and kDone: the steps `indices` with what stands in `states`.
std::string EncodeProgress(const std::vector<uint32_t>& indices, const std::vector<StepState>& states);
std::string EncodeFailed(const std::vector<uint32_t>& indices, const std::vector<StepState>& states);
std::string EncodeFolderTimes(const std::vector<FolderRecord>& folders);
std::string EncodeEnd(const EndRecord& end);

// Applies one record to `batch`, which kBegin must have begun; false when it makes no sense there (an index out of
// range, a cut payload). What was applied before stays.
bool ApplyRecord(const Record& record, Batch& batch);

}  // namespace kinsort
