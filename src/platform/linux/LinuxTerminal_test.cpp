#include "platform/linux/LinuxTerminal.h"

#include <atomic>
#include <cstdio>
#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kinsort {
namespace {

TEST(LinuxTerminal, ColumnsOfCharacters) {
    const auto terminal = MakeLinuxTerminal();
    const std::pair<char32_t, int> cases[] = {
        {U'a', 1},    {U'あ', 2},  {U'漢', 2},  {U'Ａ', 2},  {U'ｱ', 1},  // half width
        {0xFF9E, 1},                                                     // half-width voiced mark: a cell of its own
        {0x3099, 0},                                                     // combining voiced mark
        {0x301, 0},   {0x20DD, 0}, {0x200B, 0}, {0x200D, 0}, {0xAD, 1},  // a soft hyphen is drawn
        {0x1F600, 2}, {0x1100, 2}, {0x1161, 0}, {0x11A8, 0}, {U'한', 2},
        {U'é', 1},    {U'α', 1},   {0x2026, 1}, {0x3000, 2}, {0x10FFFF, 1},
    };
    for (const auto& [character, columns] : cases) {
        EXPECT_EQ(terminal->CharacterColumns(character), columns) << std::hex << static_cast<unsigned>(character);
    }
}

TEST(LinuxTerminal, ReadsFilesWholeAndSaysWhyNot) {
    const auto terminal = MakeLinuxTerminal();
    const std::string path = testing::TempDir() + "kinsort_terminal_test";
    const std::string content(200000, 'x');
    std::ofstream(path, std::ios::binary) << content << '\0' << "end";
    const Result<std::string> read = terminal->ReadAll(path);
    ASSERT_TRUE(read.ok());
    EXPECT_EQ(*read, content + std::string("\0end", 4));
    std::remove(path.c_str());
    EXPECT_EQ(terminal->ReadAll(path).code(), StatusCode::kNotFound);
    EXPECT_EQ(terminal->ReadAll("/").code(), StatusCode::kIsFolder);
    EXPECT_EQ(terminal->ReadAll("").code(), StatusCode::kNotFound);
}

TEST(LinuxTerminal, AClosedStreamGivesItsNumberToNoFile) {
    const int kept = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    const auto terminal = MakeLinuxTerminal();
    EXPECT_GT(open("/dev/zero", O_RDONLY), STDERR_FILENO);
    EXPECT_EQ(terminal->ReadLine().code(), StatusCode::kNotFound) << "nothing to read there";
    dup2(kept, STDIN_FILENO);
    close(kept);
}

TEST(LinuxTerminal, AnInterruptCallsTheActionEveryTimeAndEndsReading) {
    const auto terminal = MakeLinuxTerminal();
    std::atomic<int> count{0};
    terminal->CallOnInterrupt([](void* counter) { ++*static_cast<std::atomic<int>*>(counter); }, &count);
    raise(SIGINT);
    raise(SIGTERM);
    raise(SIGHUP);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(terminal->ReadLine().code(), StatusCode::kInterrupted);
    EXPECT_EQ(terminal->ReadAll("-").code(), StatusCode::kInterrupted);
    const std::string pipe = testing::TempDir() + "kinsort_terminal_pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(terminal->ReadAll(pipe).code(), StatusCode::kInterrupted) << "nobody writes to it";
    std::remove(pipe.c_str());
}

}  // namespace
}  // namespace kinsort
