// How a path of the inner language is built: its root ("Z:\", "\\server\share\", with or without "\\?\"), then names
// between separators. Pure text; nothing here asks whether a path exists. "\" and "/" both separate, and several
// separators in a row count as one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kinsort {

constexpr bool IsSeparator(char16_t unit) {
    return unit == u'\\' || unit == u'/';
}
constexpr bool IsDriveLetter(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
}

enum class PathRootKind : uint8_t {
    kRelative,       // "a\b", and the empty path
    kRooted,         // "\a": the root of whatever drive is current
    kDrive,          // "C:\a", "\\?\C:\a", and "\\?\C:"
    kDriveRelative,  // "C:a" and "C:"
    kShare,          // "\\server\share\a", "\\?\UNC\server\share\a"
    kDevice,         // "\\.\x", "\\?\Volume{...}\x", "\\server" without a share: no files that we could reach
};

// The views point into the path that was parsed.
struct PathRoot {
    PathRootKind kind = PathRootKind::kRelative;
    bool isExtended = false;        // begins with "\\?\"
    char16_t drive = 0;             // as written; 0 when there is none
    std::u16string_view server;     // kShare only
    std::u16string_view share;      // kShare only
    std::u16string_view remainder;  // what follows the root and the separators after it
};

PathRoot ParsePathRoot(std::u16string_view path);

// The names of `remainder` in order, empty ones and "." left out, ".." taking back the name before it (never more than
// there are): the language resolves dots as text, so "a\link\.." is "a".
std::vector<std::u16string_view> ResolveNames(std::u16string_view remainder);

// The absolute form of `path` against `currentFolder`, itself absolute: root kept in its form, dots resolved, one "\"
// between names, one trailing separator kept when the path had one. A drive-relative path counts from the current
// folder when that is on the same drive, else from the drive's root; the empty path is the current folder. A device
// path comes back unchanged.
std::u16string ResolvePathText(std::u16string_view path, std::u16string_view currentFolder);

// The path without "\\?\" in front: "\\?\C:\a" gives "C:\a", "\\?\UNC\s\h" gives "\\s\h"; everything else unchanged.
std::u16string RemoveLongPathPrefix(std::u16string_view path);

}  // namespace kinsort
