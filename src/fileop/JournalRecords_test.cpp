#include "fileop/JournalRecords.h"

#include <functional>
#include <tuple>

#include <gtest/gtest.h>

#include "fileop/ByteStream.h"
#include "fileop/SampleBatch_test.h"

namespace kinsort {
namespace {

auto FieldsOf(const FileIdentity& id) {
    return std::make_tuple(id.inode, id.createdNs, id.size, id.modifiedNs, id.kind);
}
auto FieldsOf(const Place& place) {
    return std::make_tuple(place.folder, place.name);
}
auto FieldsOf(const BatchHeader& h) {
    return std::make_tuple(h.kind, h.id, h.root, h.durability, h.keepForUndo, h.startedNs, h.user, h.bootId);
}
auto FieldsOf(const FolderRecord& f) {
    return std::make_tuple(f.parent, f.name, f.device, f.volumeId, f.inode, f.createdNs, f.modifiedNs,
                           f.modifiedAfterNs, f.isKeep);
}
auto FieldsOf(const BatchItem& item) {
    return std::make_tuple(FieldsOf(item.source), item.destination, item.isMove);
}
auto FieldsOf(const Step& s) {
    return std::make_tuple(s.kind, s.isHardLink, s.dependsOnPrevious, s.item, FieldsOf(s.source), FieldsOf(s.target),
                           s.mode, s.keptFolder, FieldsOf(s.sourceId), FieldsOf(s.targetId), s.invertsBatch,
                           s.invertsStep);
}
auto FieldsOf(const StepState& s) {
    return std::make_tuple(s.progress, FieldsOf(s.made), s.reason, s.status.code(), s.status.systemCode());
}

template <typename T>
void ExpectSameFields(const std::vector<T>& got, const std::vector<T>& wanted, const char* what) {
    ASSERT_EQ(got.size(), wanted.size()) << what;
    for (size_t i = 0; i < got.size(); ++i)
        EXPECT_EQ(FieldsOf(got[i]), FieldsOf(wanted[i])) << what << " " << i;
}

// Applies records in order; false as soon as one is refused.
bool ApplyAll(const std::vector<SampleRecord>& records, Batch& batch) {
    for (const SampleRecord& record : records) {
        if (!ApplyRecord({record.type, record.payload}, batch)) return false;
    }
    return true;
}

TEST(JournalRecordsTest, ABatchComesBackWithEveryField) {
    const Batch wanted = SampleBatch();
    Batch got;
    ASSERT_TRUE(ApplyAll(RecordsOf(wanted), got));
    EXPECT_EQ(FieldsOf(got.header), FieldsOf(wanted.header));
    ExpectSameFields(got.folders, wanted.folders, "folder");
    ExpectSameFields(got.items, wanted.items, "item");
    ExpectSameFields(got.steps, wanted.steps, "step");
    ExpectSameFields(got.states, wanted.states, "state");
    EXPECT_TRUE(got.isPlanned && got.isEnded && got.isCancelled);
}

TEST(JournalRecordsTest, AStepThatIsWrittenAgainStartsAnew) {
    Batch batch;
    ASSERT_TRUE(ApplyAll(RecordsOf(SampleBatch()), batch));
    Step again = batch.steps[1];
    again.target.name = "target (2)";
    ASSERT_TRUE(ApplyRecord({RecordType::kStep, EncodeStep(1, again)}, batch));
    EXPECT_EQ(batch.steps[1].target.name, "target (2)");
    EXPECT_EQ(FieldsOf(batch.states[1]), FieldsOf(StepState()));
    EXPECT_EQ(batch.steps.size(), batch.states.size());
}

TEST(JournalRecordsTest, NoPartOfAPayloadIsTakenForAWhole) {
    std::vector<SampleRecord> before;
    for (const SampleRecord& record : RecordsOf(SampleBatch())) {
        for (size_t length = 0; length < record.payload.size(); ++length) {
            Batch batch;
            ASSERT_TRUE(ApplyAll(before, batch));
            EXPECT_FALSE(ApplyRecord({record.type, std::string_view(record.payload).substr(0, length)}, batch))
                << "type " << static_cast<int>(record.type) << " cut to " << length;
        }
        Batch batch;
        ASSERT_TRUE(ApplyAll(before, batch));
        EXPECT_FALSE(ApplyRecord({record.type, record.payload + '\0'}, batch))
            << "type " << static_cast<int>(record.type) << " with a byte too many";
        before.push_back(record);
    }
}

// What a hand that knows the checksum could write. The batch it is applied to is the sample one.
std::string Payload(const std::function<void(ByteWriter&)>& write) {
    std::string bytes;
    ByteWriter writer(bytes);
    write(writer);
    return bytes;
}

std::string StepWith(const std::function<void(Step&)>& change, StepKind kind = StepKind::kMove, uint32_t index = 0) {
    Step step = SampleStep(kind, 0);
    change(step);
    return EncodeStep(index, step);
}

std::string FolderWith(uint32_t parent, std::string name) {
    FolderRecord folder;
    folder.parent = parent;
    folder.name = std::move(name);
    return EncodeFolder(folder);
}

std::string ItemWith(uint32_t folder, std::string name, uint32_t destination) {
    return EncodeItem({{folder, std::move(name)}, destination, true});
}

// One mark whose step, and one failure whose fields, are given.
std::string MarkOf(uint32_t count, uint32_t index) {
    return Payload([=](ByteWriter& w) {
        w.Put(count);
        w.Put(index);
        for (int i = 0; i < 4; ++i)
            w.Put(uint64_t{1});
        w.Put(FileKind::kFile);
    });
}
std::string FailureOf(uint32_t index, uint8_t isSkip, uint8_t reason, uint8_t code) {
    return Payload([=](ByteWriter& w) {
        w.Put(uint32_t{1});
        w.Put(index);
        w.Put(isSkip);
        w.Put(reason);
        w.Put(code);
        w.Put(int32_t{0});
    });
}

// A payload of which one byte is replaced.
std::string WithByte(std::string payload, size_t at, char byte) {
    payload[at] = byte;
    return payload;
}

TEST(JournalRecordsTest, SenselessRecordsAreRefused) {
    const std::string nul("a\0b", 3);
    const Batch sample = SampleBatch();
    const std::string end = EncodeEnd({true});
    struct Case {
        const char* what;
        RecordType type;
        std::string payload;
    };
    const Case cases[] = {
        {"no such type", static_cast<RecordType>(0), ""},
        {"no such type", static_cast<RecordType>(12), end},
        {"no such type", static_cast<RecordType>(255), end},
        {"a second beginning", RecordType::kBegin, EncodeBegin(sample.header)},
        {"folder above that is not there", RecordType::kFolder, FolderWith(4, "x")},
        {"top folder without a path", RecordType::kFolder, FolderWith(kNoIndex, "")},
        {"top folder with a relative path", RecordType::kFolder, FolderWith(kNoIndex, "home")},
        {"top folder with a NUL", RecordType::kFolder, FolderWith(kNoIndex, "/" + nul)},
        {"folder without a name", RecordType::kFolder, FolderWith(0, "")},
        {"folder that climbs", RecordType::kFolder, FolderWith(0, "..")},
        {"folder that stays", RecordType::kFolder, FolderWith(0, ".")},
        {"folder with a path", RecordType::kFolder, FolderWith(0, "a/b")},
        {"folder with an absolute path", RecordType::kFolder, FolderWith(0, "/etc")},
        {"folder with a NUL", RecordType::kFolder, FolderWith(0, nul)},
        {"folder with an odd flag", RecordType::kFolder,
         WithByte(FolderWith(0, "x"), FolderWith(0, "x").size() - 1, 2)},
        {"text of 4 GiB", RecordType::kFolder, WithByte(FolderWith(0, "x"), 7, '\xff')},
        {"item in no folder", RecordType::kItem, ItemWith(4, "x", 1)},
        {"item for no folder", RecordType::kItem, ItemWith(0, "x", 4)},
        {"item with a path", RecordType::kItem, ItemWith(0, "../x", 1)},
        {"step beyond the next", RecordType::kStep, StepWith([](Step&) {}, StepKind::kMove, 12)},
        {"step of no kind", RecordType::kStep, StepWith([](Step&) {}, static_cast<StepKind>(0))},
        {"step of no kind", RecordType::kStep, StepWith([](Step&) {}, static_cast<StepKind>(12))},
        {"odd flags", RecordType::kStep, WithByte(StepWith([](Step&) {}), 5, 4)},
        {"step of no item", RecordType::kStep, StepWith([](Step& s) { s.item = 2; })},
        {"first step that depends", RecordType::kStep, StepWith([](Step& s) { s.dependsOnPrevious = true; })},
        {"target in no folder", RecordType::kStep, StepWith([](Step& s) { s.target.folder = 4; })},
        {"target nowhere", RecordType::kStep, StepWith([](Step& s) { s.target.folder = kNoIndex; })},
        {"target without a name", RecordType::kStep, StepWith([](Step& s) { s.target.name = {}; })},
        {"target that climbs", RecordType::kStep, StepWith([](Step& s) { s.target.name = ".."; })},
        {"target with a path", RecordType::kStep, StepWith([](Step& s) { s.target.name = "a/b"; })},
        {"target with a NUL", RecordType::kStep, StepWith([&](Step& s) { s.target.name = nul; })},
        {"source in no folder", RecordType::kStep, StepWith([](Step& s) { s.source.folder = 4; })},
        {"source nowhere", RecordType::kStep, StepWith([](Step& s) { s.source.folder = kNoIndex; })},
        {"source without a name", RecordType::kStep, StepWith([](Step& s) { s.source.name = {}; })},
        {"copy to verify nowhere", RecordType::kStep,
         StepWith([](Step& s) { s.source.folder = kNoIndex; }, StepKind::kRemoveCopy)},
        {"replacing without keeping", RecordType::kStep,
         StepWith([](Step& s) { s.keptFolder = kNoIndex; }, StepKind::kCopyReplace)},
        {"kept in no folder", RecordType::kStep, StepWith([](Step& s) { s.keptFolder = 4; })},
        {"identity of no kind", RecordType::kStep,
         StepWith([](Step& s) { s.sourceId.kind = static_cast<FileKind>(4); })},
        {"plan of another length", RecordType::kPlanned, Payload([](ByteWriter& w) { w.Put(uint32_t{9}); })},
        {"mark of no step", RecordType::kDone, MarkOf(1, 11)},
        {"marks without end", RecordType::kPrepared, MarkOf(0xFFFFFFFF, 0)},
        {"failure of no step", RecordType::kFailed, FailureOf(11, 0, 1, 1)},
        {"failures without end", RecordType::kFailed, WithByte(FailureOf(0, 0, 1, 1), 3, '\xff')},
        {"odd skip", RecordType::kFailed, FailureOf(0, 2, 1, 1)},
        {"no such reason", RecordType::kFailed, FailureOf(0, 0, 15, 1)},
        {"no such status", RecordType::kFailed, FailureOf(0, 0, 1, 28)},
        {"times of other folders", RecordType::kFolderTimes, EncodeFolderTimes({sample.folders[0]})},
        {"odd end", RecordType::kEnd, WithByte(end, 0, 2)},
    };
    for (const Case& c : cases) {
        Batch batch;
        ASSERT_TRUE(ApplyAll(RecordsOf(sample), batch));
        EXPECT_FALSE(ApplyRecord({c.type, c.payload}, batch)) << c.what;
        EXPECT_EQ(batch.folders.size(), 4u) << c.what;
        EXPECT_EQ(batch.steps.size(), 11u) << c.what;
    }
}

TEST(JournalRecordsTest, NothingComesBeforeTheBeginning) {
    for (const SampleRecord& record : RecordsOf(SampleBatch())) {
        Batch batch;
        EXPECT_EQ(ApplyRecord({record.type, record.payload}, batch), record.type == RecordType::kBegin)
            << static_cast<int>(record.type);
    }
    const BatchHeader good = SampleBatch().header;
    for (const auto& spoil : std::vector<std::function<void(BatchHeader&)>>{
             [](BatchHeader& h) { h.id = 0; },
             [](BatchHeader& h) { h.kind = static_cast<BatchKind>(0); },
             [](BatchHeader& h) { h.kind = static_cast<BatchKind>(4); },
             [](BatchHeader& h) { h.durability = static_cast<Durability>(2); },
         }) {
        BatchHeader header = good;
        spoil(header);
        Batch batch;
        EXPECT_FALSE(ApplyRecord({RecordType::kBegin, EncodeBegin(header)}, batch));
    }
}

}  // namespace
}  // namespace kinsort
