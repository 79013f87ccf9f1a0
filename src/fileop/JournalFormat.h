// The bytes of a journal file: a head, then frames. A frame is one record with its length, its number in the file, the
// length of the file that was durable when it was written, and a checksum. What a crash leaves is so told from damage:
// a power cut can garble anything behind the last sync, even with good frames behind it, but nothing in front of it.
// docs/journal-format.md describes it for people.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kinsort {

constexpr std::string_view kJournalMagic = "KINSORT\x1a";
constexpr uint32_t kJournalVersion = 1;
constexpr size_t kJournalHeadSize = 12;  // magic and version

enum class RecordType : uint8_t {
    kBegin = 1,    // header of the batch
    kFolder,       // one folder, in the order of their indices
    kItem,         // one queued item
    kStep,         // one step with its index; a later record for the same index replaces it
    kPlanned,      // the plan is complete: number of steps
    kPrepared,     // steps whose content is complete and not yet named
    kCopied,       // transfers whose target is durable and whose source may go
    kDone,         // steps that are done, with what they made
    kFailed,       // steps that failed or were skipped, with the reason
    kFolderTimes,  // modification times of the folders when the batch ended
    kEnd,          // the batch is over
};

struct Record {
    RecordType type;
    std::string_view payload;
};

// Appends the file head / a frame to `out`. `sequence` counts the frames of a file from 0; `durableLength` is how many
// bytes of the file are known to survive a power cut.
void AppendJournalHead(std::string& out);
void AppendFrame(std::string& out, RecordType type, uint64_t sequence, uint64_t durableLength,
                 std::string_view payload);

enum class ScanVerdict : uint8_t {
    kWhole,    // every byte belongs to a good frame
    kTorn,     // good frames, then what a crash left of others
    kDamaged,  // a bad head or frame where all was durable once
    kTooNew,   // a later version of the format
};

struct JournalScan {
    ScanVerdict verdict = ScanVerdict::kDamaged;
    std::vector<Record> records;  // views into the scanned bytes; up to the first bad frame
    uint64_t validLength = 0;     // bytes up to there
};

JournalScan ScanJournal(std::string_view bytes);

// When `bytes`, the last kEndFrameSize of a file, are the good frame of a batch that is over: where the part of the
// file begins that has to be unbroken for it to count. What stands before that was durable.
constexpr size_t kEndFrameSize = 30;
std::optional<uint64_t> ReadEndFrame(std::string_view bytes);
// Whether `bytes`, a part of a file, are good frames one behind the other, at least one.
bool AreUnbroken(std::string_view bytes);

}  // namespace kinsort
