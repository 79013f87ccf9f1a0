#include "controls/FolderText.h"

#include <gtest/gtest.h>

#include "controls/PathEllipsis.h"
#include "platform/linux/LinuxPathCodec.h"

namespace kinsort {
namespace {

class FolderTextTest : public testing::Test {
  protected:
    std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("");
    FolderText texts{*codec, "/home/me"};
};

TEST_F(FolderTextTest, WhatPeopleTypeIsTurnedIntoTheInnerForm) {
    const struct {
        std::u16string shown, inner;
    } cases[] = {
        {u"/home/me/Pi", u"Z:\\home\\me\\Pi"},
        {u"~", u"Z:\\home\\me"},
        {u"~/x", u"Z:\\home\\me\\x"},
        {u"file:///home/a%20b", u"Z:\\home\\a b"},
        {u"Z:\\home", u"Z:\\home"},
        {u"d", u"d"},
        {u"D:", u"D:"},
        {u"D:x", u"D:x"},
        {u"\\", u"\\"},
        {u"\\\\nas", u"\\\\nas"},
        {u"file://nas/x", u"file://nas/x"},
        {u"file:///a%2", u"file:///a%2"},
    };
    for (const auto& one : cases)
        EXPECT_EQ(texts.ToInner(one.shown), one.inner);
}

TEST_F(FolderTextTest, NativePathsAreShownAndNoPathIsLost) {
    const struct {
        std::u16string inner, shown;
    } cases[] = {
        {u"Z:\\", u"/"},
        {u"z:\\home\\me", u"/home/me"},
        {u"Z:\\home\\me\\", u"/home/me/"},
        {u"Z:\\a b\\\u3042\xD83D\xDE00", u"/a b/\u3042\xD83D\xDE00"},
        {u"Z:\\byte\xDCFF\\", u"/byte\xDCFF/"},
        {u"Z:\\a\uF05Cb", u"/a\\b"},
        {u"Z:\\line\uF00A", u"/line\n"},
        {u"Z:\\a\\..\\b", u"Z:\\a\\..\\b"},
        {u"C:\\x\\", u"C:\\x\\"},
        {u"\\\\nas\\share\\", u"\\\\nas\\share\\"},
        {u"\\\\?\\Z:\\x", u"\\\\?\\Z:\\x"},
        {u"", u""},
        {u"notes\\x\\", u"notes/x/"},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(texts.ToShown(one.inner), one.shown);
        std::u16string back = texts.ToInner(one.shown);
        if (!back.empty()) back[0] = one.inner[0];  // a drive has either case
        EXPECT_EQ(back, one.inner);
    }
}

TEST(PathEllipsis, TheLastNameStaysAndAsMuchOfTheBeginningAsFits) {
    const auto widthOf = [](std::u16string_view text) { return static_cast<int>(text.size()) * 10; };
    const struct {
        std::u16string path;
        int width;
        std::u16string shortened;
    } cases[] = {
        {u"/home/me/Pictures/summer/", 250, u"/home/me/Pictures/summer/"},
        {u"/home/me/Pictures/summer/", 249, u"/home/me/Pictur\u2026/summer/"},
        {u"/home/me/Pictures/summer/", 100, u"/\u2026/summer/"},
        {u"/home/me/Pictures/summer/", 10, u"\u2026/summer/"},
        {u"Z:\\home\\me\\file.txt", 150, u"Z:\\ho\u2026\\file.txt"},
        {u"/a\xD83D\xDE00\xD83D\xDE00/summer", 110, u"/a\u2026/summer"},
        {u"summer", 10, u"summer"},
        {u"/summer/", 10, u"/summer/"},
        {u"/", 0, u"/"},
        {u"", 0, u""},
    };
    for (const auto& one : cases)
        EXPECT_EQ(ShortenPath(one.path, one.width, widthOf), one.shortened) << one.width;
}

}  // namespace
}  // namespace kinsort
