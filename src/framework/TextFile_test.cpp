#include "framework/TextFile.h"

#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/JapaneseEncoding.h"
#include "platform/fake/MemoryFileSystem.h"
#include "platform/linux/IcuCodePages.h"
#include "text/Utf16Bytes_test.h"

namespace kinsort {
namespace {

using namespace std::literals;
using testing::ElementsAre;
using testing::IsEmpty;

using Line = std::pair<int32_t, std::u16string>;  // number and text

class TextFileTest : public testing::Test {
  protected:
    void OpenWith(std::string_view bytes) {
        files_.SetContent(kPath, bytes);
        ASSERT_EQ(file_.Open(kPath), 1);
    }
    std::vector<Line> ReadOn() {
        std::vector<Line> lines;
        for (std::u16string_view line; file_.ReadLine(line);)
            lines.emplace_back(file_.GetLineNumber(), line);
        return lines;
    }

    static constexpr std::u16string_view kPath = u"Z:\\a.txt";
    MemoryFileSystem files_;
    CTextFile file_{files_};
    const std::unique_ptr<CodePages> codePages_ = MakeIcuCodePages();
};

TEST_F(TextFileTest, HandsOutLines) {
    struct Case {
        std::string bytes;
        std::vector<std::u16string> lines;
    };
    const std::u16string longest(CTextFile::kLineLimit - 1, u'x');
    const Case kCases[] = {
        {"\xFF\xFE"
         "A\0\r\0\n\0B\0"s,
         {u"A", u"B"}},
        {Utf16Bytes(u"a\r\n\rb\n\n\r\nc"), {u"a", u"", u"b", u"", u"", u"c"}},
        {Utf16Bytes(u"a\r"), {u"a"}},
        {Utf16Bytes(u"\n"), {u""}},
        {Utf16Bytes(u"\uFEFF"), {}},
        {"", {}},
        {"\xFF", {u"\u00FF"}},                                         // half a unit
        {Utf16Bytes(u"a\n") + "b", {u"a", u"b"}},                      // the same at the end
        {Utf16Bytes(u"a\0b\nc"sv), {u"a", u"c"}},                      // a NUL ends its line
        {Utf16Bytes(u"\u0D0A\u0A0D\u000C"), {u"\u0D0A\u0A0D\u000C"}},  // no line ends
        {Utf16Bytes(longest + u"\r\nb"), {longest, u"b"}},
        {Utf16Bytes(longest), {longest}},
        {Utf16Bytes(u"a\n" + longest + u"x\nb"), {u"a"}},
        {Utf16Bytes(longest + u"x"), {}},
    };
    for (const auto& [bytes, expected] : kCases) {
        SCOPED_TRACE(testing::PrintToString(bytes.substr(0, 40)));
        OpenWith(bytes);
        EXPECT_EQ(file_.GetLineNumber(), -1);
        std::vector<std::u16string> lines;
        for (auto& [number, text] : ReadOn())
            lines.push_back(std::move(text));
        EXPECT_EQ(lines, expected);
        std::u16string_view line;
        EXPECT_FALSE(file_.ReadLine(line)) << "the end is not the end";
    }
}

TEST_F(TextFileTest, NumbersLinesAsTheyAreFirstMet) {
    OpenWith(Utf16Bytes(u"\uFEFFone\r\ntwo\r\nthree\r\nfour"));
    std::u16string_view line;
    ASSERT_TRUE(file_.ReadLine(line) && file_.ReadLine(line));
    EXPECT_EQ(file_.GetLineNumber(), 2);
    const int32_t two = file_.currentLineStart();
    const int32_t three = file_.nextPosition();
    EXPECT_EQ(two, 12);
    EXPECT_EQ(three, 22);
    EXPECT_THAT(ReadOn(), ElementsAre(Line{3, u"three"}, Line{4, u"four"}));
    file_.Rewind();
    EXPECT_THAT(ReadOn(), ElementsAre(Line{1, u"one"}, Line{2, u"two"}, Line{3, u"three"}, Line{4, u"four"}));
    file_.Seek(two);
    EXPECT_THAT(ReadOn(), ElementsAre(Line{2, u"two"}, Line{3, u"three"}, Line{4, u"four"}));
    file_.Seek(three + 4);  // in the middle of a line, which makes it a new one
    ASSERT_TRUE(file_.ReadLine(line));
    EXPECT_EQ(line, u"ree");
    EXPECT_EQ(file_.GetLineNumber(), 6) << "the end of the text counts as the fifth";
    EXPECT_THAT(ReadOn(), ElementsAre(Line{4, u"four"}));
    for (const int32_t beyond : {file_.length(), file_.length() + 2, 0x7FFFFFFF}) {
        file_.Seek(beyond);
        EXPECT_THAT(ReadOn(), IsEmpty());
    }
}

TEST_F(TextFileTest, GivesTheWholeTextAndConvertsIt) {
    OpenWith("\x93\xFA\r\n\x96\x7B\r\n");
    uint32_t codePage = 0;
    ASSERT_TRUE(file_.DetectCodePage(*codePages_, codePage));
    EXPECT_EQ(codePage, kCodePageShiftJis);
    EXPECT_EQ(file_.codePage(), kCodePageShiftJis);
    EXPECT_EQ(file_.ConvertToUnicode(*codePages_, 4711), 0);
    EXPECT_EQ(file_.length(), 8) << "a failed conversion changed the text";
    ASSERT_EQ(file_.ConvertToUnicode(*codePages_, codePage), 1);
    EXPECT_EQ(file_.length(), 6 * 2 + 4);
    EXPECT_EQ(file_.GetText(), u"日\r\n本\r\n");
    EXPECT_THAT(ReadOn(), ElementsAre(Line{1, u"日"}, Line{2, u"本"}, Line{3, u""}));

    OpenWith(Utf16Bytes(u"\uFEFFa\nb"));
    EXPECT_EQ(file_.GetText(), u"a\nb");
    EXPECT_EQ(file_.codePage(), 0u) << "known from the file before";
    OpenWith(
        "\xEF\xBB\xBF"
        "a");
    ASSERT_EQ(file_.ConvertToUnicode(*codePages_, kCodePageUtf8), 1);
    EXPECT_EQ(file_.GetText(), u"a");
    EXPECT_THAT(ReadOn(), ElementsAre(Line{1, u"a"}));
}

TEST_F(TextFileTest, KnowsTheEncodingOfABuffer) {
    struct Case {
        std::string_view bytes;
        uint32_t codePage;  // 0: none
    };
    constexpr Case kCases[] = {
        {"\xFE\xFF"sv, 1201},      {"\xFF\xFE"sv, 1200},      {"\xFF\xFE\0"sv, 1200},
        {"\xFF\xFE\0\0"sv, 12000}, {"\xEF\xBB\xBF"sv, 65001}, {"\0\0\xFE\xFF"sv, 12001},
        {"a\x1B(J"sv, 50220},      {"plain"sv, 20127},        {""sv, 0},
    };
    for (const auto& [bytes, expected] : kCases) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        OpenWith(bytes);
        uint32_t codePage = 4711;
        EXPECT_EQ(file_.DetectCodePage(*codePages_, codePage), expected != 0);
        EXPECT_EQ(codePage, expected != 0 ? expected : 4711u);
        EXPECT_EQ(file_.codePage(), expected);
    }
}

TEST(DetectJapaneseEncoding, DecidesByWhatExplainsMost) {
    struct Case {
        std::string_view bytes;
        uint32_t codePage;
    };
    constexpr Case kCases[] = {
        {"plain", 0},
        {"\x1B[0m colour", 0},  // an escape of something else
        {"\x1B$@", 50220},
        {"\x1B(B", 50220},
        {"\x1B(I", 50220},
        {"\x1B$(D", 50220},
        {"\x1B$(", 0},  // cut off
        {"\x1B&@\x1B$B", 50220},
        {"\x1B\x1B$B", 50220},
        {"\x82\xA0\x06", 0},  // control bytes, DEL and FF: no text
        {"\x82\xA0\x7F", 0},
        {"\x1B$B\xFF", 0},
        {"\x82\xA0\x07", 932},
        {"\xA4\xA2", 51932},
        {"\x8E\xB1", 0},  // a pair in both
        {"\x8E\xB1\xA4\xA2", 51932},
        {"\x8F\xB0\xA1", 51932},  // three against two
        {"\x8F\xB0", 932},        // no room for the third
        {"\xE3\x81\x82", 65001},  // three against two
        {"\xE3\x81", 932},        // no room for the third
        {"\xC3\x84", 65001},
        {"\xC4\xA3", 0},            // UTF-8 and EUC-JP have as many
        {"\xF0\x9F\x98\x80", 932},  // four-byte UTF-8 does not count
        {"\x82", 0},
    };
    for (const auto& [bytes, codePage] : kCases)
        EXPECT_EQ(DetectJapaneseEncoding(bytes), codePage) << testing::PrintToString(bytes);
    EXPECT_EQ(DetectJapaneseEncoding("\x82\xA0\0"sv), 0u);
}

TEST_F(TextFileTest, FailsAsAWholeAndHoldsTheFile) {
    OpenWith(Utf16Bytes(u"a"));
    EXPECT_EQ(files_.OpenOutput(kPath, OutputStart::kEmpty).code(), StatusCode::kLocked);
    EXPECT_EQ(file_.Open(u"Z:\\missing.txt"), 0);
    EXPECT_FALSE(file_.isOpen());
    EXPECT_EQ(file_.path(), u"Z:\\missing.txt");
    EXPECT_EQ(file_.lastError().code(), StatusCode::kNotFound);
    EXPECT_EQ(file_.length(), 0);
    EXPECT_TRUE(files_.OpenOutput(kPath, OutputStart::kAppend).ok()) << "still held";

    OpenWith(Utf16Bytes(u"a"));
    file_.Close();
    EXPECT_EQ(file_.GetText(), u"");
    EXPECT_TRUE(files_.OpenOutput(kPath, OutputStart::kAppend).ok());
}

TEST_F(TextFileTest, IgnoresWhatIsBeyondTheLimit) {
    const std::string line = Utf16Bytes(u"0123456789ABCD\n");
    std::string bytes;
    while (bytes.size() < CTextFile::kMaxFileBytes + 100)
        bytes += line;
    OpenWith(bytes);
    EXPECT_EQ(file_.length(), 52'428'800);
    int32_t count = 0;
    for (std::u16string_view text; file_.ReadLine(text);)
        ++count;
    EXPECT_EQ(count, 52'428'800 / 30 + 1);
    EXPECT_EQ(file_.GetLineNumber(), count + 1);
}

}  // namespace
}  // namespace kinsort
