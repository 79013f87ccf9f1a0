// Which names stand in a folder, for one who asks for many of them: one listing answers faster than a look for each.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>

#include "platform/Sys.h"

namespace kinsort {

// What is asked from a listing is as old as the listing. A volume that takes "A" and "a" for one name may hold a name
// that the listing spells otherwise: "not there" is then refuted by the system when the name is made.
class FolderNames {
  public:
    // Lists the folder when about `questions` of them are to come and the listing is worth it, that is when they are
    // many and the folder does not hold many more names than that.
    FolderNames(Sys& sys, const FileHandle& folder, size_t questions);

    // False when nothing was listed, be it that it was not worth it or that the folder cannot be listed: look for
    // each name instead.
    bool isListed() const { return isListed_; }
    bool Contains(std::string_view name) const { return names_.find(name) != names_.end(); }

  private:
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
    };

    std::unordered_set<std::string, Hash, std::equal_to<>> names_;
    bool isListed_ = false;
};

}  // namespace kinsort
