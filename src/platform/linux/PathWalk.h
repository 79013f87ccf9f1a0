// Reaching an entry by a stored path that may be longer than one system call takes.
#pragma once

#include <string>
#include <string_view>

#include "platform/Status.h"
#include "platform/linux/Descriptor.h"

namespace kinsort {

// Where the *at calls find the entry: `text` below `folder`, or from the root when that is AT_FDCWD. `text` is never
// empty and never too long for a call.
struct PathPlace {
    Descriptor keeper;
    std::string text;
    int folder() const;
};

// `path` is absolute. Links on the way are followed; the last name is not looked at.
Result<PathPlace> FindPlace(std::string_view path);

}  // namespace kinsort
