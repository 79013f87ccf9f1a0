// The path operations that everything above works with. A path is text of the inner language: "\" separates, "/" is
// accepted wherever a separator is looked for, and a drive root is three characters with ":" second. Operations that
// only look at the text take only text; the others take the platform service that answers them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/SystemInfo.h"
#include "text/PathSyntax.h"  // RemoveLongPathPrefix
#include "text/Wildcard.h"    // WildcardMatch

namespace kinsort {

// From this length on, in code units, a path is given to the system in its extended form.
constexpr size_t kLongPathLength = 260;

// --- text only -------------------------------------------------------------------------------------------------------

// The extended form of a path of kLongPathLength units or more: "\\?\" before one that begins with an ASCII letter,
// "\\?\UNC" for the first "\" of one that begins with "\\" and has no "?" third. Every other path unchanged.
std::u16string ToLongPathForm(std::u16string_view path);

// True when the text begins with "https://", "http://" or "ftp://", without regard to case.
bool IsUrl(std::u16string_view text);

// Up to and including the last separator, and what follows it; the whole path in both cases when it has none.
std::u16string GetDirectoryPart(std::u16string_view path);
std::u16string GetFileNamePart(std::u16string_view path);

// Only "\" counts here. drive + folder is the path up to and including the last "\"; baseName + extension is the rest,
// the extension beginning at its last ".". So ".profile" is all extension, and "C:x" without "\" all base name.
struct PathParts {
    std::u16string drive;  // "C:", or empty
    std::u16string folder;
    std::u16string baseName;
    std::u16string extension;  // with its "."
};
PathParts SplitPath(std::u16string_view path);

// The empty path stays empty. The separator is "/" in a path that has one somewhere, else "\", and is added unless the
// path ends with it.
std::u16string AddTrailingSeparator(std::u16string_view path);
// Without one final "\" or "/".
std::u16string RemoveTrailingSeparator(std::u16string_view path);
// The same, but a drive root stays whole.
std::u16string RemoveTrailingSeparatorKeepRoot(std::u16string_view path);

// Ascending, without regard to the case of ASCII letters; equal texts keep their order.
void SortNoCase(std::vector<std::u16string>& texts);

// --- asking the file system ------------------------------------------------------------------------------------------

// True when the path names an existing file or folder.
bool FileExists(FileSystem& files, std::u16string_view path);
// True when it names an existing folder, or a link to one.
bool FolderExists(FileSystem& files, std::u16string_view path);

// kAttribute... bits, or kInvalidAttributes when the path does not exist.
uint32_t GetPathAttributes(FileSystem& files, std::u16string_view path);

// Starts an enumeration of a path or pattern; one trailing separator is dropped first unless the path is a drive root.
Result<std::unique_ptr<FolderSearch>> FindFirst(FileSystem& files, std::u16string_view pattern);

// The absolute form. URLs, texts that begin with ":" or ";", and whatever cannot be resolved come back unchanged.
std::u16string GetFullPath(FileSystem& files, std::u16string_view path);

// Creates the folder with every missing parent. kExists when something of that name is there already; otherwise why
// the first folder could not be made, with its path. Parents that were made stay.
Status CreateFolderPath(FileSystem& files, std::u16string_view path);

// The long form of an existing path, asked with the extended form; empty for a path that does not exist. Names here
// have no other form, so it is the path itself.
std::u16string GetLongName(FileSystem& files, std::u16string_view path);

// --- asking the system -----------------------------------------------------------------------------------------------

// The 8.3 form of the path, asked with the extended form; empty when there is none.
std::u16string GetShortName(const SystemInfo& system, std::u16string_view path);

// With a trailing "\".
std::u16string GetSystemDir(const SystemInfo& system);

// The shell's major and minor version; 11.0 for a build of 22000 or more of a major version of 10 or more.
void GetShellVersion(const SystemInfo& system, uint32_t& major, uint32_t& minor);

}  // namespace kinsort
