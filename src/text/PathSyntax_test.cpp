#include "text/PathSyntax.h"

#include <gtest/gtest.h>

#include "text/Utf8.h"

namespace kinsort {
namespace {

TEST(PathSyntax, RootIsRecognisedInEveryForm) {
    struct Case {
        std::u16string_view path;
        PathRootKind kind;
        std::u16string_view remainder;
        std::u16string_view server = {};
        std::u16string_view share = {};
    };
    const Case cases[] = {
        {u"", PathRootKind::kRelative, u""},
        {u"a\\b", PathRootKind::kRelative, u"a\\b"},
        {u"1:\\a", PathRootKind::kRelative, u"1:\\a"},
        {u"\\", PathRootKind::kRooted, u""},
        {u"/a", PathRootKind::kRooted, u"a"},
        {u"C:", PathRootKind::kDriveRelative, u""},
        {u"c:a", PathRootKind::kDriveRelative, u"a"},
        {u"C:\\", PathRootKind::kDrive, u""},
        {u"z://a\\", PathRootKind::kDrive, u"a\\"},
        {u"\\\\?\\C:\\a", PathRootKind::kDrive, u"a"},
        {u"\\\\?\\C:", PathRootKind::kDrive, u""},
        {u"\\\\s\\h", PathRootKind::kShare, u"", u"s", u"h"},
        {u"//s//h//a", PathRootKind::kShare, u"a", u"s", u"h"},
        {u"\\\\?\\unc\\s\\h\\a", PathRootKind::kShare, u"a", u"s", u"h"},
        {u"\\\\?\\UNC\\s", PathRootKind::kDevice, u"", u"s"},
        {u"\\\\s", PathRootKind::kDevice, u"", u"s"},
        {u"\\\\", PathRootKind::kDevice, u""},
        {u"\\\\.\\pipe\\x", PathRootKind::kDevice, u"\\\\.\\pipe\\x"},
        {u"\\\\?\\Volume{1}\\a", PathRootKind::kDevice, u"Volume{1}\\a"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.path));
        const PathRoot root = ParsePathRoot(c.path);
        EXPECT_EQ(root.kind, c.kind);
        EXPECT_EQ(root.remainder, c.remainder);
        EXPECT_EQ(root.server, c.server);
        EXPECT_EQ(root.share, c.share);
    }
}

TEST(PathSyntax, FullPathIsResolvedAgainstTheCurrentFolder) {
    struct Case {
        std::u16string_view path;
        std::u16string_view expected;
    };
    const Case cases[] = {
        {u"", u"C:\\one\\two"},
        {u".", u"C:\\one\\two"},
        {u"..", u"C:\\one"},
        {u"..\\..\\..\\x", u"C:\\x"},
        {u"a/b//c", u"C:\\one\\two\\a\\b\\c"},
        {u"a\\", u"C:\\one\\two\\a\\"},
        {u"\\a", u"C:\\a"},
        {u"/", u"C:\\"},
        {u"c:", u"C:\\one\\two"},
        {u"c:x", u"C:\\one\\two\\x"},
        {u"D:x", u"D:\\x"},
        {u"d:", u"d:\\"},
        {u"d:\\a\\..\\..\\b", u"d:\\b"},
        {u"\\\\s\\h", u"\\\\s\\h\\"},
        {u"\\\\s\\h\\..\\a", u"\\\\s\\h\\a"},
        {u"\\\\?\\C:\\a\\.\\b", u"\\\\?\\C:\\a\\b"},
        {u"\\\\?\\UNC\\s\\h\\a", u"\\\\?\\UNC\\s\\h\\a"},
        {u"\\\\.\\pipe\\..", u"\\\\.\\pipe\\.."},
        {u"...", u"C:\\one\\two\\..."},
    };
    for (const Case& c : cases)
        EXPECT_EQ(ResolvePathText(c.path, u"C:\\one\\two"), c.expected) << ToUtf8(c.path);
    EXPECT_EQ(ResolvePathText(u"a", u"Z:\\"), u"Z:\\a");
    EXPECT_EQ(ResolvePathText(u"..\\a", u"\\\\s\\h\\f"), u"\\\\s\\h\\a");
    EXPECT_EQ(ResolvePathText(u"\\a", u"\\\\?\\UNC\\s\\h\\f"), u"\\\\?\\UNC\\s\\h\\a");
}

TEST(PathSyntax, LongPathPrefixIsRemoved) {
    EXPECT_EQ(RemoveLongPathPrefix(u"\\\\?\\C:\\a"), u"C:\\a");
    EXPECT_EQ(RemoveLongPathPrefix(u"\\\\?\\UNC\\s\\h\\a"), u"\\\\s\\h\\a");
    EXPECT_EQ(RemoveLongPathPrefix(u"\\\\s\\?\\a"), u"\\\\s\\?\\a");
    EXPECT_EQ(RemoveLongPathPrefix(u"\\\\?"), u"\\\\?");
}

}  // namespace
}  // namespace kinsort
