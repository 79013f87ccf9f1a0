// A file manager that only notes what it was to show.
#pragma once

#include <string>
#include <vector>

#include "platform/FileManager.h"

namespace kinsort {

class RecordingFileManager final : public FileManager {
  public:
    std::vector<std::u16string> folders;
    std::vector<std::u16string> files;
    Status answer;  // to everything

    Status ShowFolder(std::u16string_view path) override {
        folders.emplace_back(path);
        return answer;
    }
    Status ShowFile(std::u16string_view path) override {
        files.emplace_back(path);
        return answer;
    }
};

}  // namespace kinsort
