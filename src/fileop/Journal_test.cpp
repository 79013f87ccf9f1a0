#include "fileop/Journal.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/fake/FaultSys.h"
#include "platform/fake/MemorySys.h"

namespace kinsort {
namespace {

constexpr const char* kPath = "/journals/one";

class JournalTest : public testing::Test {
  protected:
    JournalTest() : faults(disk) {
        disk.MakeFolders("/journals");
        disk.SetOwnerOf("/journals", disk.UserNumber());
        folder = std::move(*faults.OpenFolder("/journals"));
    }

    Journal Begin() {
        Result<FileHandle> file = faults.CreateFileAt(folder, "one", 0600);
        EXPECT_TRUE(file.ok());
        EXPECT_TRUE(faults.Sync(folder).ok());
        return {faults, std::move(*file), 0, 0};
    }

    // The payloads that the file holds, joined by commas; "damaged" for a damaged file.
    static std::string Read(const MemorySys& from) {
        const std::string bytes = from.ReadFile(kPath).value_or("");
        const JournalScan scan = ScanJournal(bytes);
        if (scan.verdict == ScanVerdict::kDamaged || scan.verdict == ScanVerdict::kTooNew) return "damaged";
        std::string joined;
        for (const Record& record : scan.records)
            joined.append(joined.empty() ? "" : ",").append(record.payload);
        return joined;
    }

    MemorySys disk;
    FaultSys faults;
    FileHandle folder;
};

TEST_F(JournalTest, ShortAndInterruptedWritesEndInWholeFrames) {
    Journal journal = Begin();
    faults.FromKind(SysCall::kWrite, 1, Fault::Shorten(5));
    faults.AtKind(SysCall::kWrite, 1, Fault::Interrupt());
    journal.Append(RecordType::kDone, "one");
    EXPECT_FALSE(disk.ReadFile(kPath)->size() > 0) << "nothing is written before it is asked for";
    ASSERT_TRUE(journal.Flush().ok());
    journal.Append(RecordType::kDone, "two");
    journal.Append(RecordType::kDone, "three");
    ASSERT_TRUE(journal.Sync().ok());
    EXPECT_EQ(Read(disk), "one,two,three");
    EXPECT_GT(faults.strikes(), 3u);
    const uint64_t calls = faults.calls();
    ASSERT_TRUE(journal.Flush().ok());
    EXPECT_EQ(faults.calls(), calls) << "there was nothing to write";
}

TEST_F(JournalTest, AFailedWriteOrSyncIsNeverMadeGood) {
    for (const SysCall failing : {SysCall::kWrite, SysCall::kSync}) {
        disk.Remove(kPath);
        Journal journal = Begin();
        journal.Append(RecordType::kDone, "safe");
        ASSERT_TRUE(journal.Sync().ok());
        faults.AtKind(failing, faults.CountOf(failing) + 1, Fault::Fail(StatusCode::kIo));
        journal.Append(RecordType::kDone, "lost");
        EXPECT_EQ(journal.Sync().code(), StatusCode::kIo);
        const uint64_t calls = faults.calls();
        journal.Append(RecordType::kDone, "late");
        EXPECT_EQ(journal.Flush().code(), StatusCode::kIo);
        EXPECT_EQ(journal.Sync().code(), StatusCode::kIo);
        EXPECT_EQ(faults.calls(), calls) << "a second try could succeed without having written anything";
        for (uint64_t seed = 0; seed < 30; ++seed) {
            const std::string left = Read(*disk.AfterPowerCut(seed));
            EXPECT_TRUE(left == "safe" || left == "safe,lost") << left;
        }
        faults.Forget();
    }
    EXPECT_EQ(faults.strikes(), 2u);
}

TEST_F(JournalTest, APowerCutTakesOnlyWhatWasNotSyncedAndIsNoDamage) {
    Journal journal = Begin();
    const std::string big(700, 'x');  // records that reach over sectors, so that a later one can survive an earlier
    const std::string safe = big + "," + big + "," + big;
    for (int i = 0; i < 3; ++i)
        journal.Append(RecordType::kDone, big);
    for (uint64_t seed = 0; seed < 200; ++seed)
        ASSERT_EQ(Read(*disk.AfterPowerCut(seed)), "") << "buffered only";
    ASSERT_TRUE(journal.Flush().ok());
    for (uint64_t seed = 0; seed < 200; ++seed)
        ASSERT_TRUE(safe.starts_with(Read(*disk.AfterPowerCut(seed)))) << "before the first sync, seed " << seed;
    ASSERT_TRUE(journal.Sync().ok());
    for (int i = 0; i < 5; ++i) {
        journal.Append(RecordType::kDone, big + std::to_string(i));
        ASSERT_TRUE(journal.Flush().ok());
    }
    for (uint64_t seed = 0; seed < 200; ++seed)
        ASSERT_TRUE(Read(*disk.AfterPowerCut(seed)).starts_with(safe)) << "after a sync, seed " << seed;
}

TEST_F(JournalTest, RoomForMarksIsKeptOnAFullVolume) {
    MemoryVolumeOptions small;
    small.bytes = 8 * 4096;
    disk.ChangeVolume("/", small);
    Journal journal = Begin();
    EXPECT_EQ(journal.Reserve(uint64_t{1} << 20).code(), StatusCode::kNoSpace);
    ASSERT_TRUE(journal.Reserve(3 * 4096).ok());
    const Result<FileHandle> filler = faults.CreateFileAt(folder, "filler", 0600);
    const std::vector<std::byte> page(4096);
    uint64_t filled = 0;
    while (faults.Write(*filler, filled, page).ok())
        filled += page.size();
    ASSERT_GT(filled, 0u);
    for (int i = 0; i < 10; ++i)
        journal.Append(RecordType::kDone, std::string(1000, 'm'));
    ASSERT_TRUE(journal.Sync().ok());
    EXPECT_EQ(ScanJournal(*disk.ReadFile(kPath)).verdict, ScanVerdict::kWhole);
    small.reserve = false;
    disk.ChangeVolume("/", small);
    EXPECT_TRUE(journal.Reserve(uint64_t{1} << 20).ok()) << "a volume that cannot reserve is no failure";
}

}  // namespace
}  // namespace kinsort
