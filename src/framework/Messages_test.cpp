#include "framework/Messages.h"

#include <gmock/gmock.h>

#include "framework/FolderWorld_test.h"
#include "platform/fake/ScriptedUserInterface.h"
#include "text/Utf16Bytes_test.h"

namespace kinsort {
namespace {

using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

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
        EXPECT_EQ(ParseMessageFile(Utf16Bytes(one.text)), MessageTable(one.entries.begin(), one.entries.end()));
    }
    EXPECT_THAT(ParseMessageFile(""), IsEmpty());
    EXPECT_THAT(ParseMessageFile(Utf16Bytes(u"1\tA\r\n") + "2"), UnorderedElementsAre(Pair(1, u"A")));
}

class MessagesTest : public testing::Test, protected FolderWorld {
  protected:
    void WriteMessages(std::u16string_view text) { files.SetContent(kEnglish, Utf16Bytes(text)); }

    static constexpr std::u16string_view kEnglish = u"C:\\V\\Lang\\Msg.en-US.txt";
    ScriptedUserInterface ui_;
    Messages messages_{settings, folders, files, ui_};
};

TEST_F(MessagesTest, PathFollowsTheLanguageOnce) {
    EXPECT_EQ(messages_.GetMessageFilePath(), u"C:\\V\\Lang\\Msg.ja-JP.txt");
    settings.WriteRegString(kSettingsKey, kLanguageName, u".en-US");
    EXPECT_EQ(messages_.GetMessageFilePath(), u"C:\\V\\Lang\\Msg.ja-JP.txt");
    Settings later(registry, u"Kinsort");
    EXPECT_EQ(Messages(later, folders, files, ui_).GetMessageFilePath(), u"C:\\V\\Lang\\Msg.en-US.txt");
}

// A file that is missing is tried again, and complained of, at every text; an empty one silently.
TEST_F(MessagesTest, LoadsWithTheFirstText) {
    settings.WriteRegString(kSettingsKey, kLanguageName, u".en-US");
    EXPECT_EQ(messages_.GetMessageText(1), kNoMessageText);
    EXPECT_EQ(messages_.GetMessageText(1), kNoMessageText);
    ASSERT_THAT(ui_.messages, SizeIs(2));
    EXPECT_EQ(ui_.messages[1].text, u"Cannot open message file.\n" + folders.PathForPeople(kEnglish));
    EXPECT_EQ(ui_.messages[1].buttons, MessageButtons::kOk);

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
    const size_t most = size_t{4} << 20;  // bytes that are read
    files.SetContent(kEnglish, Utf16Bytes(u"1\tone\r\n//") + std::string(most, 'x') + Utf16Bytes(u"\r\n2\ttwo\r\n"));
    EXPECT_EQ(messages_.LoadMessageFile(), 1);
    EXPECT_EQ(messages_.GetMessageText(2), kNoMessageText);
    EXPECT_THAT(ui_.messages, SizeIs(2));
}

TEST_F(MessagesTest, OurOwnTextsAreThereInEveryLanguage) {
    WriteMessages(u"63999\thost\r\n64000\town\r\n64001\t%1 items\r\n");
    settings.WriteRegString(kSettingsKey, kLanguageName, u".fr-FR");
    EXPECT_EQ(messages_.GetMessageText(64000), u"own");
    EXPECT_EQ(messages_.GetMessageText(64001, {u"2"}), u"2 items");
    EXPECT_EQ(messages_.GetMessageText(64002), kNoMessageText);
    EXPECT_THAT(ui_.messages, SizeIs(1)) << "said once";
    EXPECT_EQ(messages_.GetMessageText(63999), kNoMessageText);
    files.SetContent(u"C:\\V\\Lang\\Msg.fr-FR.txt", Utf16Bytes(u"64000\tpropre\r\n"));
    EXPECT_EQ(messages_.LoadMessageFile(), 1);
    EXPECT_EQ(messages_.GetMessageText(64000), u"propre");
    EXPECT_EQ(messages_.GetMessageText(64001, {u"2"}), u"2 items");
}

}  // namespace
}  // namespace kinsort
