// What the system at large asks of files and folders, by path in the inner form ("Z:\home\me"). The batch engine does
// not use it: it works on open folders through Sys.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/Status.h"

namespace kinsort {

// Attribute bits, the values of the platform the path language was made for.
constexpr uint32_t kAttributeReadOnly = 0x1;
constexpr uint32_t kAttributeHidden = 0x2;  // a dot file
constexpr uint32_t kAttributeSystem = 0x4;
constexpr uint32_t kAttributeDirectory = 0x10;  // a folder, or a link to one
constexpr uint32_t kAttributeArchive = 0x20;
constexpr uint32_t kAttributeNormal = 0x80;
constexpr uint32_t kAttributeReparsePoint = 0x400;  // a link
constexpr uint32_t kInvalidAttributes = 0xFFFFFFFF;

struct FindData {
    std::u16string name;      // bare name, inner form
    uint32_t attributes = 0;  // kAttribute... bits
    uint64_t size = 0;        // bytes; 0 for a folder
    int64_t modifiedNs = 0;   // since 1970 UTC; 0 for a folder, whose time nobody asks for and would cost a call
};

// A running enumeration: the entries that match, in the order of the upper-cased code units of their names (then of the
// units themselves). "." and ".." come first where the pattern matches them, except in the root of a drive, which has
// none. An entry that vanishes meanwhile is left out.
class FolderSearch {
  public:
    virtual ~FolderSearch() = default;
    // Fills `entry` with the next one; false when there is none.
    virtual bool Next(FindData& entry) = 0;
};

class FileSystem {
  public:
    virtual ~FileSystem() = default;

    // Attribute bits of what the path names, links followed; kInvalidAttributes when it does not exist. A link that
    // leads nowhere does exist: a file with the reparse bit.
    virtual uint32_t GetAttributes(std::u16string_view path) = 0;
    // Starts an enumeration. The last component may hold "*" and "?", matched without regard to ASCII case; without a
    // wildcard it finds the one entry; a drive's root is no entry. "*.*" is "*". Doubled separators are one. kNotFound
    // when nothing matches or the folder is not there.
    virtual Result<std::unique_ptr<FolderSearch>> OpenSearch(std::u16string_view pattern) = 0;
    // Creates one folder; kExists when the name is taken, kNotFound when the folder above is missing.
    virtual Status CreateFolder(std::u16string_view path) = 0;
    // The absolute form of a path against the current folder, "." and ".." resolved as text, "/" turned into "\"
    // (text/PathSyntax.h). Fails when the path needs the current folder and that is gone.
    virtual Result<std::u16string> ResolveFullPath(std::u16string_view path) = 0;
    // The current folder, inner form, without a trailing separator unless it is a drive root.
    virtual std::u16string CurrentFolder() = 0;
};

}  // namespace kinsort
