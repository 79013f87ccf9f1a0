// A private folder for one test, removed with everything in it when the test ends.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace kinsort {

class TemporaryFolder {
  public:
    explicit TemporaryFolder(const std::filesystem::path& above = std::filesystem::temp_directory_path())
        : path_(above / "kinsort-XXXXXX") {
        if (mkdtemp(path_.data()) == nullptr) std::abort();
        path_ = std::filesystem::canonical(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    // Stored path, absolute, links resolved, without a separator at its end.
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

}  // namespace kinsort
