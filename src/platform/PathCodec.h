// The one place where the path language of the system (drive letters, backslashes, UTF-16) meets the names that the
// file system stores. On a platform whose own paths are that language the codec only copies.
#pragma once

#include <string>
#include <string_view>

#include "platform/Status.h"

namespace kinsort {

class PathCodec {
  public:
    virtual ~PathCodec() = default;

    // One name, without separators. Both directions are total and each other's inverse on every name that a file
    // system can hold; no two stored names give the same text.
    virtual std::u16string NameToInner(std::string_view storedName) const = 0;
    virtual std::string NameToStored(std::u16string_view innerName) const = 0;

    // A path as the system takes it ("/home/me/a.txt") to the inner form ("Z:\home\me\a.txt") and back. The stored path
    // need not exist. A relative stored path gives a relative inner path.
    virtual std::u16string PathToInner(std::string_view storedPath) const = 0;
    // Fails with kInvalid for a path that names no drive or share, kNotFound for a drive or share that is not set up.
    // Drives and shares are resolved on the way; `\\?\` forms are accepted; "/" counts as a separator.
    virtual Result<std::string> PathToStored(std::u16string_view innerPath) const = 0;

    // What people see: the native path as text ("/home/me/Pictures"), with what cannot be shown escaped as \xNN.
    virtual std::string PathForPeople(std::u16string_view innerPath) const = 0;
};

}  // namespace kinsort
