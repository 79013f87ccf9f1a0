#include "classify/NameSimilarity.h"

#include <string>

#include <gtest/gtest.h>

#include "platform/fake/FakeLocaleMap.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

const NameNormalizer& Normalizer() {
    static const NameNormalizer normalizer{FakeLocaleMap()};
    return normalizer;
}

TEST(RemoveNameNoise, DropsTheNoiseAndNothingElse) {
    std::u16string ascii;
    for (char16_t unit = u' '; unit < 0x7F; ++unit)
        ascii += unit;
    EXPECT_EQ(RemoveNameNoise(ascii), u"!#*+,-./<>?@ABCDEFGHIJKLMNOPQRSTUVWXYZ\\^`abcdefghijklmnopqrstuvwxyz{|}~");
    EXPECT_EQ(RemoveNameNoise(u"\x3000「あ」【い】｢う｣『え』〈お〉"), u"あいう『え』〈お〉");
    EXPECT_EQ(RemoveNameNoise(u"\x8140\x8175\x8176\x8179\x817A"), u"\x8140\x8175\x8176\x8179\x817A");
    EXPECT_EQ(RemoveNameNoise(u""), u"");
}

TEST(NameNormalizer, AppliesTheFourStepsInOrder) {
    const struct {
        std::u16string name, expected;
    } rows[] = {
        {u"Report2023_final.docx", u"reportfinal.docx"},
        {u"ＡＢＣ(1).txt", u"abc.txt"},
        {u"カタカナ", u"かたかな"},
        {u"「第１巻」\x3000【完】", u"第巻完"},
        {u"ヷ8ヷ", u"ﾜﾞﾜﾞ"},
        {u"007 [2]", u""},
        {u"\xD83D\xDE00\xDC00x", u"\xD83D\xDE00\xDC00x"},
        {u"", u""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Normalizer().Normalize(row.name), row.expected);
}

TEST(NameNormalizer, KeepsTheUnitsAtTheEndsOfTheRange) {
    const std::u16string ends{char16_t{0}, char16_t{0xFFFF}, char16_t{0xFFFE}};
    EXPECT_EQ(Normalizer().Normalize(ends), ends);
}

TEST(GetNameSimilarity, CountsThePiecesOfTheFirstNameThatTheSecondHas) {
    const struct {
        std::u16string file, folder;
        int score;
    } rows[] = {
        {u"Report2023_final.docx", u"report", 5},
        {u"ＡＢＣ(1).txt", u"abc", 2},
        {u"カタカナ.txt", u"かたかな", 3},
        {u"かたかな.txt", u"カタカナ", 3},
        {u"aaaa", u"aa", 3},
        {u"aa", u"aaaa", 1},
        {u"7a", u"7a", 0},
        {u"(x)", u"x", 0},
        {u"123.jpg", u"456.JPG", 3},
        {u"a1b", u"ab", 1},  // the digit goes first, so that its neighbours meet
        {u"abc", u"2024 (1)", 0},
        {u"", u"", 0},
        {u"abab", u"ab", 2},
        {u"ab", u"ba", 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(GetNameSimilarity(Normalizer(), row.file, row.folder), row.score)
            << ToUtf8(row.file) << " / " << ToUtf8(row.folder);
    }
}

TEST(PickCandidateFolder, TakesTheFirstOfTheHighest) {
    const struct {
        std::u16string file;
        std::vector<std::u16string> folders;
        int expected;
    } rows[] = {
        {u"ab.txt", {u"ab", u"abc"}, 0},
        {u"ab.txt", {u"abc", u"ab"}, 0},
        {u"abc.txt", {u"ab", u"abc", u"abc"}, 1},
        {u"x.txt", {u"abc", u"12"}, -1},
        {u"x.txt", {}, -1},
        {u".git", {u"src", u".git"}, 1},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(PickCandidateFolder(Normalizer(), row.file, row.folders), row.expected) << ToUtf8(row.file);
    }
}

}  // namespace
}  // namespace kinsort
