#include "platform/fake/FaultSys.h"

#include <atomic>
#include <csignal>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/fake/MemorySys.h"

namespace kinsort {
namespace {

std::span<const std::byte> Bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

class FaultSysTest : public ::testing::Test {
  protected:
    FaultSysTest() : faults_(disk_) { disk_.WriteFile("/home/f", "content"); }

    MemorySys disk_;
    FaultSys faults_;
};

// Five calls: open, create, write, sync, close of the file; then the folder's close.
StatusCode WriteNew(Sys& sys, std::string_view name) {
    Result<FileHandle> folder = sys.OpenFolder("/home");
    if (!folder.ok()) return folder.code();
    Result<FileHandle> file = sys.CreateFileAt(*folder, name, 0644);
    if (!file.ok()) return file.code();
    if (Result<size_t> written = sys.Write(*file, 0, Bytes("new")); !written.ok()) return written.code();
    if (Status status = sys.Sync(*file); !status.ok()) return status.code();
    return file->Close().code();
}

TEST_F(FaultSysTest, CallsAreNumberedFromOneWithTheirNames) {
    ASSERT_EQ(WriteNew(faults_, "g"), StatusCode::kOk);
    const std::vector<std::string> expected = {"call 1, OpenFolder", "call 2, CreateFileAt", "call 3, Write",
                                               "call 4, Sync",       "call 5, Close",        "call 6, Close"};
    ASSERT_EQ(faults_.calls(), expected.size());
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(faults_.Describe(i + 1), expected[i]);
    EXPECT_EQ(faults_.CountOf(SysCall::kClose), 2u);
    EXPECT_EQ(faults_.CallAt(4), SysCall::kSync);
    EXPECT_EQ(faults_.Describe(99), "call 99");
    EXPECT_EQ(faults_.strikes(), 0u);
    EXPECT_EQ(faults_.openHandles() + disk_.openHandles(), 0u);
}

TEST_F(FaultSysTest, EachCallCanFailAndTheOthersGoThrough) {
    for (uint64_t number = 1; number <= 5; ++number) {
        MemorySys disk;
        disk.MakeFolders("/home");
        FaultSys faults(disk);
        faults.At(number, Fault::Fail(StatusCode::kIo));
        EXPECT_EQ(WriteNew(faults, "g"), StatusCode::kIo) << faults.Describe(number);
        EXPECT_EQ(faults.strikes(), 1u);
        EXPECT_EQ(disk.Has("/home/g"), number > 2) << "a call that fails here does nothing";
        EXPECT_EQ(disk.openHandles(), 0u) << "even a failed close lets go";
        EXPECT_EQ(WriteNew(faults, "h"), StatusCode::kOk) << "once";
    }
}

TEST_F(FaultSysTest, FaultsByKindOnceOrFromThenOn) {
    faults_.AtKind(SysCall::kSync, 2, Fault::Interrupt());
    faults_.FromKind(SysCall::kCreateFileAt, 4, Fault::Fail(StatusCode::kNoSpace));
    EXPECT_EQ(WriteNew(faults_, "1"), StatusCode::kOk);
    EXPECT_EQ(WriteNew(faults_, "2"), StatusCode::kInterrupted);
    EXPECT_EQ(WriteNew(faults_, "3"), StatusCode::kOk);
    EXPECT_EQ(WriteNew(faults_, "4"), StatusCode::kNoSpace);
    EXPECT_EQ(WriteNew(faults_, "5"), StatusCode::kNoSpace);
    EXPECT_EQ(faults_.strikes(), 3u);
    faults_.Forget();
    EXPECT_EQ(WriteNew(faults_, "6"), StatusCode::kOk);
}

TEST_F(FaultSysTest, TransfersComeUpShort) {
    FileHandle folder = std::move(*faults_.OpenFolder("/home"));
    FileHandle from = std::move(*faults_.OpenForRead(folder, "f"));
    FileHandle to = std::move(*faults_.CreateFileAt(folder, "g", 0644));
    faults_.From(1, Fault::Shorten(3));
    std::string buffer(10, '-');
    EXPECT_EQ(*faults_.Read(from, 0, std::as_writable_bytes(std::span(buffer))), 3u);
    EXPECT_EQ(buffer, "con-------");
    EXPECT_EQ(*faults_.Write(to, 0, Bytes("12345")), 3u);
    EXPECT_EQ(*faults_.CopyRange(from, to, 3, 100), 3u);
    EXPECT_EQ(disk_.ReadFile("/home/g"), "123ten");
    EXPECT_TRUE(faults_.Sync(to).ok()) << "a call that moves nothing is left alone";
}

TEST_F(FaultSysTest, AHookRunsBeforeTheCallAndMayUseTheDisk) {
    faults_.AtKind(SysCall::kOpenForRead, 1, Fault::Hook([&] {
                       disk_.Remove("/home/f");
                       faults_.AtKind(SysCall::kStatAt, 1, Fault::Fail(StatusCode::kBusy));
                   }));
    FileHandle folder = std::move(*faults_.OpenFolder("/home"));
    EXPECT_EQ(faults_.OpenForRead(folder, "f").code(), StatusCode::kNotFound);
    EXPECT_EQ(faults_.StatAt(folder, "f").code(), StatusCode::kBusy);
}

TEST_F(FaultSysTest, ADroppedSyncSaysItWasDone) {
    // Only with its sync is the folder's new name safe in every cut.
    for (const bool drop : {false, true}) {
        MemorySys disk;
        disk.MakeFolders("/home");
        FaultSys faults(disk);
        if (drop) faults.AtKind(SysCall::kSync, 1, Fault::Pretend());
        FileHandle folder = std::move(*faults.OpenFolder("/home"));
        ASSERT_TRUE(faults.MakeFolderAt(folder, "new", 0755).ok());
        ASSERT_TRUE(faults.Sync(folder).ok());
        size_t lost = 0;
        for (uint64_t seed = 0; seed < 50; ++seed)
            lost += !disk.AfterPowerCut(seed)->Has("/home/new");
        EXPECT_EQ(lost > 0, drop);
    }
    faults_.At(1, Fault::Pretend());
    EXPECT_EQ(faults_.OpenFolder("/home").code(), StatusCode::kInvalid) << "there is no handle to pretend with";
}

TEST_F(FaultSysTest, AKilledEngineDoesNothingMoreAndHoldsNothing) {
    FileHandle folder = std::move(*faults_.OpenFolder("/home"));
    FileHandle file = std::move(*faults_.OpenForWrite(folder, "f"));
    ASSERT_TRUE(faults_.TryLock(file).ok());
    FileHandle nameless = std::move(*faults_.CreateNameless(folder, 0600));
    faults_.AtKind(SysCall::kWrite, 2, Fault::Kill());
    ASSERT_TRUE(faults_.Write(file, 0, Bytes("C")).ok());

    for (int i = 0; i < 2; ++i) {
        const Result<size_t> dead = faults_.Write(file, 0, Bytes("lost"));
        EXPECT_EQ(dead.code(), StatusCode::kOther);
        EXPECT_EQ(dead.status().systemCode(), kKilledSystemCode);
    }
    EXPECT_EQ(faults_.NameFile(nameless, folder, "named").systemCode(), kKilledSystemCode);
    EXPECT_EQ(faults_.OpenFolder("/home").status().systemCode(), kKilledSystemCode);
    EXPECT_EQ(faults_.BootId(), "");
    EXPECT_TRUE(faults_.killed());
    EXPECT_EQ(disk_.openHandles(), 0u);
    EXPECT_EQ(disk_.ReadFile("/home/f"), "Content");
    EXPECT_EQ(disk_.ListTree("/home").size(), 1u);

    // The next engine, on the same disk, gets the lock.
    FaultSys next(disk_);
    FileHandle again = std::move(*next.OpenForWrite(*next.OpenFolder("/home"), "f"));
    EXPECT_TRUE(next.TryLock(again).ok());
}

TEST_F(FaultSysTest, ASignalReallyEndsTheProcess) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            faults_.At(2, Fault::Signal());
            (void)WriteNew(faults_, "g");
        },
        ::testing::KilledBySignal(SIGKILL), "");
}

TEST_F(FaultSysTest, ThreadsShareOneCount) {
    constexpr uint64_t kRounds = 200;
    faults_.FromKind(SysCall::kSync, kRounds, Fault::Kill());
    std::atomic<uint64_t> written = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (uint64_t i = 0; i < kRounds; ++i)
                written += WriteNew(faults_, std::to_string(t) + "-" + std::to_string(i)) == StatusCode::kOk;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(faults_.killed());
    EXPECT_LE(written, kRounds - 1);
    EXPECT_GT(written, 0u);
    EXPECT_EQ(disk_.openHandles(), 0u);
    uint64_t total = 0;
    for (size_t call = 0; call < kSysCallCount; ++call)
        total += faults_.CountOf(static_cast<SysCall>(call));
    EXPECT_EQ(total, faults_.calls());
}

}  // namespace
}  // namespace kinsort
