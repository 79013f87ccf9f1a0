#include "platform/linux/IcuCodePages.h"

#include <cstdlib>

#include <gtest/gtest.h>

namespace kinsort {
namespace {

using namespace std::string_view_literals;

// One greeting in every encoding that a file of it may be in: a wrong converter cannot give the same text.
TEST(IcuCodePages, ReadsAndWritesTheBytesOfEachEncoding) {
    struct Case {
        uint32_t codePage;
        std::string_view bytes;
        std::u16string_view text;
    };
    constexpr Case kCases[] = {
        {932, "\x93\xFA\x96\x7B\x8C\xEA \xB1\xDD \x87\x40 \x81\x60\x81\x7C \\~\xFC\x4B", u"日本語 ｱﾝ ① ～－ \\~黑"},
        {51932, "\xC6\xFC\xCB\xDC\xB8\xEC \x8E\xB1 \xAD\xA1 \xA1\xC1", u"日本語 ｱ ① ～"},
        {20932, "\xC6\xFC\x8F\xB0\xA1", u"日丂"},
        {50220, "\x1B$BF|K\\8l\x1B(B abc", u"日本語 abc"},
        {50222, "\x1B$BF|\x0E\x31\x0F\x1B(B abc", u"日ｱ abc"},
        {936, "\xC4\xE3\xBA\xC3", u"你好"},
        {54936, "\xC4\xE3\x95\x32\x82\x36", u"你𠀀"},
        {949, "\xBE\xC8\xB3\xE7\x81\x41", u"안녕갂"},
        {950, "\xA7\x41\xA6\x6E", u"你好"},
        {874, "\xCA\xC7\xD1\xCA\xB4\xD5", u"สวัสดี"},
        {1250, "\xA3\xF3\x64\x9F", u"Łódź"},
        {1251, "\xCF\xF0\xE8\xE2\xE5\xF2", u"Привет"},
        {1252, "\x80 caf\xE9", u"€ café"},
        {1253, "\xC3\xE5\xE9\xDC", u"Γειά"},
        {1254, "\xDDyi g\xFCn", u"İyi gün"},
        {1255, "\xF9\xEC\xE5\xED", u"שלום"},
        {1256, "\xD3\xE1\xC7\xE3", u"سلام"},
        {1257, "\xD0iauliai", u"Šiauliai"},
        {1258, "\xE2\xEA\xFE", u"âê₫"},
        {20866, "\xF0\xD2\xC9", u"При"},
        {21866, "\xA6\xF0", u"іП"},
        {28591, "caf\xE9", u"café"},
        {28605, "\xA4", u"€"},
        {437, "caf\x82", u"café"},
        {850, "\xD5", u"ı"},
        {852, "\x9D\xA2", u"Łó"},
        {866, "\x8F\xE0\xA8", u"При"},
        {65000, "caf+AOk-", u"café"},
        {65001, "\xEF\xBB\xBF\xE6\x97\xA5\xF0\xA0\x80\x80", u"\uFEFF日𠀀"},
        {1200, "\xFF\xFE\xE5\x65"sv, u"\uFEFF日"},
        {1201, "\x65\xE5\0A"sv, u"日A"},
        {12000, "\0\0\x02\0"sv, u"𠀀"},
        {12001, "\0\x02\0\0"sv, u"𠀀"},
        {kCodePageAnsi, "", u""},
    };
    const auto codePages = MakeIcuCodePages();
    for (const auto& [codePage, bytes, text] : kCases) {
        SCOPED_TRACE(codePage);
        ASSERT_TRUE(codePages->IsKnown(codePage));
        EXPECT_EQ(codePages->ToUnicode(codePage, bytes).value(), text);
        EXPECT_EQ(codePages->FromUnicode(codePage, text).value(), bytes);
    }
    // Read as what it is, written as what every reader understands.
    for (const uint32_t codePage : {50220u, 50221u}) {
        EXPECT_EQ(codePages->ToUnicode(codePage, "\x1B(I1\x1B(B").value(), u"ｱ");
        EXPECT_EQ(codePages->FromUnicode(codePage, u"ｱ").value(), "\x1B$B%\"\x1B(B");
    }
}

TEST(IcuCodePages, KeepsEveryLetterOfEachCodePageItLists) {
    const auto codePages = MakeIcuCodePages();
    const std::u16string ascii = u"The quick brown fox; 0123456789 (jumps)!\r\n";
    for (const uint32_t codePage : KnownCodePages()) {
        SCOPED_TRACE(codePage);
        ASSERT_TRUE(codePages->IsKnown(codePage));
        const Result<std::string> bytes = codePages->FromUnicode(codePage, ascii);
        ASSERT_TRUE(bytes.ok());
        EXPECT_EQ(codePages->ToUnicode(codePage, *bytes).value(), ascii);
    }
}

TEST(IcuCodePages, ReplacesWhatCannotBeSaid) {
    const auto codePages = MakeIcuCodePages();
    EXPECT_EQ(codePages->FromUnicode(932, u"a𠀀b한\u200Bc\xD800").value(), "a?b??c?");
    EXPECT_EQ(codePages->FromUnicode(1252, u"\uFEFF日本").value(), "???");
    EXPECT_EQ(codePages->FromUnicode(20127, u"日").value(), "?");
    EXPECT_EQ(codePages->FromUnicode(50220, u"日한").value(), "\x1B$BF|\x1B(B?");
    EXPECT_EQ(codePages->FromUnicode(65001, u"a\xDC80").value(), "a\xEF\xBF\xBD");
    EXPECT_EQ(codePages->ToUnicode(932, "a\x82").value(), u"a\uFFFD");
    EXPECT_EQ(codePages
                  ->ToUnicode(51949,
                              "\xA2\xE8"
                              "a")
                  .value(),
              u"\uFFFDa");
    EXPECT_EQ(codePages->ToUnicode(65001, "\xC3(\xE6\x97").value(), u"\uFFFD(\uFFFD");
    EXPECT_EQ(codePages->ToUnicode(1200, "A\0B"sv).value(), u"A\uFFFD");
    for (const uint32_t unknown : {1u, 933u, 65002u, 0xFFFFFFFFu}) {
        EXPECT_FALSE(codePages->IsKnown(unknown));
        EXPECT_EQ(codePages->ToUnicode(unknown, "a").code(), StatusCode::kUnsupported);
        EXPECT_EQ(codePages->FromUnicode(unknown, u"a").code(), StatusCode::kUnsupported);
    }
}

TEST(IcuCodePages, GuessesTheEncodingOfText) {
    const auto codePages = MakeIcuCodePages();
    EXPECT_EQ(codePages->Detect(""), std::nullopt);
    EXPECT_EQ(codePages->Detect("plain words\r\n"), kCodePageAscii);
    constexpr std::u16string_view kRussian =
        u"Все люди рождаются свободными и равными в своем достоинстве и правах. Они наделены разумом и совестью и "
        u"должны поступать в отношении друг друга в духе братства.";
    constexpr std::u16string_view kKorean = u"다람쥐 헌 쳇바퀴에 타고파. 키스의 고유조건은 입술끼리 만나야 하고.";
    constexpr std::u16string_view kFrench = u"Dès Noël où un zéphyr haï me vêt de glaçons würmiens, je dîne à l’aube.";
    const std::pair<uint32_t, std::u16string_view> kCases[] = {
        {1251, kRussian}, {20866, kRussian}, {51949, kKorean}, {1252, kFrench}, {65001, kKorean}};
    for (const auto& [codePage, text] : kCases) {
        EXPECT_EQ(codePages->Detect(codePages->FromUnicode(codePage, text).value()), codePage);
    }
}

TEST(IcuCodePages, TakesTheEightBitEncodingFromTheUsersLanguage) {
    ASSERT_EQ(setenv("LC_ALL", "C", 1), 0);
    EXPECT_EQ(MakeIcuCodePages()->AnsiCodePage(), kCodePageUtf8);
    ASSERT_EQ(setenv("LC_ALL", "C.UTF-8", 1), 0);
    EXPECT_EQ(MakeIcuCodePages()->AnsiCodePage(), kCodePageUtf8);
    EXPECT_EQ(MakeIcuCodePages()->FromUnicode(kCodePageAnsi, u"é").value(), "\xC3\xA9");
    ASSERT_EQ(unsetenv("LC_ALL"), 0);
}

}  // namespace
}  // namespace kinsort
