// Looks whether items exist, links not followed; keeps the last folder open, since selections share one.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "cli/CliContext.h"

namespace kinsort {

class ExistenceCheck {
  public:
    explicit ExistenceCheck(CliServices& services) : services_(services) {}

    // kInvalid for a root, which has no name.
    static Status CheckHasName(std::u16string_view path);
    // Success when something stands at `path` (inner form, absolute), else why not; kInvalid for a root, which has no
    // name in a folder. On any thread.
    Status Look(const std::u16string& path);

  private:
    Result<std::shared_ptr<const FileHandle>> Open(std::u16string_view parent);

    CliServices& services_;
    std::mutex mutex_;  // of what follows
    std::shared_ptr<const FileHandle> folder_;
    std::u16string parent_;
};

}  // namespace kinsort
