#include "fileop/JournalFormat.h"

#include <algorithm>

#include <xxhash.h>

#include "fileop/ByteStream.h"

namespace kinsort {

namespace {

// length, checksum, sequence, durable length, type
constexpr size_t kFrameHeadSize = 4 + 8 + 8 + 8 + 1;
constexpr size_t kSequenceAt = 4 + 8;
static_assert(kEndFrameSize == kFrameHeadSize + 1);

struct Frame {
    Record record;
    uint64_t durableLength = 0;
    size_t size = 0;  // bytes of the whole frame
};

// The checksum covers everything behind itself; the sequence is its seed too, so that frames cannot trade places.
uint64_t ChecksumOf(std::string_view covered, uint64_t sequence) {
    return XXH64(covered.data(), covered.size(), sequence);
}

// The frame at the front of `bytes` when it is whole, good and has the sequence `sequence`; false otherwise.
bool ReadFrame(std::string_view bytes, uint64_t sequence, Frame& frame) {
    if (bytes.size() < kFrameHeadSize) return false;
    ByteReader reader(bytes);
    const auto length = reader.Take<uint32_t>();
    const auto checksum = reader.Take<uint64_t>();
    if (length > bytes.size() - kFrameHeadSize || reader.Take<uint64_t>() != sequence) return false;
    if (ChecksumOf(bytes.substr(kSequenceAt, kFrameHeadSize - kSequenceAt + length), sequence) != checksum)
        return false;
    frame.durableLength = reader.Take<uint64_t>();
    frame.record = {reader.Take<RecordType>(), bytes.substr(kFrameHeadSize, length)};
    frame.size = kFrameHeadSize + length;
    return true;
}

// What the frame at the front of `bytes` says of its place; 0 when there is none.
uint64_t SequenceOf(std::string_view bytes) {
    return bytes.size() < kFrameHeadSize ? 0 : ByteReader(bytes.substr(kSequenceAt)).Take<uint64_t>();
}

// Whether a good frame somewhere in `bytes`, the rest of the file from offset `at` on, says that offset `at` was
// durable.
bool WasDurable(uint64_t at, std::string_view bytes, uint64_t firstSequence) {
    // More frames than this cannot follow in the bytes that are left.
    const uint64_t lastSequence = firstSequence + bytes.size() / kFrameHeadSize;
    for (; bytes.size() >= kFrameHeadSize; bytes.remove_prefix(1)) {
        const uint64_t sequence = SequenceOf(bytes);
        Frame frame{};
        const bool isPlausible = sequence >= firstSequence && sequence <= lastSequence;
        if (isPlausible && ReadFrame(bytes, sequence, frame) && frame.durableLength > at) return true;
    }
    return false;
}

}  // namespace

void AppendJournalHead(std::string& out) {
    out.append(kJournalMagic);
    ByteWriter(out).Put(kJournalVersion);
}

void AppendFrame(std::string& out, RecordType type, uint64_t sequence, uint64_t durableLength,
                 std::string_view payload) {
    const size_t start = out.size();
    ByteWriter frame(out);
    frame.Put(static_cast<uint32_t>(payload.size()));
    frame.Put(uint64_t{0});  // the checksum's place
    frame.Put(sequence);
    frame.Put(durableLength);
    frame.Put(type);
    frame.PutBytes(payload);
    std::string checksum;
    ByteWriter(checksum).Put(ChecksumOf(std::string_view(out).substr(start + kSequenceAt), sequence));
    out.replace(start + sizeof(uint32_t), checksum.size(), checksum);
}

std::optional<uint64_t> ReadEndFrame(std::string_view bytes) {
    Frame frame{};
    if (bytes.size() != kEndFrameSize || !ReadFrame(bytes, SequenceOf(bytes), frame)) return std::nullopt;
    if (frame.size != bytes.size() || frame.record.type != RecordType::kEnd) return std::nullopt;
    return std::max<uint64_t>(frame.durableLength, kJournalHeadSize);
}

bool AreUnbroken(std::string_view bytes) {
    if (bytes.empty()) return false;
    Frame frame{};
    for (uint64_t sequence = SequenceOf(bytes); ReadFrame(bytes, sequence, frame); ++sequence)
        bytes.remove_prefix(frame.size);
    return bytes.empty();
}

JournalScan ScanJournal(std::string_view bytes) {
    JournalScan scan;
    if (bytes.size() < kJournalHeadSize) {
        scan.verdict = ScanVerdict::kTorn;
        return scan;
    }
    if (!bytes.starts_with(kJournalMagic)) {
        scan.verdict = WasDurable(0, bytes, 0) ? ScanVerdict::kDamaged : ScanVerdict::kTorn;
        return scan;
    }
    ByteReader version(bytes.substr(kJournalMagic.size()));
    if (const auto number = version.Take<uint32_t>(); number != kJournalVersion) {
        scan.verdict = number > kJournalVersion ? ScanVerdict::kTooNew : ScanVerdict::kDamaged;
        return scan;
    }
    size_t at = kJournalHeadSize;
    for (Frame frame{}; ReadFrame(bytes.substr(at), scan.records.size(), frame); at += frame.size) {
        scan.records.push_back(frame.record);
    }
    scan.validLength = at;
    if (at == bytes.size()) {
        scan.verdict = ScanVerdict::kWhole;
    } else {
        const bool isDamage = WasDurable(at, bytes.substr(at), scan.records.size() + 1);
        scan.verdict = isDamage ? ScanVerdict::kDamaged : ScanVerdict::kTorn;
    }
    return scan;
}

}  // namespace kinsort
