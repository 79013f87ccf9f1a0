#include "hostlink/HandOffWriter.h"

#include <cstring>
#include <filesystem>

#include <gtest/gtest.h>

#include "hostlink/LaunchDescriptor.h"
#include "platform/fake/FakeEnvironment.h"
#include "platform/fake/FakeSharedMemory.h"
#include "platform/linux/LinuxSharedMemory.h"
#include "platform/linux/TemporaryFolder_test.h"
#include "text/Numbers.h"

namespace kinsort {
namespace {

HostHandOff ReadBack(SharedMemory& memory, const std::u16string& descriptor) {
    FakeEnvironment environment;
    environment.variables[std::u16string(kLaunchDescriptorVariable)] = descriptor;
    HostHandOff handOff;
    ReadHostHandOff(
        environment, memory, [](const std::u16string&) { ADD_FAILURE() << "nothing to show"; }, handOff);
    return handOff;
}

TEST(WriteHandOff, TheReaderGetsWhatWasWritten) {
    const HostHandOff rows[] = {
        {.SharedHandOff = 1},
        {.ShowMode = 3,
         .ReturnFocus = 1,
         .SharedHandOff = 1,
         .CurrentDir = u"Z:\\home\\me",
         .Option = u"/c: free text, with \" and |",
         .SelectedItems = {u"Z:\\home\\me\\a.txt", u"Z:\\ｶﾞ\xDC80\xF05C", u""},
         .OtherTabFolders = {u"Z:\\", u"\\\\server\\share"}},
        {.ShowMode = -7, .SharedHandOff = 1, .OtherTabFolders = {u"C:\\"}},
        {.SharedHandOff = 1, .SelectedItems = {std::u16string(3'000'000, u'长')}},
    };
    FakeSharedMemory memory;
    for (const HostHandOff& handOff : rows) {
        {
            Result<WrittenHandOff> written = WriteHandOff(memory, handOff);
            ASSERT_TRUE(written.ok());
            EXPECT_EQ(ReadBack(memory, written->descriptor), handOff);
        }
        EXPECT_TRUE(memory.blocks.empty());
    }
}

TEST(WriteHandOff, FormsTheDescriptorAndTheBlockExactly) {
    FakeSharedMemory memory;
    const HostHandOff handOff = {
        .ShowMode = 2, .CurrentDir = u"C:\\", .SelectedItems = {u"a"}, .OtherTabFolders = {u"b"}};
    const Result<WrittenHandOff> written = WriteHandOff(memory, handOff);
    const Result<WrittenHandOff> another = WriteHandOff(memory, handOff);
    ASSERT_TRUE(written.ok() && another.ok());
    EXPECT_EQ(written->descriptor, u"2:0:4120:0:28::::Share:");
    EXPECT_EQ(another->descriptor, u"2:0:4120:1:28::::Share:");
    const std::vector<std::byte>& bytes = memory.blocks.at(u"ShareMem_4120_0")->bytes;
    std::u16string text(bytes.size() / 2, u'\0');
    std::memcpy(text.data(), bytes.data(), bytes.size());
    EXPECT_EQ(text, std::u16string(u"1\t1\tC:\\\t\ta\tb\t\0", 14));
    EXPECT_EQ(memory.journal, (std::vector<std::string>{"lock", "write", "unlock", "lock", "write", "unlock"}));
}

TEST(WriteHandOff, RefusesWhatTheFormatCannotHoldAndLeavesNothing) {
    const std::u16string bad[] = {u"C:\\a\tb", std::u16string(u"C:\\a\0b", 6), u"\t"};
    FakeSharedMemory memory;
    for (const std::u16string& text : bad) {
        const HostHandOff rows[] = {
            {.CurrentDir = text},
            {.Option = text},
            {.SelectedItems = {u"good", text, u"good"}},
            {.SelectedItems = {u"good"}, .OtherTabFolders = {text}},
        };
        for (const HostHandOff& handOff : rows) {
            const Result<WrittenHandOff> written = WriteHandOff(memory, handOff);
            ASSERT_FALSE(written.ok());
            EXPECT_EQ(written.code(), StatusCode::kInvalid);
            EXPECT_EQ(written.status().path(), text);
        }
    }
    const HostHandOff fine = {.SelectedItems = {u"a"}};
    memory.capacity = 10;
    EXPECT_EQ(WriteHandOff(memory, fine).code(), StatusCode::kNoSpace);
    memory.lockFailure = Status::Failure(StatusCode::kUnsupported, 37, u"No locks available");
    EXPECT_EQ(WriteHandOff(memory, fine).code(), StatusCode::kUnsupported);
    EXPECT_TRUE(memory.blocks.empty());
}

// The whole road over the real thing, as large as a selection gets.
TEST(WriteHandOff, HandsOverAMillionItemsThroughFiles) {
    const TemporaryFolder temporary;
    const std::string folder = temporary.path() + "/vel";
    LinuxSharedMemory memory(folder);
    HostHandOff handOff = {.SharedHandOff = 1, .CurrentDir = u"Z:\\photos"};
    for (int i = 0; i < 1'000'000; ++i)
        handOff.SelectedItems.push_back(u"Z:\\photos\\" + FormatInteger(i) + u".jpg");
    {
        const Result<WrittenHandOff> written = WriteHandOff(memory, handOff);
        ASSERT_TRUE(written.ok());
        EXPECT_TRUE(ReadBack(memory, written->descriptor) == handOff);
        // A second reader finds the text tokenised: it ends after the first field.
        EXPECT_TRUE(ReadBack(memory, written->descriptor).SelectedItems.empty());
    }
    EXPECT_TRUE(std::filesystem::is_empty(folder));
}

}  // namespace
}  // namespace kinsort
