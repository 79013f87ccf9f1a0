#include "platform/linux/IcuLocaleMap.h"

#include <gtest/gtest.h>

namespace kinsort {
namespace {

struct Row {
    char16_t unit;
    std::u16string expected;
};

TEST(IcuLocaleMap, LowerCaseIsSimpleAndOneToOne) {
    const auto map = MakeIcuLocaleMap();
    const Row rows[] = {
        {u'A', u"a"},        {u'z', u"z"},        {u'É', u"é"},        {u'Σ', u"σ"},        {u'Я', u"я"},
        {u'Ａ', u"ａ"},      {u'Ⅷ', u"ⅷ"},        {0x01C5, u"\x01C6"}, {0x0130, u"\x0130"}, {0x1E9E, u"\x1E9E"},
        {0x212A, u"\x212A"}, {0x212B, u"\x212B"}, {u'ア', u"ア"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(std::u16string(1, map->LowerCase(row.unit)), row.expected) << int{row.unit};
    for (char16_t unit = 0xD800; unit <= 0xDFFF; ++unit)
        ASSERT_EQ(map->LowerCase(unit), unit);
}

TEST(IcuLocaleMap, HiraganaStopsAtTheEdgesOfTheKatakanaThatHaveOne) {
    const auto map = MakeIcuLocaleMap();
    const Row rows[] = {
        {0x30A0, u"\x30A0"}, {0x30A1, u"\x3041"}, {u'カ', u"か"}, {u'ヴ', u"ゔ"}, {0x30F6, u"\x3096"},
        {0x30F7, u"\x30F7"}, {0x30FA, u"\x30FA"}, {u'・', u"・"}, {u'ー', u"ー"}, {u'ヽ', u"ゝ"},
        {u'ヾ', u"ゞ"},      {0x30FF, u"\x30FF"}, {u'ｶ', u"ｶ"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(std::u16string(1, map->Hiragana(row.unit)), row.expected) << int{row.unit};
}

TEST(IcuLocaleMap, HalfWidthNarrowsWhatHasANarrowFormAndLeavesTheRest) {
    const auto map = MakeIcuLocaleMap();
    const Row rows[] = {
        {0x3000, u" "},      {u'！', u"!"},  {u'Ａ', u"A"},
        {u'９', u"9"},       {u'～', u"~"},  {u'＼', u"＼"},
        {0xFF5F, u"\xFF5F"}, {u'￠', u"¢"},  {u'￥', u"¥"},
        {u'￦', u"₩"},       {u'「', u"｢"},  {u'」', u"｣"},
        {u'、', u"､"},       {u'。', u"｡"},  {u'・', u"･"},
        {u'ー', u"ｰ"},       {u'ア', u"ｱ"},  {u'ヲ', u"ｦ"},
        {u'ガ', u"ｶﾞ"},      {u'パ', u"ﾊﾟ"}, {u'ヷ', u"ﾜﾞ"},
        {u'ヺ', u"ｦﾞ"},      {u'ヸ', u"ヸ"}, {u'ヰ', u"ヰ"},
        {0x3099, u"ﾞ"},      {0x309B, u"ﾞ"}, {0x309C, u"ﾟ"},
        {u'が', u"が"},      {u'ゞ', u"ゞ"}, {u'『', u"『"},
        {u'』', u"』"},      {u'【', u"【"}, {u'〜', u"〜"},
        {u'ㄱ', u"ﾡ"},       {u'→', u"￫"},   {u'│', u"￨"},
        {u'a', u"a"},        {u'漢', u"漢"}, {0xD83D, std::u16string(1, char16_t{0xD83D})},
    };
    for (const Row& row : rows)
        EXPECT_EQ(map->HalfWidth(row.unit), row.expected) << int{row.unit};
}

TEST(IcuLocaleMap, HalfWidthNeverGrowsBeyondTwoUnitsNorVanishes) {
    const auto map = MakeIcuLocaleMap();
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
        const size_t size = map->HalfWidth(static_cast<char16_t>(unit)).size();
        ASSERT_TRUE(size == 1 || size == 2) << unit;
    }
}

}  // namespace
}  // namespace kinsort
