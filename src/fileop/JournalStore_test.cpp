#include "fileop/JournalStore.h"

#include <functional>

#include <gtest/gtest.h>

#include "fileop/SampleBatch_test.h"
#include "platform/fake/FaultSys.h"
#include "platform/fake/MemorySys.h"

namespace kinsort {
namespace {

constexpr const char* kFolder = "/home/.local/state/vel/undo";
constexpr uint32_t kSomebody = 1001;

class JournalStoreTest : public testing::Test {
  protected:
    JournalStoreTest() {
        disk.MakeFolders("/home");
        disk.SetOwnerOf("/home", disk.UserNumber());
    }

    static std::string PathOf(BatchId id) { return std::string(kFolder) + "/" + JournalName(id); }

    // A store on the disk whose folder is there.
    JournalStore OpenStore(Sys& sys) {
        JournalStore store(sys, kFolder);
        EXPECT_TRUE(store.Open().ok());
        return store;
    }

    // A whole and durable journal of the sample batch with the next number.
    BatchId WriteSample(JournalStore& store) {
        Result<NewJournal> created = store.Create();
        EXPECT_TRUE(created.ok());
        for (const SampleRecord& record : RecordsOf(SampleBatch(created->id)))
            created->journal.Append(record.type, record.payload);
        EXPECT_TRUE(created->journal.Sync().ok() && store.SyncNames().ok());
        return created->id;
    }

