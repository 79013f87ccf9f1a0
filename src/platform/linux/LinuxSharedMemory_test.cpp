#include "platform/linux/LinuxSharedMemory.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <numeric>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/LinuxEnvironment.h"
#include "platform/linux/RuntimeFolder.h"
#include "platform/linux/TemporaryFolder_test.h"

namespace kinsort {
namespace {

class LinuxSharedMemoryTest : public testing::Test {
  protected:
    std::string Path(const std::string& name) const { return folder_ + "/" + name; }
    void MakeFile(const std::string& name, mode_t mode) {
        const Descriptor file(open(Path(name).c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600));
        ASSERT_EQ(fchmod(file.get(), mode), 0);
        ASSERT_EQ(ftruncate(file.get(), 64), 0);
    }

    const TemporaryFolder temporary_;
    const std::string folder_ = temporary_.path() + "/vel";
    LinuxSharedMemory memory_{folder_};
};

TEST_F(LinuxSharedMemoryTest, TwoSidesSeeOneBlockUntilItsMakerGoes) {
    auto host = memory_.OpenSharedBlock(u"Block_1", 100, SharedOpening::kCreateNew);
    auto command = memory_.OpenSharedBlock(u"Block_1", 5, SharedOpening::kOpenOrCreate);
    ASSERT_TRUE(host.ok() && command.ok());
    EXPECT_EQ(memory_.OpenSharedBlock(u"Block_1", 100, SharedOpening::kCreateNew).code(), StatusCode::kExists);

    struct stat info;
    ASSERT_EQ(stat(Path("Block_1").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777u, 0600u);
    ASSERT_EQ(stat(folder_.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777u, 0700u);

    std::array<std::byte, 10> sent, got{};
    sent.fill(std::byte{'x'});
    ASSERT_TRUE((*host)->Write(85, sent).ok());
    EXPECT_EQ(*(*command)->Read(80, got), 10u);
    EXPECT_EQ(got[4], std::byte{0});
    EXPECT_EQ(got[5], std::byte{'x'});
    EXPECT_EQ(*(*command)->Read(94, got), 6u);
    EXPECT_EQ(*(*command)->Read(1000, got), 0u);

    command->reset();
    EXPECT_TRUE(std::filesystem::exists(Path("Block_1")));
    host->reset();
    EXPECT_FALSE(std::filesystem::exists(Path("Block_1")));
}

TEST_F(LinuxSharedMemoryTest, TheMakerDoesNotTakeAnothersNameAway) {
    auto first = memory_.OpenSharedBlock(u"Block_1", 100, SharedOpening::kCreateNew);
    std::filesystem::remove(Path("Block_1"));
    auto second = memory_.OpenSharedBlock(u"Block_1", 100, SharedOpening::kCreateNew);
    ASSERT_TRUE(first.ok() && second.ok());
    first->reset();
    EXPECT_TRUE(std::filesystem::exists(Path("Block_1")));
}

TEST_F(LinuxSharedMemoryTest, ABlockThatShrinksIsReadAsWhatIsLeft) {
    auto block = memory_.OpenSharedBlock(u"Block_1", 1 << 20, SharedOpening::kOpenOrCreate);
    ASSERT_TRUE(block.ok());
    std::vector<std::byte> bytes(1 << 19);
    EXPECT_EQ(*(*block)->Read(0, bytes), bytes.size());
    ASSERT_EQ(truncate(Path("Block_1").c_str(), (1 << 19) + 7), 0);
    EXPECT_EQ(*(*block)->Read(1 << 19, bytes), 7u);
    ASSERT_EQ(truncate(Path("Block_1").c_str(), 0), 0);
    EXPECT_EQ(*(*block)->Read(0, bytes), 0u);
}

TEST_F(LinuxSharedMemoryTest, RefusesWhatOthersCouldHaveMade) {
    ASSERT_TRUE(memory_.OpenSharedMutex(u"Warm_up").ok());
    const struct {
        const char* what;
        std::function<void()> plant;
        StatusCode expected;
    } rows[] = {
        {"pipe", [&] { ASSERT_EQ(mkfifo(Path("Name").c_str(), 0600), 0); }, StatusCode::kAccessDenied},
        {"folder", [&] { ASSERT_EQ(mkdir(Path("Name").c_str(), 0700), 0); }, StatusCode::kIsFolder},
        {"link", [&] { MakeFile("Aim", 0600), std::filesystem::create_symlink("Aim", Path("Name")); },
         StatusCode::kIsLink},
        {"link to nothing", [&] { std::filesystem::create_symlink("Gone", Path("Name")); }, StatusCode::kIsLink},
        {"second name", [&] { MakeFile("Aim", 0600), std::filesystem::create_hard_link(Path("Aim"), Path("Name")); },
         StatusCode::kAccessDenied},
        {"group may write", [&] { MakeFile("Name", 0620); }, StatusCode::kAccessDenied},
        {"all may write", [&] { MakeFile("Name", 0602); }, StatusCode::kAccessDenied},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        row.plant();
        const auto before = std::filesystem::symlink_status(Path("Name"));
        EXPECT_EQ(memory_.OpenSharedBlock(u"Name", 64, SharedOpening::kOpenOrCreate).code(), row.expected);
        EXPECT_EQ(memory_.OpenSharedMutex(u"Name").code(), row.expected);
        EXPECT_EQ(memory_.OpenSharedBlock(u"Name", 64, SharedOpening::kCreateNew).code(), StatusCode::kExists);
        EXPECT_EQ(std::filesystem::symlink_status(Path("Name")), before);
        std::filesystem::remove(Path("Name"));
        std::filesystem::remove(Path("Aim"));
    }
    if (geteuid() == 0) {  // nobody else can give a file away
        MakeFile("Name", 0600);
        ASSERT_EQ(chown(Path("Name").c_str(), 1, 1), 0);
        EXPECT_EQ(memory_.OpenSharedMutex(u"Name").code(), StatusCode::kAccessDenied);
    }
    // The folder seen by a user whom it does not belong to.
    LinuxSharedMemory stranger(folder_, geteuid() + 1);
    EXPECT_EQ(stranger.OpenSharedMutex(u"Mine").code(), StatusCode::kAccessDenied);
}

TEST_F(LinuxSharedMemoryTest, RefusesAFolderThatIsNotItsOwn) {
    const auto refuses = [&] { return memory_.OpenSharedBlock(u"Name", 64, SharedOpening::kOpenOrCreate).code(); };
    std::filesystem::create_directory(temporary_.path() + "/real");
    std::filesystem::create_directory_symlink("real", folder_);
    EXPECT_EQ(refuses(), StatusCode::kIsLink);
    std::filesystem::remove(folder_);
    ASSERT_EQ(mkfifo(folder_.c_str(), 0600), 0);
    EXPECT_EQ(refuses(), StatusCode::kNotFolder);
    std::filesystem::remove(folder_);
    std::filesystem::create_directory(folder_);
    ASSERT_EQ(chmod(folder_.c_str(), 0770), 0);
    EXPECT_EQ(refuses(), StatusCode::kAccessDenied);
    LinuxSharedMemory nowhere(temporary_.path() + "/missing/vel");
    EXPECT_EQ(nowhere.OpenSharedMutex(u"Name").code(), StatusCode::kNotFound);
    EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

TEST_F(LinuxSharedMemoryTest, RefusesNamesAndSizesThatMakeNoSense) {
    const std::u16string names[] = {u"",    u".",
                                    u"..",  u"a/b",
                                    u"/a",  u".hidden",
                                    u"a b", std::u16string(u"a\0b", 3),
                                    u"é",   std::u16string(201, u'a')};
    for (const std::u16string& name : names) {
        EXPECT_EQ(memory_.OpenSharedBlock(name, 64, SharedOpening::kOpenOrCreate).code(), StatusCode::kInvalid);
        EXPECT_EQ(memory_.OpenSharedMutex(name).code(), StatusCode::kInvalid);
    }
    for (const uint32_t size : {0u, SharedMemory::kMaxBlockBytes + 1, 0xFFFFFFFFu})
        EXPECT_EQ(memory_.OpenSharedBlock(u"Name", size, SharedOpening::kOpenOrCreate).code(), StatusCode::kInvalid);
    EXPECT_FALSE(std::filesystem::exists(folder_));
}

TEST_F(LinuxSharedMemoryTest, AHolderThatDiesFreesTheMutex) {
    auto mutex = memory_.OpenSharedMutex(u"Name_Mutex");
    ASSERT_TRUE(mutex.ok());
    int report[2];
    ASSERT_EQ(pipe(report), 0);
    const pid_t holder = fork();
    if (holder == 0) {
        auto held = memory_.OpenSharedMutex(u"Name_Mutex");
        const bool locked = held.ok() && (*held)->Lock().ok();
        if (write(report[1], locked ? "1" : "0", 1) == 1) pause();
        _exit(1);
    }
    char locked = 0;
    ASSERT_EQ(read(report[0], &locked, 1), 1);
    EXPECT_EQ(locked, '1');
    const Descriptor probe(open(Path("Name_Mutex").c_str(), O_RDWR));
    EXPECT_EQ(flock(probe.get(), LOCK_EX | LOCK_NB), -1);  // it is really held

    kill(holder, SIGKILL);
    EXPECT_TRUE((*mutex)->Lock().ok());
    EXPECT_EQ(flock(probe.get(), LOCK_EX | LOCK_NB), -1);
    (*mutex)->Unlock();
    EXPECT_EQ(flock(probe.get(), LOCK_EX | LOCK_NB), 0);
    waitpid(holder, nullptr, 0);
    close(report[0]);
    close(report[1]);
}

TEST(RuntimeFolder, StandsInTheLoginsOwnFolderOrApart) {
    const TemporaryFolder temporary;
    const std::string apart = "/tmp/vel-" + std::to_string(geteuid());
    const char* const before = std::getenv("XDG_RUNTIME_DIR");
    const std::string saved = before == nullptr ? "" : before;
    const auto find = [](const std::string& login) {
        setenv("XDG_RUNTIME_DIR", login.c_str(), 1);
        return FindRuntimeFolder();
    };
    EXPECT_EQ(find(temporary.path()), temporary.path() + "/vel");
    EXPECT_EQ(find(""), apart);
    EXPECT_EQ(find("."), apart);
    EXPECT_EQ(find(temporary.path() + "/missing"), apart);
    ASSERT_EQ(chmod(temporary.path().c_str(), 0777), 0);
    EXPECT_EQ(find(temporary.path()), apart);
    unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(FindRuntimeFolder(), apart);
    if (before != nullptr) setenv("XDG_RUNTIME_DIR", saved.c_str(), 1);
}

TEST(LinuxEnvironment, TellsUnsetFromEmpty) {
    const LinuxEnvironment environment;
    setenv("KINSORT_TEST", "C:\\ｱ\xFF", 1);
    EXPECT_EQ(environment.GetVariable(u"KINSORT_TEST"), u"C:\\ｱ\uFFFD");
    setenv("KINSORT_TEST", "", 1);
    EXPECT_EQ(environment.GetVariable(u"KINSORT_TEST"), u"");
    unsetenv("KINSORT_TEST");
    EXPECT_EQ(environment.GetVariable(u"KINSORT_TEST"), std::nullopt);
}

}  // namespace
}  // namespace kinsort
