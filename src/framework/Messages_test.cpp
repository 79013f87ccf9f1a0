#include "framework/Messages.h"

#include <gmock/gmock.h>

#include "platform/fake/FakeEnvironment.h"
#include "platform/fake/FakeUserAccount.h"
#include "platform/fake/MemoryFileSystem.h"
#include "platform/fake/MemoryRegistry.h"
#include "platform/fake/ScriptedUserInterface.h"
#include "platform/linux/LinuxPathCodec.h"

namespace kinsort {
namespace {

using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

std::string Bytes(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text)
        bytes += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
    return bytes;
}

TEST(MessageFile, ReadsEntriesAndSkipsTheRest) {
    const struct {
        const char* what;
        std::u16string text;
        std::vector<std::pair<uint16_t, std::u16string>> entries;
    } cases[] = {
        {"a byte-order mark",
         u"\xFEFF"
         u"1\tA\r\n2\tB",
         {{1, u"A"}, {2, u"B"}}},
        {"marks and line ends anywhere",
         u"1\tA\xFEFF"
         u"B\n2\tC\rD\r\n",
         {{1, u"AB"}, {2, u"C\rD"}}},
        {"line feeds", u"1\tA\\nB\\\\nC\r\n", {{1, u"A\nB\\\nC"}}},
        {"the first of two", u"7\tfirst\r\n7\tsecond\r\n", {{7, u"first"}}},
        {"numbers", u"70000\ta\r\n -1\tb\r\nx\tc\r\n12px\td\r\n", {{4464, u"a"}, {65535, u"b"}, {0, u"c"}, {12, u"d"}}},
        {"comments", u"//1\tA\r\n  // 2\tB\r\n3\t//C\r\n", {{3, u"//C"}}},
        {"the end", u"1\tA\r\n \u3000EOF\t\r\n2\tB\r\n", {{1, u"A"}}},
        {"no end", u"EOF \tA\r\neof\r\n2\tB\r\n", {{0, u"A"}, {2, u"B"}}},
        {"not two fields", u"1\r\n2\t\r\n3\ta\tb\r\n\r\n4\t a \r\n", {{4, u" a"}}},
        {"a blank in front of a text stays", u"4\t  a\r\n", {{4, u"  a"}}},
        {"a NUL ends a line", std::u16string(u"1\tA\0B\r\n2\tC", 11), {{1, u"A"}, {2, u"C"}}},
        {"pieces of a long line",
         u"1\t" + std::u16string(32764, u'x') + u"2\ty\r\n",
         {{1, std::u16string(32764, u'x')}, {2, u"y"}}},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        EXPECT_EQ(ParseMessageFile(Bytes(one.text)), MessageTable(one.entries.begin(), one.entries.end()));
    }
    EXPECT_THAT(ParseMessageFile(""), IsEmpty());
    EXPECT_THAT(ParseMessageFile(Bytes(u"1\tA\r\n") + "2"), UnorderedElementsAre(Pair(1, u"A")));
}

class MessagesTest : public testing::Test {
  protected:
    void WriteMessages(std::u16string_view text) {
        const std::string bytes = Bytes(text);
        const auto file = files_.OpenOutput(u"C:\\Vel\\Lang\\Msg.en-US.txt", OutputStart::kEmpty);
        ASSERT_TRUE(file.ok());
        ASSERT_TRUE((*file)->Write(std::as_bytes(std::span(bytes))).ok());
        ASSERT_TRUE((*file)->Close().ok());
    }

    MemoryRegistry registry_;
    Settings settings_{registry_, u"Kinsort"};
    MemoryFileSystem files_;
    FakeUserAccount account_;
    FakeEnvironment environment_;
    const std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec("/nowhere/drives");
    VelFolders folders_{{settings_, files_, account_, environment_, *codec_}, u"C:\\Vel\\command\\Default\\Kinsort"};
    ScriptedUserInterface ui_;
    Messages messages_{settings_, folders_, files_, ui_};
};

TEST_F(MessagesTest, PathFollowsTheLanguageOnce) {
    EXPECT_EQ(messages_.GetMessageFilePath(), u"C:\\Vel\\Lang\\Msg.ja-JP.txt");
    settings_.WriteRegString(kSettingsKey, kLanguageName, u".en-US");
    EXPECT_EQ(messages_.GetMessageFilePath(), u"C:\\Vel\\Lang\\Msg.ja-JP.txt");
    Settings later(registry_, u"Kinsort");
    EXPECT_EQ(Messages(later, folders_, files_, ui_).GetMessageFilePath(), u"C:\\Vel\\Lang\\Msg.en-US.txt");
}

// A file that is missing is tried again, and complained of, at every text; an empty one silently.
TEST_F(MessagesTest, LoadsWithTheFirstText) {
    settings_.WriteRegString(kSettingsKey, kLanguageName, u".en-US");
    EXPECT_EQ(messages_.GetMessageText(1), kNoMessageText);
    EXPECT_EQ(messages_.GetMessageText(1), kNoMessageText);
    ASSERT_THAT(ui_.messages, SizeIs(2));
    EXPECT_EQ(ui_.messages[1].text,
              u"Cannot open message file.\n" + folders_.PathForPeople(u"C:\\Vel\\Lang\\Msg.en-US.txt"));
    EXPECT_EQ(ui_.messages[1].buttons, MessageButtons::kOk);

    files_.AddFolder(u"C:\\Vel\\Lang");
    WriteMessages(u"// nothing yet\r\n");
    EXPECT_EQ(messages_.LoadMessageFile(), 0);
    EXPECT_EQ(messages_.GetMessageText(1), kNoMessageText);
    WriteMessages(u"1\tone\r\n2\t%2 of %1, 100%%, %3 %x %\r\n");
    EXPECT_EQ(messages_.GetMessageText(1), u"one");
    WriteMessages(u"1\tother\r\n");
    EXPECT_EQ(messages_.GetMessageText(2, {u"%2", u"b"}), u"b of %2, 100%, %3 %x %");
    EXPECT_EQ(messages_.LoadMessageFile(), 1);
    EXPECT_EQ(messages_.GetMessageText(1), u"other");
    EXPECT_EQ(messages_.GetMessageText(2), kNoMessageText);
    EXPECT_THAT(ui_.messages, SizeIs(2));
}

TEST_F(MessagesTest, OurOwnTextsAreThereInEveryLanguage) {
    files_.SetContent(u"C:\\Vel\\Lang\\Msg.en-US.txt", Bytes(u"63999\thost\r\n64000\town\r\n64001\t%1 items\r\n"));
    settings_.WriteRegString(kSettingsKey, kLanguageName, u".fr-FR");
    EXPECT_EQ(messages_.GetMessageText(64000), u"own");
    EXPECT_EQ(messages_.GetMessageText(64001, {u"2"}), u"2 items");
    EXPECT_EQ(messages_.GetMessageText(64002), kNoMessageText);
    EXPECT_THAT(ui_.messages, SizeIs(1)) << "said once";
    EXPECT_EQ(messages_.GetMessageText(63999), kNoMessageText);
    files_.SetContent(u"C:\\Vel\\Lang\\Msg.fr-FR.txt", Bytes(u"64000\tpropre\r\n"));
    EXPECT_EQ(messages_.LoadMessageFile(), 1);
    EXPECT_EQ(messages_.GetMessageText(64000), u"propre");
    EXPECT_EQ(messages_.GetMessageText(64001, {u"2"}), u"2 items");
}

}  // namespace
}  // namespace kinsort
