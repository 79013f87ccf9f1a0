#include "framework/Paths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/fake/MemoryFileSystem.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using testing::ElementsAre;

std::u16string Long(std::u16string_view start, size_t length) {
    std::u16string path(start);
    while (path.size() < length)
        path += path.size() % 50 == 49 ? u'\\' : u'x';
    return path;
}

TEST(Paths, LongFormBeginsAt260) {
    EXPECT_EQ(ToLongPathForm(Long(u"C:\\", 259)), Long(u"C:\\", 259));
    EXPECT_EQ(ToLongPathForm(Long(u"C:\\", 260)), u"\\\\?\\" + Long(u"C:\\", 260));
    const std::u16string share = Long(u"\\\\server\\share\\", 300);
    EXPECT_EQ(ToLongPathForm(share), u"\\\\?\\UNC" + share.substr(1));
    EXPECT_EQ(RemoveLongPathPrefix(ToLongPathForm(share)), share);
    for (const char16_t* start : {u"\\\\?\\C:\\", u"\\folder\\", u"::{", u"\u3042\\"}) {
        EXPECT_EQ(ToLongPathForm(Long(start, 300)), Long(start, 300));
    }
    EXPECT_EQ(ToLongPathForm(u""), u"");
}

TEST(Paths, PartsOfAPath) {
    struct Case {
        std::u16string_view path, directory, name;
        PathParts parts;
    };
    const Case cases[] = {
        {u"C:\\a\\b.tar.gz", u"C:\\a\\", u"b.tar.gz", {u"C:", u"\\a\\", u"b.tar", u".gz"}},
        {u"C:\\", u"C:\\", u"", {u"C:", u"\\", u"", u""}},
        {u"C:/a/b.c", u"C:/a/", u"b.c", {u"", u"", u"C:/a/b", u".c"}},
        {u"C:\\x.y/b", u"C:\\x.y/", u"b", {u"C:", u"\\", u"x", u".y/b"}},
        {u"b", u"b", u"b", {u"", u"", u"b", u""}},
        {u"", u"", u"", {u"", u"", u"", u""}},
        {u"\\.profile", u"\\", u".profile", {u"", u"\\", u"", u".profile"}},
        {u"\\\\s\\h.x\\a", u"\\\\s\\h.x\\", u"a", {u"", u"\\\\s\\h.x\\", u"a", u""}},
        {u"C:a.b", u"C:a.b", u"C:a.b", {u"", u"", u"C:a", u".b"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.path));
        EXPECT_EQ(GetDirectoryPart(c.path), c.directory);
        EXPECT_EQ(GetFileNamePart(c.path), c.name);
        const PathParts parts = SplitPath(c.path);
        EXPECT_EQ(parts.drive, c.parts.drive);
        EXPECT_EQ(parts.folder, c.parts.folder);
        EXPECT_EQ(parts.baseName, c.parts.baseName);
        EXPECT_EQ(parts.extension, c.parts.extension);
    }
}

