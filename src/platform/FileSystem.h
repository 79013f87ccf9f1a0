// What the system at large asks of files and folders, by path in the inner form ("Z:\home\me"). The batch engine does
// not use it: it works on open folders through Sys.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
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

// A file that is read from its beginning to its end; closed when it goes. Failures name the path it was opened by.
class InputFile {
  public:
    virtual ~InputFile() = default;
    // Fills `bytes` as far as the file goes: fewer than asked for only at its end, 0 from then on. The end may come
    // earlier than at the time of opening.
    virtual Result<size_t> Read(std::span<std::byte> bytes) = 0;
};

// A file that is written to. What was handed over is buffered: it reaches the file when enough has come together, and
// by Close() at the latest. Failures name the path it was opened by.
class OutputFile {
  public:
    virtual ~OutputFile() = default;  // closes; a failure then goes unsaid
    // Takes all of `bytes` or fails, kNoSpace above all. After a failure the file is what it was plus some of the
    // bytes, in order, and every further call fails alike.
    virtual Status Write(std::span<const std::byte> bytes) = 0;
    // Writes what is still buffered and lets go of the file. Success when that was done before.
    virtual Status Close() = 0;
};

enum class OutputStart : uint8_t {
    kAppend,  // after what is there
    kEmpty,   // what is there goes, at the moment of opening
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
    // Opens a file for reading and keeps writers out: kLocked while an OutputFile is open on it, and no OutputFile can
    // be opened meanwhile. Programs that do not ask are not kept out. kNotFound; kIsFolder; kAccessDenied.
    virtual Result<std::unique_ptr<InputFile>> OpenInput(std::u16string_view path) = 0;
    // Opens a file for writing, created when missing (the folder must be there), and keeps readers and writers out:
    // kLocked, and the file unchanged, while it is open otherwise.
    virtual Result<std::unique_ptr<OutputFile>> OpenOutput(std::u16string_view path, OutputStart start) = 0;
    // The absolute form of a path against the current folder, "." and ".." resolved as text, "/" turned into "\"
    // (text/PathSyntax.h). Fails when the path needs the current folder and that is gone.
    virtual Result<std::u16string> ResolveFullPath(std::u16string_view path) = 0;
    // The current folder, inner form, without a trailing separator unless it is a drive root.
    virtual std::u16string CurrentFolder() = 0;
};

}  // namespace kinsort
