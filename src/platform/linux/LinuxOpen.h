// How a name or a path becomes a descriptor without ever leaving the folder it was looked up in.
#pragma once

#include <string>
#include <string_view>

#include "platform/Status.h"

namespace kinsort {

// One stored name, ended by NUL for the system, on the stack: the calls that take it are hot.
class StoredName {
  public:
    explicit StoredName(std::string_view name);
    // 0, or the errno that says why this is not the name of one entry: EINVAL for an empty name, ".", ".." or one
    // with a separator or NUL in it, ENAMETOOLONG for one that no volume holds.
    int error() const { return error_; }
    const char* c_str() const { return text_; }

  private:
    static constexpr size_t kMaxLength = 1023;  // volumes that count UTF-16 units hold more than 255 bytes
    int error_ = 0;
    char text_[kMaxLength + 1];
};

// Opens `name` in `folder` and nowhere else; no link is followed, not even the system's magic ones. `flags` as for
// open(2); close-on-exec is added. Returns the descriptor, or -1 with errno: ELOOP where a link stands.
int OpenBeneath(int folder, const char* name, int flags, unsigned mode = 0);

// Opens the folder at an absolute path of any length, links followed. Returns the descriptor, or -1 with errno.
int OpenFolderByPath(std::string_view path);

// The absolute path under which the open folder stands now, of any length; kNotFound for a folder that was removed.
Result<std::string> PathOfFolder(int folder);

// Whether `folder` is the folder `name` in `holder`, or lies anywhere below it.
bool LiesInside(int folder, int holder, const char* name);

}  // namespace kinsort
