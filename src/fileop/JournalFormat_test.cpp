#include "fileop/JournalFormat.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "fileop/BatchWorld_test.h"
#include "fileop/ByteStream.h"

namespace kinsort {
namespace {

// Where a frame's parts stand, as docs/journal-format.md says.
constexpr size_t kDurableAt = 20;
constexpr size_t kFrameHead = 29;

// The journal of a batch that moved, copied and replaced.
const std::string& RealJournal() {
    static const std::string bytes = [] {
        MemorySys disk;
        BatchWorld world;
        BatchWorld::PrepareFiles(disk);
        const BatchResult result =
            world.Run(disk, {{true, "/in/a.txt", "/out"}, {true, "/in/b.txt", "/out"}, {false, "/in/album", "/out"}},
                      {.conflicts = ConflictAnswer::kReplace, .durability = Durability::kContent, .threads = 1});
        EXPECT_EQ(result.done, 3u);
        return disk.ReadFile("/state/undo/0000000000000001.batch").value_or("");
    }();
    return bytes;
}

// Offsets at which the head and each frame end, by the lengths alone.
std::vector<size_t> EndsOf(const std::string& journal) {
    std::vector<size_t> ends{kJournalHeadSize};
    while (ends.back() + kFrameHead <= journal.size()) {
        ByteReader reader(std::string_view(journal).substr(ends.back()));
        ends.push_back(ends.back() + kFrameHead + reader.Take<uint32_t>());
    }
    return ends;
}

uint64_t DurableLengthOf(const std::string& journal, size_t frameStart) {
    ByteReader reader(std::string_view(journal).substr(frameStart + kDurableAt));
    return reader.Take<uint64_t>();
}

// Whether the records are the first ones of the real journal, unaltered.
testing::AssertionResult AreTheFirst(const std::vector<Record>& records, size_t count) {
    const JournalScan real = ScanJournal(RealJournal());
    if (records.size() != count) return testing::AssertionFailure() << records.size() << " records, not " << count;
    for (size_t i = 0; i < count; ++i) {
        if (records[i].type != real.records[i].type || records[i].payload != real.records[i].payload)
            return testing::AssertionFailure() << "record " << i << " is altered";
    }
    return testing::AssertionSuccess();
}

TEST(JournalFormatTest, AnyCutOfARealJournalLeavesItsFirstFrames) {
    const std::string& journal = RealJournal();
    const std::vector<size_t> ends = EndsOf(journal);
    ASSERT_EQ(ends.back(), journal.size());
    ASSERT_GT(ends.size(), 15u);
    for (size_t length = 0; length <= journal.size(); ++length) {
        const JournalScan scan = ScanJournal(std::string_view(journal).substr(0, length));
        const auto whole = std::upper_bound(ends.begin(), ends.end(), length) - ends.begin();
        const size_t frames = whole == 0 ? 0 : static_cast<size_t>(whole) - 1;
        const size_t valid = whole == 0 ? 0 : ends[frames];
        ASSERT_EQ(scan.verdict, valid == length && whole > 0 ? ScanVerdict::kWhole : ScanVerdict::kTorn) << length;
        ASSERT_EQ(scan.validLength, valid) << length;
        ASSERT_TRUE(AreTheFirst(scan.records, frames)) << length;
    }
}

TEST(JournalFormatTest, AnyAlteredByteIsFoundAndIsDamageWhereAllWasDurable) {
    const std::string& journal = RealJournal();
    const std::vector<size_t> ends = EndsOf(journal);
    const uint64_t durable = DurableLengthOf(journal, ends[ends.size() - 2]);
    EXPECT_GT(durable, ends[ends.size() - 4]) << "when the batch ends, all but its last words is durable";
    for (size_t at = 0; at < journal.size(); ++at) {
        const auto frame = static_cast<size_t>(std::upper_bound(ends.begin(), ends.end(), at) - ends.begin());
        const bool isInVersion = at >= kJournalMagic.size() && at < kJournalHeadSize;
        const bool wasDurable = frame == 0 || ends[frame - 1] < durable;
        for (const int flip : {0x01, 0x10, 0x80, 0xFF}) {
            std::string altered = journal;
            altered[at] = static_cast<char>(altered[at] ^ flip);
            const JournalScan scan = ScanJournal(altered);
            if (isInVersion) {
                ASSERT_TRUE(scan.verdict == ScanVerdict::kTooNew || scan.verdict == ScanVerdict::kDamaged) << at;
                ASSERT_TRUE(scan.records.empty()) << at;
                continue;
            }
            ASSERT_EQ(scan.verdict, wasDurable ? ScanVerdict::kDamaged : ScanVerdict::kTorn) << at << " " << flip;
            ASSERT_TRUE(AreTheFirst(scan.records, frame == 0 ? 0 : frame - 1)) << at << " " << flip;
        }
    }
}

std::string Head() {
    std::string head;
    AppendJournalHead(head);
    return head;
}

std::string Frame(uint64_t sequence, uint64_t durable, std::string_view payload = "payload") {
    std::string frame;
    AppendFrame(frame, RecordType::kDone, sequence, durable, payload);
    return frame;
}

TEST(JournalFormatTest, FramesCountOnlyInTheirOrderAndPlace) {
    const std::string head = Head();
    const std::string f0 = Frame(0, 0);
    const std::string f1 = Frame(1, 0);
    const std::string f2 = Frame(2, 0);
    const std::string behind0 = Frame(1, head.size() + f0.size());
    const std::string behind1 = Frame(2, head.size() + f0.size() + 1);
    const std::string zeros(100, '\0');
    std::string spoilt1 = f1;
    spoilt1.back() = 'X';
    std::string newer = head;
    newer[kJournalMagic.size()] = 2;
    std::string older = head;
    older[kJournalMagic.size()] = 0;
    struct Case {
        const char* what;
        std::string bytes;
        ScanVerdict verdict;
        size_t records;
    };
    const Case cases[] = {
        {"nothing", "", ScanVerdict::kTorn, 0},
        {"a head", head, ScanVerdict::kWhole, 0},
        {"three frames", head + f0 + f1 + f2, ScanVerdict::kWhole, 3},
        {"an empty payload", head + Frame(0, 0, ""), ScanVerdict::kWhole, 1},
        {"a frame inside a payload", head + Frame(0, 0, f1 + behind1), ScanVerdict::kWhole, 1},
        {"room that was reserved", head + f0 + zeros, ScanVerdict::kTorn, 1},
        {"size without data", zeros, ScanVerdict::kTorn, 0},
        {"garbage behind", head + f0 + "garbage", ScanVerdict::kTorn, 1},
        {"lost and never durable", head + f0 + std::string(f1.size(), '\0') + f2, ScanVerdict::kTorn, 1},
        {"spoilt and never durable", head + f0 + spoilt1 + behind0, ScanVerdict::kTorn, 1},
        {"spoilt and once durable", head + f0 + spoilt1 + behind1, ScanVerdict::kDamaged, 1},
        {"lost head, never durable", std::string(head.size(), '\0') + f0 + f1, ScanVerdict::kTorn, 0},
        {"lost head, once durable", std::string(head.size(), '\0') + f0 + behind0, ScanVerdict::kDamaged, 0},
        {"exchanged", head + f1 + f0, ScanVerdict::kTorn, 0},
        {"exchanged, once durable", head + f1 + f0 + behind1, ScanVerdict::kDamaged, 0},
        {"twice", head + f0 + f0 + behind1, ScanVerdict::kDamaged, 1},
        {"one is missing", head + f0 + behind1, ScanVerdict::kDamaged, 1},
        {"a later version", newer + f0, ScanVerdict::kTooNew, 0},
        {"no such version", older + f0, ScanVerdict::kDamaged, 0},
        {"a length beyond the end", head + "\xff\xff\xff\xff" + f0.substr(4), ScanVerdict::kTorn, 0},
    };
    for (const Case& c : cases) {
        const JournalScan scan = ScanJournal(c.bytes);
        EXPECT_EQ(scan.verdict, c.verdict) << c.what;
        EXPECT_EQ(scan.records.size(), c.records) << c.what;
        EXPECT_LE(scan.validLength, c.bytes.size()) << c.what;
    }
}

}  // namespace
}  // namespace kinsort
