#include "fileop/FileContent.h"

#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "platform/fake/FaultSys.h"
#include "platform/fake/MemorySys.h"

namespace kinsort {
namespace {

constexpr uint64_t kMiB = uint64_t{1} << 20;

// Bytes that differ from place to place, so that an exchanged or repeated piece is noticed.
std::string Bytes(uint64_t size) {
    std::string bytes(size, '\0');
    uint32_t state = 1;
    for (char& byte : bytes)
        byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    return bytes;
}

MemoryVolumeOptions Volume(bool clone, bool copyRange, bool holes = true) {
    MemoryVolumeOptions options;
    options.clone = clone;
    options.copyRange = copyRange;
    options.holes = holes;
    return options;
}

class FileContentTest : public testing::Test {
  protected:
    FileContentTest() : faults(disk) {
        disk.MakeFolders("/d");
        disk.SetOwnerOf("/d", disk.UserNumber());
        folder = std::move(*disk.OpenFolder("/d"));
    }

    void UseVolume(const MemoryVolumeOptions& options) { disk.ChangeVolume("/", options); }

    FileHandle OpenFrom() {
        Result<FileHandle> handle = faults.OpenForRead(*faults.OpenFolder("/d"), "from");
        EXPECT_TRUE(handle.ok());
        return std::move(*handle);
    }

    // Copies /d/from to a new /d/to, counting the bytes that were told.
    Status Copy() {
        disk.Remove("/d/to");
        const FileHandle from = OpenFrom();
        Result<FileHandle> to = faults.CreateFileAt(*faults.OpenFolder("/d"), "to", 0600);
        EXPECT_TRUE(to.ok());
        told = 0;
        const auto sink = [this](uint64_t count) {
            told += count;
            if (whenTold) whenTold();
        };
        return CopyContent(faults, from, *disk.Look("/d/from"), *to, sink, cancel);
    }

    // Writes pieces into a new /d/from of `size` bytes; the rest are holes.
    void WriteSparse(uint64_t size, const std::vector<uint64_t>& pieces) {
        disk.Remove("/d/from");
        const Result<FileHandle> file = disk.CreateFileAt(folder, "from", 0600);
        ASSERT_TRUE(disk.SetSize(*file, size).ok());
        const std::string piece = Bytes(5000);
        for (const uint64_t at : pieces)
            ASSERT_TRUE(WriteAll(disk, *file, at, std::as_bytes(std::span(piece))).ok());
    }

