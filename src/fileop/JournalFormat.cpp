#include "fileop/JournalFormat.h"

#include <xxhash.h>

#include "fileop/ByteStream.h"

namespace kinsort {

namespace {

// length, checksum, sequence, type
constexpr size_t kFrameHeadSize = 4 + 8 + 8 + 1;

// The checksum covers everything behind itself; the sequence is its seed too, so that frames cannot trade places.
uint64_t ChecksumOf(std::string_view covered, uint64_t sequence) {
    return XXH64(covered.data(), covered.size(), sequence);
}

// The frame at the front of `bytes` when it is whole, good and has the sequence `sequence`; false otherwise.
bool ReadFrame(std::string_view bytes, uint64_t sequence, Record& record, size_t& size) {
    if (bytes.size() < kFrameHeadSize) return false;
    ByteReader reader(bytes);
    const auto length = reader.Take<uint32_t>();
    const auto checksum = reader.Take<uint64_t>();
    if (length > bytes.size() - kFrameHeadSize || reader.Take<uint64_t>() != sequence) return false;
    constexpr size_t kCovered = 4 + 8;
    if (ChecksumOf(bytes.substr(kCovered, kFrameHeadSize - kCovered + length), sequence) != checksum) return false;
    record = {reader.Take<RecordType>(), bytes.substr(kFrameHeadSize, length)};
    size = kFrameHeadSize + length;
    return true;
}

// Whether a good frame of this file starts anywhere in `bytes`: then what precedes it is damage and not a torn end.
bool HoldsLaterFrame(std::string_view bytes, uint64_t nextSequence) {
    // More frames than this cannot follow in the bytes that are left.
    const uint64_t lastSequence = nextSequence + bytes.size() / kFrameHeadSize + 1;
    for (; bytes.size() >= kFrameHeadSize; bytes.remove_prefix(1)) {
        ByteReader reader(bytes.substr(12));
        const auto sequence = reader.Take<uint64_t>();
        Record record{};
        size_t size = 0;
        if (sequence > nextSequence && sequence <= lastSequence && ReadFrame(bytes, sequence, record, size))
            return true;
    }
    return false;
}

}  // namespace

void AppendJournalHead(std::string& out) {
    ByteWriter writer;
    writer.Put(kJournalVersion);
    out.append(kJournalMagic).append(writer.bytes());
}

void AppendFrame(std::string& out, RecordType type, uint64_t sequence, std::string_view payload) {
    ByteWriter covered;
    covered.Put(sequence);
    covered.Put(type);
    std::string body = covered.bytes();
    body.append(payload);
    ByteWriter head;
    head.Put(static_cast<uint32_t>(payload.size()));
    head.Put(ChecksumOf(body, sequence));
    out.append(head.bytes()).append(body);
}

JournalScan ScanJournal(std::string_view bytes) {
    JournalScan scan;
    std::string head;
    AppendJournalHead(head);
    if (bytes.size() < kJournalHeadSize) {
        const bool isPrefix = head.starts_with(bytes);
        scan.verdict = isPrefix ? ScanVerdict::kTorn : ScanVerdict::kDamaged;
        return scan;
    }
    if (!bytes.starts_with(kJournalMagic)) return scan;
    ByteReader version(bytes.substr(kJournalMagic.size()));
    if (const auto number = version.Take<uint32_t>(); number != kJournalVersion) {
        scan.verdict = number > kJournalVersion ? ScanVerdict::kTooNew : ScanVerdict::kDamaged;
        return scan;
    }
    size_t at = kJournalHeadSize;
    Record record{};
    for (size_t size = 0; ReadFrame(bytes.substr(at), scan.records.size(), record, size); at += size) {
        scan.records.push_back(record);
    }
    scan.validLength = at;
    if (at == bytes.size()) {
        scan.verdict = ScanVerdict::kWhole;
    } else {
        scan.verdict =
            HoldsLaterFrame(bytes.substr(at), scan.records.size()) ? ScanVerdict::kDamaged : ScanVerdict::kTorn;
    }
    return scan;
}

}  // namespace kinsort