    MemorySys disk;
};

TEST_F(JournalStoreTest, TheFolderIsMadePrivateAndLasting) {
    OpenStore(disk);
    for (const char* made : {"/home/.local", "/home/.local/state", "/home/.local/state/vel", kFolder})
        EXPECT_EQ(disk.Look(made)->mode, 0700u) << made;
    for (uint64_t seed = 0; seed < 20; ++seed)
        EXPECT_TRUE(disk.AfterPowerCut(seed)->Has(kFolder)) << seed;
    OpenStore(disk);  // a second program finds it there
    EXPECT_EQ(disk.openHandles(), 0u);
}

TEST_F(JournalStoreTest, AFolderThatOthersCouldFillIsNotUsed) {
    struct Case {
        const char* what;
        std::function<void(MemorySys&)> spoil;
        StatusCode code;
    };
    const Case cases[] = {
        {"of somebody else", [](MemorySys& d) { d.SetOwnerOf(kFolder, kSomebody); }, StatusCode::kAccessDenied},
        {"others may write", [](MemorySys& d) { d.SetModeOf(kFolder, 0702); }, StatusCode::kAccessDenied},
        {"the group may write", [](MemorySys& d) { d.SetModeOf(kFolder, 0770); }, StatusCode::kAccessDenied},
        {"a file", [](MemorySys& d) { d.Remove(kFolder), d.WriteFile(kFolder, ""); }, StatusCode::kNotFolder},
        {"a file above", [](MemorySys& d) { d.Remove("/home/.local/state"), d.WriteFile("/home/.local/state", ""); },
         StatusCode::kNotFolder},
        {"no right to make it", [](MemorySys& d) { d.Remove("/home/.local"), d.SetOwnerOf("/home", kSomebody); },
         StatusCode::kAccessDenied},
    };
    for (const Case& c : cases) {
        MemorySys spoilt;
        spoilt.MakeFolders("/home");
        spoilt.SetOwnerOf("/home", spoilt.UserNumber());
        OpenStore(spoilt);
        c.spoil(spoilt);
        JournalStore store(spoilt, kFolder);
        EXPECT_EQ(store.Open().code(), c.code) << c.what;
    }
}

TEST_F(JournalStoreTest, AJournalThatIsNotTheUsersOwnIsNotBelieved) {
    struct Case {
        const char* what;
        std::function<void(MemorySys&, const std::string&)> spoil;
        StatusCode code;
    };
    const Case cases[] = {
        {"missing", [](auto& d, auto& p) { d.Remove(p); }, StatusCode::kNotFound},
        {"of somebody else", [](auto& d, auto& p) { d.SetOwnerOf(p, kSomebody); }, StatusCode::kAccessDenied},
        {"the group may write", [](auto& d, auto& p) { d.SetModeOf(p, 0620); }, StatusCode::kAccessDenied},
        {"others may write", [](auto& d, auto& p) { d.SetModeOf(p, 0602); }, StatusCode::kAccessDenied},
        {"a second name",
         [](auto& d, auto&) {
             const auto folder = d.OpenFolder(kFolder);
             const auto home = d.OpenFolder("/home");
             ASSERT_TRUE(d.LinkAt(*folder, JournalName(1), *home, "other").ok());
         },
         StatusCode::kAccessDenied},
        {"a link",
         [](auto& d, auto& p) {
             d.Move(p, "/home/elsewhere");
             d.MakeLink("/home/elsewhere", p);
         },
         StatusCode::kIsLink},
        {"a folder", [](auto& d, auto& p) { d.Remove(p), d.MakeFolders(p); }, StatusCode::kIsFolder},
        {"a pipe", [](auto& d, auto& p) { d.Remove(p), d.MakeOther(p); }, StatusCode::kInvalid},
    };
    for (const Case& c : cases) {
        JournalStore store = OpenStore(disk);
        disk.Remove(PathOf(1));
        ASSERT_EQ(WriteSample(store), 1u);
        ASSERT_EQ(store.Load(1)->verdict, ScanVerdict::kWhole);
        c.spoil(disk, PathOf(1));
        EXPECT_EQ(store.Load(1).code(), c.code) << c.what;
    }
}

TEST_F(JournalStoreTest, NumbersGrowAndAreNeverGivenTwice) {
    FaultSys faults(disk);
    JournalStore mine = OpenStore(faults);
    JournalStore other = OpenStore(disk);
    EXPECT_EQ(WriteSample(mine), 1u);
    disk.WriteFile(PathOf(0x1f), "");
    for (const char* noJournal :
         {"0000000000000099.kept", "00000000000000AA.batch", "+000000000000bbb.batch", "x.batch",
          "0000000000000000.batch", "00000000000000cc.batch~", "000000000000000dd.batch"})
        disk.WriteFile(std::string(kFolder) + "/" + noJournal, "");
    EXPECT_EQ(*mine.List(), (std::vector<BatchId>{1, 0x1f}));
    EXPECT_EQ(WriteSample(mine), 0x20u);

    // Both have seen the same list; the other program is quicker.
    BatchId others = 0;
    faults.AtKind(SysCall::kCreateFileAt, faults.CountOf(SysCall::kCreateFileAt) + 1,
                  Fault::Hook([&] { others = WriteSample(other); }));
    EXPECT_EQ(WriteSample(mine), 0x22u);
    EXPECT_EQ(others, 0x21u);

    // Before its lock is taken, the new file looks like one that a dead program left.
    const uint64_t locks = faults.CountOf(SysCall::kTryLock);
    faults.AtKind(SysCall::kTryLock, locks + 1, Fault::Hook([&] { disk.Remove(PathOf(0x23)); }));
    FileHandle grabbed;
    faults.AtKind(SysCall::kTryLock, locks + 2, Fault::Hook([&] { grabbed = std::move(*other.Lock(0x24)); }));
    EXPECT_EQ(WriteSample(mine), 0x25u);
    EXPECT_EQ(mine.Load(0x25)->verdict, ScanVerdict::kWhole);
    EXPECT_EQ(faults.strikes(), 3u);
}

TEST_F(JournalStoreTest, OneProgramAtATimeWorksOnABatch) {
    JournalStore mine = OpenStore(disk);
    JournalStore other = OpenStore(disk);
    {
        const Result<NewJournal> created = mine.Create();
        EXPECT_EQ(other.Lock(created->id).code(), StatusCode::kLocked);
        EXPECT_TRUE(other.Load(created->id).ok()) << "reading is free";
    }
    {
        const Result<FileHandle> lock = other.Lock(1);
        ASSERT_TRUE(lock.ok()) << "free again when the first is gone";
        EXPECT_EQ(mine.Lock(1).code(), StatusCode::kLocked);
    }
    EXPECT_EQ(mine.Lock(2).code(), StatusCode::kNotFound);
    ASSERT_TRUE(mine.Remove(1).ok());
    EXPECT_EQ(mine.Remove(1).code(), StatusCode::kNotFound);
    EXPECT_EQ(disk.openHandles(), 2u) << "the two folders";
}

TEST_F(JournalStoreTest, GoodFramesThatMakeNoSenseAreDamage) {
    JournalStore store = OpenStore(disk);
    ASSERT_EQ(WriteSample(store), 1u);
    disk.WriteFile(PathOf(2), *disk.ReadFile(PathOf(1)), 0600);
    Result<LoadedBatch> loaded = store.Load(2);
    EXPECT_EQ(loaded->verdict, ScanVerdict::kDamaged) << "a copy of another batch's journal";
    EXPECT_EQ(loaded->batch.header.id, 2u);

    Result<NewJournal> created = store.Create();
    created->journal.Append(RecordType::kBegin, EncodeBegin(SampleBatch(created->id).header));
    created->journal.Append(RecordType::kFolder, "nonsense");
    ASSERT_TRUE(created->journal.Flush().ok());
    loaded = store.Load(created->id);
    EXPECT_EQ(loaded->verdict, ScanVerdict::kDamaged);
    EXPECT_FALSE(loaded->isTrusted());
    EXPECT_TRUE(loaded->batch.folders.empty());
}

TEST_F(JournalStoreTest, WhatACrashToreOffIsCutAndNeverComesBack) {
    JournalStore store = OpenStore(disk);
    ASSERT_EQ(WriteSample(store), 1u);
    const size_t whole = disk.ReadFile(PathOf(1))->size();
    const size_t records = store.Load(1)->recordCount;
    // What a power cut left: a frame that never reached the disk, and behind it, from a sector's border on, one that
    // did.
    std::string bytes = *disk.ReadFile(PathOf(1));
    std::string frame;
    AppendFrame(frame, RecordType::kEnd, records, 0, {});
    const std::string lost(1024 - (whole + frame.size()) % 512, 'l');
    frame.clear();
    AppendFrame(frame, RecordType::kEnd, records, 0, lost);
    bytes += std::string(frame.size(), '\0');
    AppendFrame(bytes, RecordType::kEnd, records + 1, 0, EncodeEnd({true}));
    disk.WriteFile(PathOf(1), bytes, 0600);

    const Result<LoadedBatch> torn = store.Load(1);
    ASSERT_EQ(torn->verdict, ScanVerdict::kTorn);
    ASSERT_EQ(torn->validLength, whole);
    Result<Journal> journal = store.Continue(std::move(*store.Lock(1)), *torn);
    ASSERT_TRUE(journal.ok());
    EXPECT_EQ(store.Lock(1).code(), StatusCode::kLocked);
    // As long as the one that was lost, so that the one behind it would fit on.
    journal->Append(RecordType::kEnd, lost);
    ASSERT_TRUE(journal->Flush().ok());
    for (uint64_t seed = 0; seed < 200; ++seed) {
        const JournalScan scan = ScanJournal(*disk.AfterPowerCut(seed)->ReadFile(PathOf(1)));
        ASSERT_NE(scan.verdict, ScanVerdict::kDamaged) << seed;
        ASSERT_LE(scan.records.size(), records + 1) << "a record of the life before, seed " << seed;
        ASSERT_GE(scan.records.size(), records) << seed;
    }
    EXPECT_EQ(ScanJournal(*disk.ReadFile(PathOf(1))).verdict, ScanVerdict::kWhole);
}

TEST_F(JournalStoreTest, AnEmptyOrHalfBegunJournalIsBegunAnew) {
    JournalStore store = OpenStore(disk);
    for (const std::string& left : {std::string(), std::string("KIN"), std::string(40, '\0')}) {
        disk.WriteFile(PathOf(1), left, 0600);
        const Result<LoadedBatch> torn = store.Load(1);
        ASSERT_EQ(torn->verdict, ScanVerdict::kTorn) << left.size();
        EXPECT_FALSE(torn->batch.isPlanned);
        Result<Journal> journal = store.Continue(std::move(*store.Lock(1)), *torn);
        journal->Append(RecordType::kBegin, EncodeBegin(SampleBatch(1).header));
        ASSERT_TRUE(journal->Sync().ok());
        const Result<LoadedBatch> again = store.Load(1);
        EXPECT_EQ(again->verdict, ScanVerdict::kWhole) << left.size();
        EXPECT_EQ(again->recordCount, 1u);
    }
}

}  // namespace
}  // namespace kinsort