    MemorySys disk;
    FaultSys faults;
    FileHandle folder;
    CancelToken cancel;
    uint64_t told = 0;
    std::function<void()> whenTold;
};

TEST_F(FileContentTest, EveryWayOfCopyingGivesTheSameBytes) {
    for (const auto& volume : {Volume(true, true), Volume(false, true), Volume(false, false)}) {
        UseVolume(volume);
        for (const uint64_t size : {uint64_t{0}, uint64_t{1}, kMiB - 1, kMiB, kMiB + 1, 9 * kMiB + 7}) {
            disk.WriteFile("/d/from", Bytes(size));
            ASSERT_TRUE(Copy().ok()) << size;
            EXPECT_EQ(disk.ReadFile("/d/to"), Bytes(size)) << size;
            EXPECT_EQ(told, size);
        }
    }
}

TEST_F(FileContentTest, ShortAndInterruptedTransfersAreRepeated) {
    for (const bool inKernel : {true, false}) {
        UseVolume(Volume(false, inKernel));
        for (const uint64_t size : {uint64_t{1000}, kMiB + 1}) {
            faults.Forget();
            for (const SysCall call : {SysCall::kRead, SysCall::kWrite, SysCall::kCopyRange}) {
                faults.AtKind(call, faults.CountOf(call) + 2, Fault::Interrupt());
                faults.FromKind(call, 1, Fault::Shorten(size / 7));
            }
            disk.WriteFile("/d/from", Bytes(size));
            ASSERT_TRUE(Copy().ok()) << size;
            EXPECT_EQ(disk.ReadFile("/d/to"), Bytes(size)) << size;
            EXPECT_EQ(told, size);
        }
    }
    EXPECT_GT(faults.strikes(), 40u);
    faults.Forget();
    faults.FromKind(SysCall::kWrite, 1, Fault::Shorten(0));
    disk.WriteFile("/d/from", "x");
    EXPECT_EQ(Copy().code(), StatusCode::kIo) << "a write that takes nothing must not be repeated for ever";
}

TEST_F(FileContentTest, AKernelThatRefusesMidwayIsHelpedOut) {
    disk.WriteFile("/d/from", Bytes(9 * kMiB));
    struct Case {
        SysCall call;
        StatusCode code;
        bool helps;
    };
    constexpr Case kCases[] = {
        {SysCall::kClone, StatusCode::kCrossVolume, true}, {SysCall::kClone, StatusCode::kInvalid, true},
        {SysCall::kClone, StatusCode::kNoSpace, false},    {SysCall::kCopyRange, StatusCode::kUnsupported, true},
        {SysCall::kCopyRange, StatusCode::kInvalid, true}, {SysCall::kCopyRange, StatusCode::kCrossVolume, true},
        {SysCall::kCopyRange, StatusCode::kIo, false},     {SysCall::kCopyRange, StatusCode::kQuota, false},
    };
    for (const Case& c : kCases) {
        UseVolume(Volume(c.call == SysCall::kClone, true));
        faults.Forget();
        faults.FromKind(c.call, faults.CountOf(c.call) + (c.call == SysCall::kClone ? 1 : 4), Fault::Fail(c.code));
        const uint64_t strikes = faults.strikes();
        EXPECT_EQ(Copy().code(), c.helps ? StatusCode::kOk : c.code);
        EXPECT_EQ(faults.strikes(), strikes + 1) << "a way that failed is not tried again";
        if (c.helps) {
            EXPECT_EQ(disk.ReadFile("/d/to"), Bytes(9 * kMiB));
            EXPECT_EQ(told, 9 * kMiB);
        }
    }
}

TEST_F(FileContentTest, HolesStayHoles) {
    struct Case {
        const char* what;
        uint64_t size;
        std::vector<uint64_t> pieces;
    };
    const Case cases[] = {
        {"only a hole", 10 * kMiB, {}},  {"hole in front", 10 * kMiB, {10 * kMiB - 5000}},
        {"hole behind", 10 * kMiB, {0}}, {"holes around", uint64_t{1} << 40, {kMiB, 5 * kMiB + 100}},
        {"odd size", 100'001, {8192}},
    };
    for (const bool inKernel : {true, false}) {
        UseVolume(Volume(true, inKernel));
        for (const Case& c : cases) {
            WriteSparse(c.size, c.pieces);
            ASSERT_TRUE(Copy().ok()) << c.what;
            const FileInfo from = *disk.Look("/d/from");
            const FileInfo to = *disk.Look("/d/to");
            EXPECT_EQ(to.size, c.size) << c.what;
            EXPECT_EQ(to.allocated, from.allocated) << c.what;
            EXPECT_LE(told, from.allocated) << c.what;
            const bool canCompare = c.size <= 10 * kMiB;
            EXPECT_TRUE(!canCompare || disk.ReadFile("/d/to") == disk.ReadFile("/d/from")) << c.what;
        }
    }
    UseVolume(Volume(false, true, false));  // does not tell where they are
    WriteSparse(3 * kMiB, {kMiB});
    ASSERT_TRUE(Copy().ok());
    EXPECT_EQ(disk.ReadFile("/d/to"), disk.ReadFile("/d/from"));
}

TEST_F(FileContentTest, ASourceThatChangesIsNeverTakenForCopied) {
    struct Way {
        const char* what;
        MemoryVolumeOptions volume;
        uint64_t size;
        bool sparse;
        SysCall during;
    };
    const Way ways[] = {
        {"one buffer", Volume(true, true), 1000, false, SysCall::kRead},
        {"one buffer, after reading", Volume(true, true), 1000, false, SysCall::kWrite},
        {"clone", Volume(true, true), 2 * kMiB, false, SysCall::kClone},
        {"in the kernel", Volume(false, true), 3 * kMiB, false, SysCall::kCopyRange},
        {"through a buffer", Volume(false, false), 3 * kMiB, false, SysCall::kRead},
        {"sparse, looking", Volume(false, true), 8 * kMiB, true, SysCall::kNextData},
        {"sparse, at a hole", Volume(false, true), 8 * kMiB, true, SysCall::kNextHole},
        {"sparse, copying", Volume(false, false), 8 * kMiB, true, SysCall::kRead},
    };
    struct Change {
        const char* what;
        std::function<std::string(std::string)> change;
    };
    const Change changes[] = {
        {"grows", [](std::string s) { return s + "more"; }},
        {"grows much", [](std::string s) { return s + Bytes(2 * kMiB); }},
        {"shrinks", [](std::string s) { return s.substr(0, s.size() / 3); }},
        {"vanishes", [](std::string) { return std::string(); }},
        {"is rewritten", [](std::string s) { return std::string(s.size(), '!'); }},
        {"is only touched", [](std::string s) { return s; }},
    };
    for (const Way& way : ways) {
        UseVolume(way.volume);
        for (const Change& change : changes) {
            for (const uint64_t count : {uint64_t{1}, uint64_t{2}}) {
                if (way.sparse) {
                    WriteSparse(way.size, {kMiB, 4 * kMiB, 6 * kMiB});
                } else {
                    disk.WriteFile("/d/from", Bytes(way.size));
                }
                faults.Forget();
                const auto act = [&] { disk.WriteFile("/d/from", change.change(*disk.ReadFile("/d/from"))); };
                const uint64_t strikes = faults.strikes();
                faults.AtKind(way.during, faults.CountOf(way.during) + count, Fault::Hook(act));
                const StatusCode code = Copy().code();
                ASSERT_TRUE(faults.strikes() == strikes + 1 || count == 2) << way.what;
                EXPECT_EQ(code, faults.strikes() > strikes ? StatusCode::kChanged : StatusCode::kOk)
                    << way.what << ", the source " << change.what << " at call " << count;
            }
        }
    }
}

TEST_F(FileContentTest, ACancelStopsAfterThePieceInHand) {
    for (const bool sparse : {false, true}) {
        UseVolume(Volume(false, true));
        if (sparse) {
            WriteSparse(100 * kMiB, {0, 40 * kMiB, 80 * kMiB});
        } else {
            disk.WriteFile("/d/from", Bytes(20 * kMiB));
        }
        CancelToken fresh;
        const FileHandle from = OpenFrom();
        disk.Remove("/d/to");
        const Result<FileHandle> to = faults.CreateFileAt(*faults.OpenFolder("/d"), "to", 0600);
        int pieces = 0;
        const auto sink = [&](uint64_t) {
            ++pieces;
            fresh.Cancel();
        };
        EXPECT_TRUE(CopyContent(faults, from, *disk.Look("/d/from"), *to, sink, fresh).ok());
        EXPECT_EQ(pieces, 1);
    }
}

TEST_F(FileContentTest, WholeFilesAreReadAndComparedByteByByte) {
    disk.WriteFile("/d/from", Bytes(1000));
    EXPECT_EQ(*ReadWhole(faults, OpenFrom(), 1000), Bytes(1000));
    EXPECT_EQ(ReadWhole(faults, OpenFrom(), 999).code(), StatusCode::kFileTooLarge);
    faults.AtKind(SysCall::kRead, faults.CountOf(SysCall::kRead) + 1, Fault::Fail(StatusCode::kIo));
    EXPECT_EQ(ReadWhole(faults, OpenFrom(), 1000).code(), StatusCode::kIo);

    const std::string big = Bytes(600'000);  // beyond one buffer
    std::string lastDiffers = big;
    lastDiffers.back() = static_cast<char>(~lastDiffers.back());
    struct Case {
        std::string a;
        std::string b;
        bool same;
    };
    const Case cases[] = {{"", "", true},
                          {"", "a", false},
                          {big, big, true},
                          {big, lastDiffers, false},
                          {big, big.substr(1), false},
                          {big, big + "x", false},
                          {big.substr(0, 256 << 10), big.substr(0, 512 << 10), false},
                          {big.substr(0, 256 << 10), big.substr(0, 256 << 10), true}};
    for (const Case& c : cases) {
        disk.WriteFile("/d/from", c.a);
        disk.WriteFile("/d/other", c.b);
        const FileHandle other = std::move(*disk.OpenForRead(folder, "other"));
        const FileHandle from = std::move(*disk.OpenForRead(folder, "from"));
        EXPECT_EQ(*HaveSameContent(disk, from, other, CancelToken()), c.same);
        EXPECT_EQ(*HaveSameContent(disk, other, from, CancelToken()), c.same);
    }
    // What cannot be read is not "different": the last copy would be removed for it.
    disk.WriteFile("/d/other", big);
    faults.AtKind(SysCall::kRead, faults.CountOf(SysCall::kRead) + 3, Fault::Fail(StatusCode::kIo));
    const FileHandle other = std::move(*faults.OpenForRead(*faults.OpenFolder("/d"), "other"));
    EXPECT_EQ(HaveSameContent(faults, other, other, CancelToken()).code(), StatusCode::kIo);
}

}  // namespace
}  // namespace kinsort
