#include "platform/linux/PathWalk.h"

#include <algorithm>

#include <errno.h>
#include <fcntl.h>
#include <limits.h>

#include "platform/linux/LinuxError.h"

namespace kinsort {

namespace {

constexpr size_t kMostAtOnce = PATH_MAX - 1;

}  // namespace

int PathPlace::folder() const {
    return keeper.isOpen() ? keeper.get() : AT_FDCWD;
}

Result<PathPlace> FindPlace(std::string_view path) {
    PathPlace place;
    while (path.size() > kMostAtOnce) {
        const size_t cut = path.rfind('/', kMostAtOnce);
        if (cut == std::string_view::npos || cut == 0) return StatusFromErrno(ENAMETOOLONG);
        const std::string head(path.substr(0, cut));
        Descriptor next(openat(place.folder(), head.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!next.isOpen()) return StatusFromErrno(errno);
        place.keeper = std::move(next);
        path.remove_prefix(cut);
        path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
        if (path.empty()) path = ".";
    }
    place.text = path;
    return place;
}

}  // namespace kinsort
