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
    struct Case {
        std::u16string shown;
        std::u16string inner;
    };
    const Case cases[] = {
        {u"", u""},
        {u"/", u"Z:\\"},
        {u"/home/me/Pi", u"Z:\\home\\me\\Pi"},
        {u"/home/me/", u"Z:\\home\\me\\"},
        {u"~", u"Z:\\home\\me"},
        {u"~/x", u"Z:\\home\\me\\x"},
        {u"file:///home/a%20b", u"Z:\\home\\a b"},
        {u"Z:\\home", u"Z:\\home"},
        {u"d", u"d"},
        {u"D:", u"D:"},
        {u"D:x", u"D:x"},
        {u"\\", u"\\"},
        {u"\\\\nas", u"\\\\nas"},
        {u"\\\\nas\\share\\x", u"\\\\nas\\share\\x"},
        {u"notes/x", u"notes\\x"},
        {u"/a\\b",
         u"Z:\\a\xF05C"
         u"b"},
        {u"file://nas/x", u"file://nas/x"},
        {u"file:///a%2", u"file:///a%2"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(texts.ToInner(c.shown), c.inner);
}

TEST_F(FolderTextTest, NativePathsAreShownAndNoPathIsLost) {
    struct Case {
        std::u16string inner;
        std::u16string shown;
    };
    const Case cases[] = {
        {u"Z:\\", u"/"},
        {u"z:\\home\\me", u"/home/me"},
        {u"Z:\\home\\me\\", u"/home/me/"},
        {u"Z:\\a b\\\u3042\xD83D\xDE00", u"/a b/\u3042\xD83D\xDE00"},
        {u"Z:\\byte\xDCFF\\", u"/byte\xDCFF/"},
        {u"Z:\\a\xF05C"
         u"b",
         u"/a\\b"},
        {u"Z:\\line\xF00A", u"/line\n"},
        {u"Z:\\a\\..\\b", u"Z:\\a\\..\\b"},
        {u"C:\\x\\", u"C:\\x\\"},
        {u"\\\\nas\\share\\", u"\\\\nas\\share\\"},
        {u"\\\\?\\Z:\\x", u"\\\\?\\Z:\\x"},
        {u"", u""},
        {u"notes\\x\\", u"notes/x/"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(texts.ToShown(c.inner), c.shown);
        const std::u16string back = texts.ToInner(c.shown);
        EXPECT_EQ(back.substr(std::min<size_t>(back.size(), 1)), c.inner.substr(std::min<size_t>(c.inner.size(), 1)));
    }
}

TEST(PathEllipsis, TheLastNameStaysAndAsMuchOfTheBeginningAsFits) {
    const auto widthOf = [](std::u16string_view text) { return static_cast<int>(text.size()) * 10; };
    struct Case {
        std::u16string path;
        int width;
        std::u16string shortened;
    };
    const Case cases[] = {
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
    for (const Case& c : cases)
        EXPECT_EQ(ShortenPath(c.path, c.width, widthOf), c.shortened) << c.width;
}

}  // namespace
}  // namespace kinsort
