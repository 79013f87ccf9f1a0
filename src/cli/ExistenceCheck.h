// Looks whether items exist, links not followed; keeps the last folder open, since selections share one.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cli/CliContext.h"
#include "fileop/FolderNames.h"

namespace kinsort {

class ExistenceCheck {
  public:
    explicit ExistenceCheck(CliServices& services) : services_(services) {}

    // Success when something stands at `path` (inner form, absolute), else why not; kInvalid for a root, which has no
    // name in a folder.
    Status Look(const std::u16string& path);

  private:
    Status Open(std::u16string_view parent);

    CliServices& services_;
    FileHandle folder_;
    std::u16string parent_;
    size_t looks_ = 0;                  // in this folder
    std::optional<FolderNames> names_;  // of this folder, once it was asked about often
};

}  // namespace kinsort