TEST(Paths, TrailingSeparators) {
    struct Case {
        std::u16string_view path, added, removed, removedKeepRoot;
    };
    const Case cases[] = {
        {u"", u"", u"", u""},
        {u"C:\\a", u"C:\\a\\", u"C:\\a", u"C:\\a"},
        {u"C:\\a\\", u"C:\\a\\", u"C:\\a", u"C:\\a"},
        {u"C:/a/b", u"C:/a/b/", u"C:/a/b", u"C:/a/b"},
        {u"C:/a\\", u"C:/a\\/", u"C:/a", u"C:/a"},
        {u"C:\\", u"C:\\", u"C:", u"C:\\"},
        {u"C:/", u"C:/", u"C:", u"C:/"},
        {u"C:\\\\", u"C:\\\\", u"C:\\", u"C:\\"},
        {u"\\", u"\\", u"", u""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(ToUtf8(c.path));
        EXPECT_EQ(AddTrailingSeparator(c.path), c.added);
        EXPECT_EQ(RemoveTrailingSeparator(c.path), c.removed);
        EXPECT_EQ(RemoveTrailingSeparatorKeepRoot(c.path), c.removedKeepRoot);
    }
}

TEST(Paths, FullPathLeavesUrlsAndSpecialPathsAlone) {
    MemoryFileSystem files;
    files.SetCurrentFolder(u"Z:\\home");
    for (const char16_t* kept : {u"HTTP://x", u"https://x/../y", u"fTp://", u"::{something}", u";x", u":"}) {
        EXPECT_EQ(GetFullPath(files, kept), kept);
    }
    EXPECT_EQ(GetFullPath(files, u"http:/x"), u"Z:\\home\\http:\\x");
    EXPECT_EQ(GetFullPath(files, u""), u"Z:\\home");
    EXPECT_EQ(GetFullPath(files, u"..\\etc/"), u"Z:\\etc\\");
    EXPECT_TRUE(IsUrl(u"Ftp://x"));
    EXPECT_FALSE(IsUrl(u"ftp:/x"));
    EXPECT_FALSE(IsUrl(u" http://x"));
}

TEST(Paths, ExistenceAndEnumerationAskWithTheLongForm) {
    MemoryFileSystem files;
    const std::u16string folder = Long(u"Z:\\deep\\", 400) + u"y";
    files.AddFile(folder + u"\\a.txt");
    EXPECT_TRUE(FileExists(files, folder + u"\\a.txt"));
    EXPECT_FALSE(FileExists(files, folder + u"\\b.txt"));
    EXPECT_FALSE(FileExists(files, u""));
    EXPECT_EQ(GetPathAttributes(files, folder), kAttributeDirectory);
    EXPECT_EQ(GetLongName(files, u"Z:\\deep"), u"Z:\\deep");
    EXPECT_EQ(GetLongName(files, folder), u"\\\\?\\" + folder);
    EXPECT_EQ(GetLongName(files, u"Z:\\none"), u"");

    FindData entry;
    for (const std::u16string& pattern : {folder + u"\\", folder}) {
        Result<std::unique_ptr<FolderSearch>> search = FindFirst(files, pattern);
        ASSERT_TRUE(search.ok() && (*search)->Next(entry));
        EXPECT_EQ(entry.attributes, kAttributeDirectory);
    }
    EXPECT_TRUE((*FindFirst(files, folder + u"\\*.TXT"))->Next(entry));
    EXPECT_EQ(entry.name, u"a.txt");
    EXPECT_EQ(FindFirst(files, u"Z:\\").code(), StatusCode::kNotFound);
}

TEST(Paths, FolderPathsAreCreatedWhole) {
    MemoryFileSystem files;
    files.SetCurrentFolder(u"Z:\\home");
    files.AddFolder(u"Z:\\home");
    files.AddFile(u"Z:\\home\\file");
    EXPECT_TRUE(CreateFolderPath(files, u"Z:\\a\\b\\c\\\\").ok());
    EXPECT_EQ(CreateFolderPath(files, u"Z:\\a\\b\\").code(), StatusCode::kExists);
    EXPECT_EQ(CreateFolderPath(files, u"Z:\\").code(), StatusCode::kExists);
    EXPECT_TRUE(CreateFolderPath(files, u"x/y").ok());
    EXPECT_EQ(GetPathAttributes(files, u"Z:\\home\\x\\y"), kAttributeDirectory);
    EXPECT_TRUE(CreateFolderPath(files, Long(u"Z:\\a\\", 700)).ok());
    EXPECT_TRUE(FileExists(files, Long(u"Z:\\a\\", 700)));

    EXPECT_EQ(CreateFolderPath(files, u"").code(), StatusCode::kInvalid);
    EXPECT_EQ(CreateFolderPath(files, u"Q:\\a\\b").code(), StatusCode::kNotFound);
    EXPECT_EQ(CreateFolderPath(files, u"Z:\\home\\file\\a").code(), StatusCode::kNotFolder);
    files.DenyFolder(u"Z:\\a");
    const Status denied = CreateFolderPath(files, u"Z:\\a\\new\\newer");
    EXPECT_EQ(denied.code(), StatusCode::kAccessDenied);
    EXPECT_EQ(denied.path(), u"Z:\\a\\new");
}

TEST(Paths, SortingIgnoresCase) {
    std::vector<std::u16string> texts = {u"b", u"B", u"_", u"a10", u"A1", u"", u"\u00C9", u"z"};
    SortNoCase(texts);
    EXPECT_THAT(texts, ElementsAre(u"", u"_", u"A1", u"a10", u"b", u"B", u"z", u"\u00C9"));
}

struct FixedSystem final : SystemInfo {
    std::u16string SystemFolder() const override { return u"Z:\\usr\\lib"; }
    ProgramVersion ShellVersion() const override { return version; }
    std::u16string ShortPath(std::u16string_view path) const override { return std::u16string(path.substr(0, 7)); }
    ProgramVersion version;
};

TEST(Paths, SystemAnswers) {
    struct Case {
        ProgramVersion version;
        uint32_t major, minor;
    };
    const Case cases[] = {{{10, 0, 22000}, 11, 0}, {{10, 0, 21999}, 10, 0}, {{6, 1, 30000}, 6, 1}, {{11, 5, 0}, 11, 5}};
    FixedSystem system;
    for (const Case& c : cases) {
        system.version = c.version;
        uint32_t major = 0, minor = 0;
        GetShellVersion(system, major, minor);
        EXPECT_EQ(major, c.major) << c.version.build;
        EXPECT_EQ(minor, c.minor) << c.version.build;
    }
    EXPECT_EQ(GetSystemDir(system), u"Z:\\usr\\lib\\");
    EXPECT_EQ(GetShortName(system, Long(u"C:\\", 300)), u"\\\\?\\C:\\");
}

}  // namespace
}  // namespace kinsort
