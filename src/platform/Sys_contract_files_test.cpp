// The rules of Sys.h for files: content, attributes, locks and handles.
#include "platform/Sys_contract_test.h"

namespace kinsort {
namespace {

using ::testing::UnorderedElementsAre;

TEST_P(SysContract, ANamelessFileShowsOnlyOnceItIsNamed) {
    Write(root_, "taken", "old");
    Result<FileHandle> file = sys().CreateNameless(root_, 0666);
    ASSERT_TRUE(file.ok());
    const std::string text = "content";
    ASSERT_TRUE(sys().Write(*file, 0, std::as_bytes(std::span(text))).ok());
    EXPECT_EQ(sys().Stat(*file)->links, 0u);
    EXPECT_EQ(sys().Stat(*file)->mode, 0666u) << "the mask does not count";
    EXPECT_THAT(Names(root_), UnorderedElementsAre("taken"));

    EXPECT_EQ(sys().NameFile(*file, root_, "taken").code(), StatusCode::kExists);
    EXPECT_EQ(Read(root_, "taken"), "old");
    ASSERT_TRUE(sys().NameFile(*file, root_, "named").ok());
    EXPECT_TRUE(sys().Stat(*file)->SameFile(*sys().StatAt(root_, "named")));
    EXPECT_EQ(sys().Stat(*file)->links, 1u);
    ASSERT_TRUE(file->Close().ok());
    EXPECT_EQ(Read(root_, "named"), text);

    ASSERT_TRUE(sys().CreateNameless(root_, 0600)->Close().ok());
    EXPECT_THAT(Names(root_), UnorderedElementsAre("taken", "named"));
}

TEST_P(SysContract, ContentIsReadAndWrittenAtOffsets) {
    FileHandle file = std::move(*sys().CreateFileAt(root_, "f", 0644));
    const std::string text = "0123456789";
    EXPECT_EQ(*sys().Write(file, 5, std::as_bytes(std::span(text))), 10u);
    EXPECT_EQ(ReadOpen(file), std::string(5, '\0') + text);
    std::string buffer(4, 'x');
    EXPECT_EQ(*sys().Read(file, 13, std::as_writable_bytes(std::span(buffer))), 2u);
    EXPECT_EQ(buffer, "89xx");
    EXPECT_EQ(*sys().Read(file, 15, std::as_writable_bytes(std::span(buffer))), 0u);
    EXPECT_EQ(*sys().Read(file, 1000, std::as_writable_bytes(std::span(buffer))), 0u);

    ASSERT_TRUE(sys().SetSize(file, 7).ok());
    ASSERT_TRUE(sys().SetSize(file, 9).ok());
    EXPECT_EQ(ReadOpen(file), std::string(5, '\0') + "01" + std::string(2, '\0'));
    ASSERT_TRUE(sys().Reserve(file, 100'000).ok());
    EXPECT_TRUE(sys().Reserve(file, 0).ok());
    EXPECT_EQ(sys().Stat(file)->size, 9u) << "reserving does not change the size";
    EXPECT_GE(sys().Stat(file)->allocated, 100'000u);

    FileHandle reader = std::move(*sys().OpenForRead(root_, "f"));
    EXPECT_EQ(sys().Write(reader, 0, std::as_bytes(std::span(text))).code(), StatusCode::kInvalid);
    FileHandle writer = std::move(*sys().OpenForWrite(root_, "f"));
    EXPECT_EQ(*sys().Write(writer, 0, std::as_bytes(std::span(text))), 10u);
    EXPECT_EQ(ReadOpen(reader), text) << "all handles see one content";
    ASSERT_TRUE(sys().RemoveFileAt(root_, "f").ok());
    EXPECT_EQ(ReadOpen(reader), text) << "an open file outlives its name";
    for (Status status : {sys().Sync(file), sys().Sync(root_), sys().SyncVolume(root_)})
        EXPECT_TRUE(status.ok());
    sys().StartWriteback(file, 0, 10);
}

TEST_P(SysContract, HolesAreFoundAndKept) {
    constexpr uint64_t kMiB = 1 << 20;
    FileHandle file = std::move(*sys().CreateFileAt(root_, "sparse", 0644));
    const std::string block(65536, 'x');
    ASSERT_TRUE(sys().Write(file, kMiB, std::as_bytes(std::span(block))).ok());
    ASSERT_TRUE(sys().Write(file, 3 * kMiB, std::as_bytes(std::span(block))).ok());
    ASSERT_TRUE(sys().SetSize(file, 1024 * kMiB).ok());
    EXPECT_LT(sys().Stat(file)->allocated, kMiB);

    EXPECT_EQ(*sys().NextData(file, 0), kMiB);
    EXPECT_EQ(*sys().NextData(file, kMiB + 5), kMiB + 5);
    EXPECT_EQ(*sys().NextHole(file, kMiB), kMiB + block.size());
    EXPECT_EQ(*sys().NextData(file, kMiB + block.size()), 3 * kMiB);
    EXPECT_EQ(*sys().NextData(file, 4 * kMiB), 1024 * kMiB) << "only a hole follows";
    EXPECT_EQ(*sys().NextHole(file, 5 * kMiB), 5 * kMiB);
    EXPECT_EQ(*sys().NextData(file, 2000 * kMiB), 1024 * kMiB) << "beyond the end";
    EXPECT_EQ(*sys().NextHole(file, 2000 * kMiB), 1024 * kMiB);

    FileHandle empty = std::move(*sys().CreateFileAt(root_, "empty", 0644));
    EXPECT_EQ(*sys().NextData(empty, 0), 0u);
    EXPECT_EQ(*sys().NextHole(empty, 0), 0u);
}

TEST_P(SysContract, CopiesInsideTheKernel) {
    std::string text(300'000, '\0');
    for (size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(i * 31 >> 3);
    FileHandle from = std::move(*sys().CreateFileAt(root_, "from", 0644));
    ASSERT_EQ(*sys().Write(from, 0, std::as_bytes(std::span(text))), text.size());
    FileHandle to = std::move(*sys().CreateFileAt(root_, "to", 0644));
    uint64_t done = 0;
    while (true) {
        Result<size_t> count = sys().CopyRange(from, to, done, 1 << 20);
        ASSERT_TRUE(count.ok());
        if (*count == 0) break;
        done += *count;
    }
    EXPECT_EQ(done, text.size());
    std::string copied(text.size(), '\0');
    ASSERT_EQ(*sys().Read(to, 0, std::as_writable_bytes(std::span(copied))), text.size());
    EXPECT_EQ(copied, text);

    FileHandle clone = std::move(*sys().CreateFileAt(root_, "clone", 0644));
    const Status status = sys().Clone(from, clone);
    if (status.ok()) {
        ASSERT_EQ(*sys().Read(clone, 0, std::as_writable_bytes(std::span(copied))), text.size());
        EXPECT_EQ(copied, text);
        const std::string other = "other";
        ASSERT_TRUE(sys().Write(from, 0, std::as_bytes(std::span(other))).ok());
        EXPECT_EQ(ReadOpen(clone).substr(0, 5), text.substr(0, 5)) << "a clone does not follow its original";
    } else {
        EXPECT_EQ(status.code(), StatusCode::kUnsupported);
        EXPECT_EQ(sys().Stat(clone)->size, 0u);
    }
    EXPECT_TRUE(sys().CopyUserAttributes(from, to).ok()) << "none is no failure";
}

TEST_P(SysContract, AttributesAndIdentity) {
    FileHandle file = std::move(*sys().CreateFileAt(root_, "f", 0666));
    FileInfo info = *sys().Stat(file);
    EXPECT_EQ(info.mode, 0666u) << "the mask does not count";
    EXPECT_EQ(info.owner, sys().UserNumber());
    EXPECT_EQ(info.links, 1u);
    ASSERT_TRUE(sys().SetMode(file, 0440).ok());
    for (const int64_t ns : {int64_t{1'234'567'890'123'456'789}, int64_t{0}, int64_t{-1}, int64_t{-1'500'000'000}}) {
        ASSERT_TRUE(sys().SetTimes(file, ns + 5, ns).ok());
        info = *sys().StatAt(root_, "f");
        EXPECT_EQ(info.modifiedNs, ns);
        EXPECT_EQ(info.accessedNs, ns + 5);
    }
    EXPECT_EQ(info.mode, 0440u);
    ASSERT_TRUE(sys().LinkAt(root_, "f", root_, "g").ok());
    EXPECT_EQ(sys().Stat(file)->links, 2u);
    EXPECT_TRUE(sys().StatAt(root_, "g")->SameFile(*sys().StatAt(root_, "f")));

    Write(root_, "other", "");
    EXPECT_FALSE(sys().StatAt(root_, "other")->SameFile(info));
    EXPECT_EQ(sys().StatAt(root_, "other")->device, info.device);
    Result<VolumeInfo> volume = sys().DescribeVolume(root_);
    ASSERT_TRUE(volume.ok());
    EXPECT_EQ(sys().DescribeVolume(file)->volumeId, volume->volumeId);
    EXPECT_GT(volume->freeBytes, 0u);
    EXPECT_FALSE(sys().BootId().empty());
    EXPECT_EQ(sys().BootId(), sys().BootId());
}

TEST_P(SysContract, ALockHasOneHolderAndEndsWithItsHandle) {
    Write(root_, "lock", "");
    FileHandle first = std::move(*sys().OpenForWrite(root_, "lock"));
    FileHandle second = std::move(*sys().OpenForWrite(root_, "lock"));
    ASSERT_TRUE(sys().TryLock(first).ok());
    EXPECT_TRUE(sys().TryLock(first).ok()) << "its own again";
    EXPECT_EQ(sys().TryLock(second).code(), StatusCode::kLocked);
    // Other handles of the file come and go without taking the lock along.
    ASSERT_TRUE(sys().OpenForRead(root_, "lock")->Close().ok());
    EXPECT_EQ(sys().TryLock(second).code(), StatusCode::kLocked);
    first.Reset();
    EXPECT_TRUE(sys().TryLock(second).ok());
}

TEST_P(SysContract, HandlesMoveAndCloseOnce) {
    Write(root_, "f", "text");
    FileHandle a = std::move(*sys().OpenForRead(root_, "f"));
    const int number = a.number();
    FileHandle b = std::move(a);
    EXPECT_FALSE(a.isOpen());  // NOLINT(bugprone-use-after-move): that is the question
    EXPECT_EQ(b.number(), number);
    b = std::move(*sys().OpenForRead(root_, "f"));
    EXPECT_NE(b.number(), -1);
    EXPECT_EQ(ReadOpen(b), "text");
    EXPECT_TRUE(b.Close().ok());
    EXPECT_FALSE(b.isOpen());
    EXPECT_TRUE(b.Close().ok()) << "nothing left to close";
    EXPECT_EQ(sys().Stat(b).code(), StatusCode::kInvalid);
}

}  // namespace
}  // namespace kinsort
