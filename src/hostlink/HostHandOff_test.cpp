#include "hostlink/HostHandOff.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "hostlink/LaunchDescriptor.h"
#include "platform/fake/FakeEnvironment.h"
#include "platform/fake/FakeSharedMemory.h"
#include "text/Utf16Bytes.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using Texts = std::vector<std::u16string>;

std::vector<std::byte> Bytes(std::u16string_view text) {
    std::vector<std::byte> bytes;
    AppendUtf16Bytes(bytes, text);
    return bytes;
}

// "|" stands for a TAB and "0" inside angle brackets for a NUL, so that the rows can be read.
std::u16string Block(std::u16string text) {
    for (size_t at; (at = text.find(u"<0>")) != std::u16string::npos;)
        text.replace(at, 3, 1, u'\0');
    for (char16_t& unit : text)
        if (unit == u'|') unit = u'\t';
    return text;
}

TEST(ParseHandOffBlock, TakesTheFieldsThatAreThere) {
    struct Row {
        std::u16string block;
        std::u16string currentDir, option;
        Texts items, tabs;
    };
    const Row rows[] = {
        {u"2|1|C:\\Work||C:\\Work\\a.txt|C:\\Work\\b.txt|D:\\Other|<0>rest|",
         u"C:\\Work",
         u"",
         {u"C:\\Work\\a.txt", u"C:\\Work\\b.txt"},
         {u"D:\\Other"}},
        {u"1|1|C:\\|opt|a|D:\\Other", u"C:\\", u"opt", {u"a"}, {}},  // no TAB behind the last
        {u"5|0|C:\\||a|b|", u"C:\\", u"", {u"a", u"b"}, {}},         // fewer than announced
        {u"1|1|C:\\||a|b|c|d|", u"C:\\", u"", {u"a"}, {u"b"}},       // more than announced
        {u"0|2|C:\\||a|b|c|", u"C:\\", u"", {}, {u"a", u"b"}},
        {u"1|1|C:\\||||", u"C:\\", u"", {u""}, {u""}},  // empty paths count
        {u" 1x|+1y|C:\\||ｱ\xD83D\xDE00\xDC80|b|", u"C:\\", u"", {u"ｱ\xD83D\xDE00\xDC80"}, {u"b"}},
        {u"2147483647|2147483647|C:\\||a|", u"C:\\", u"", {u"a"}, {}},
        {u"99999999999|1|C:\\||a|", u"C:\\", u"", {u"a"}, {}},
        {u"-2147483648|1|C:\\||a|", u"C:\\", u"", {}, {}},
        {u"1|-5|C:\\||a|b|", u"C:\\", u"", {u"a"}, {}},
        {u"x|y|C:\\||a|", u"C:\\", u"", {}, {}},
        {u"1|1|C:\\", u"", u"", {}, {}},
        {u"<0>1|1|C:\\||a|", u"", u"", {}, {}},
        {u"", u"", u"", {}, {}},
        {u"||||", u"", u"", {}, {}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(ToUtf8(row.block));
        const std::u16string text = Block(row.block);
        std::vector<std::byte> bytes = Bytes(text);
        HostHandOff handOff;
        const size_t parsed = ParseHandOffBlock(bytes, handOff);
        EXPECT_EQ(handOff.CurrentDir, row.currentDir);
        EXPECT_EQ(handOff.Option, row.option);
        EXPECT_EQ(handOff.SelectedItems, row.items);
        EXPECT_EQ(handOff.OtherTabFolders, row.tabs);

        // The TABs up to the first NUL are gone, everything else is as it was.
        std::u16string tokenised = text;
        const size_t end = std::min(text.find(u'\0'), text.size());
        const size_t lastTab = std::u16string_view(text).substr(0, end).rfind(u'\t');
        EXPECT_EQ(parsed, lastTab == std::u16string::npos ? 0 : (lastTab + 1) * 2);
        for (size_t i = 0; i < end; ++i)
            if (tokenised[i] == u'\t') tokenised[i] = u'\0';
        EXPECT_EQ(bytes, Bytes(tokenised));
    }
}

TEST(ParseHandOffBlock, LeavesHalfAUnitAlone) {
    std::vector<std::byte> bytes = Bytes(u"1\t0\tC:\\\t\ta\t");
    bytes.push_back(std::byte{9});
    HostHandOff handOff;
    EXPECT_EQ(ParseHandOffBlock(bytes, handOff), bytes.size() - 1);
    EXPECT_EQ(bytes.back(), std::byte{9});
    std::vector<std::byte> single = {std::byte{9}};
    EXPECT_EQ(ParseHandOffBlock(single, handOff), 0u);
    EXPECT_EQ(handOff.SelectedItems, Texts{u"a"});
}

class ReadHostHandOffTest : public testing::Test {
  protected:
    HostHandOff Read(std::u16string descriptor) {
        environment_.variables[u"VEL_ExCommand"] = std::move(descriptor);
        HostHandOff handOff;
        ReadHostHandOff(
            environment_, memory_, [this](const std::u16string& text) { shown_.push_back(text); }, handOff);
        return handOff;
    }
    void HostWrites(std::u16string_view name, std::vector<std::byte> bytes) {
        memory_.blocks[std::u16string(name)] =
            std::make_shared<FakeSharedMemory::Block>(FakeSharedMemory::Block{std::move(bytes)});
    }

    FakeEnvironment environment_;
    FakeSharedMemory memory_;
    Texts shown_;
    const std::u16string block_ = u"2\t1\tC:\\Work\t\tC:\\Work\\a.txt\tC:\\Work\\b.txt\tD:\\Other\t";
};

TEST_F(ReadHostHandOffTest, ReadsTheAnnouncedBlockUnderItsMutex) {
    HostWrites(u"ShareMem_12_3", Bytes(block_ + std::u16string(100, u'\0')));
    const HostHandOff handOff = Read(u"3:1:12:3:4096:x:y:z:Share:w");
    EXPECT_EQ(handOff, (HostHandOff{.ShowMode = 3,
                                    .ReturnFocus = 1,
                                    .SharedHandOff = 1,
                                    .CurrentDir = u"C:\\Work",
                                    .Option = u"",
                                    .SelectedItems = {u"C:\\Work\\a.txt", u"C:\\Work\\b.txt"},
                                    .OtherTabFolders = {u"D:\\Other"}}));
    EXPECT_EQ(memory_.journal, (std::vector<std::string>{"lock", "read", "write", "unlock"}));
    EXPECT_TRUE(shown_.empty());
    // The host finds its block tokenised, and still there.
    std::u16string tokenised = block_ + std::u16string(100, u'\0');
    std::ranges::replace(tokenised, u'\t', u'\0');
    EXPECT_EQ(memory_.blocks.at(u"ShareMem_12_3")->bytes, Bytes(tokenised));
}

TEST_F(ReadHostHandOffTest, WithoutAProperDescriptorNothingIsHandedOver) {
    const auto ofLength = [](size_t units) {
        return u"7:1:12:3:4096:::" + std::u16string(units - 24, u'x') + u":share:w";
    };
    const std::u16string noHandOff[] = {u"",
                                        u"1",
                                        u"1:1:12:3:4096:x:y:z:Share",
                                        u"1:1:12:3:4096:x:y:z:Share:w:",
                                        std::u16string(u"1:1:12:3:4096:x:y:z\0:Share:w", 28),
                                        ofLength(2048)};
    for (const std::u16string& descriptor : noHandOff) {
        EXPECT_EQ(Read(descriptor), HostHandOff()) << ToUtf8(descriptor);
    }
    environment_.variables.clear();
    EXPECT_EQ(ReadLaunchDescriptor(environment_), u"");
    EXPECT_EQ(Read(ofLength(2047)), (HostHandOff{.ShowMode = 7, .ReturnFocus = 1})) << "the kind is not this one";
    EXPECT_EQ(Read(u" -5px:x:12:3:4096:x:y:z::w"), HostHandOff{.ShowMode = -5}) << "numbers as far as they are some";
    EXPECT_TRUE(memory_.journal.empty());
}

TEST_F(ReadHostHandOffTest, ABlockThatTheHostDidNotMakeIsEmpty) {
    EXPECT_EQ(Read(u"0:0:12:3:4096::::Share:"), HostHandOff{.SharedHandOff = 1});
    EXPECT_TRUE(shown_.empty());
    EXPECT_TRUE(memory_.blocks.empty());
}

TEST_F(ReadHostHandOffTest, ShowsWhyABlockCannotBeOpened) {
    const HostHandOff announced = {.ReturnFocus = 1, .SharedHandOff = 1};
    HostWrites(u"ShareMem_12_3", Bytes(block_));
    for (const char16_t* size : {u"0", u"-1", u"-2147483648", u"2147483647", u"1073741825", u"x"}) {
        shown_.clear();
        EXPECT_EQ(Read(std::u16string(u"0:1:12:3:") + size + u"::::Share:"), announced);
        EXPECT_EQ(shown_, Texts{u"bad size"});
    }
    const std::u16string good = u"0:1:12:3:4096::::Share:";
    for (Status FakeSharedMemory::*failure :
         {&FakeSharedMemory::blockFailure, &FakeSharedMemory::mutexFailure, &FakeSharedMemory::lockFailure}) {
        shown_.clear();
        memory_.*failure = Status::Failure(StatusCode::kAccessDenied, 13, u"Permission denied");
        EXPECT_EQ(Read(good), announced);
        EXPECT_EQ(shown_, Texts{u"Permission denied"});
        memory_.*failure = Status();
    }
    // Without a number of the system there is nothing to show.
    shown_.clear();
    memory_.blockFailure = Status::Failure(StatusCode::kOther);
    EXPECT_EQ(Read(good), announced);
    EXPECT_TRUE(shown_.empty());
    // Not being able to tokenise takes nothing from the reader.
    memory_.blockFailure = Status();
    memory_.writeFailure = Status::Failure(StatusCode::kReadOnly, 30, u"read-only");
    EXPECT_EQ(Read(good).SelectedItems.size(), 2u);
    EXPECT_TRUE(shown_.empty());
}

TEST_F(ReadHostHandOffTest, ReadsNoFurtherThanTheAnnouncedSize) {
    const std::u16string upToFirstItem = u"2\t1\tC:\\Work\t\tC:\\Work\\a.txt\t";
    ASSERT_TRUE(block_.starts_with(upToFirstItem));
    for (const size_t odd : {0, 1}) {
        HostWrites(u"ShareMem_12_3", Bytes(block_));
        const std::u16string size = FromUtf8(std::to_string(upToFirstItem.size() * 2 + odd));
        EXPECT_EQ(Read(u"0:0:12:3:" + size + u"::::Share:").SelectedItems, Texts{u"C:\\Work\\a.txt"});
    }
}

TEST_F(ReadHostHandOffTest, TakesWhatIsLeftOfABlockThatShrinks) {
    // Large enough for several reads; the other side cuts it in the middle of the second one's part.
    std::u16string text = u"200000\t0\tC:\\\t\t";
    for (int i = 0; i < 200000; ++i)
        text += u"C:\\name\t";
    HostWrites(u"ShareMem_12_3", Bytes(text));
    const std::u16string descriptor = u"0:0:12:3:4000000::::Share:";
    constexpr size_t kLeft = (size_t{1} << 20) + 12345;
    int reads = 0;
    memory_.beforeRead = [&reads](FakeSharedMemory::Block& block) {
        if (++reads == 2) block.bytes.resize(kLeft);
    };
    const HostHandOff handOff = Read(descriptor);
    EXPECT_EQ(reads, 2);
    const size_t whole = (kLeft / 2 - std::u16string_view(u"200000\t0\tC:\\\t\t").size()) / 8;
    EXPECT_EQ(handOff.SelectedItems, Texts(whole, u"C:\\name"));

    // Gone altogether before the first read.
    memory_.beforeRead = [](FakeSharedMemory::Block& block) { block.bytes.clear(); };
    EXPECT_EQ(Read(descriptor), HostHandOff{.SharedHandOff = 1});
    EXPECT_TRUE(shown_.empty());
}

}  // namespace
}  // namespace kinsort
