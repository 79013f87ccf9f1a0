// Showing people a place among their files.
#pragma once

#include <string_view>

#include "platform/Status.h"

namespace kinsort {

class FileManager {
  public:
    virtual ~FileManager() = default;

    // Opens the user's file manager at a folder, or at the folder of a file with the file selected where it can do
    // that. Paths are full ones of the inner form. kNotFound when the path does not exist; else what the opener says
    // (platform/DesktopOpener.h).
    virtual Status ShowFolder(std::u16string_view path) = 0;
    virtual Status ShowFile(std::u16string_view path) = 0;
};

}  // namespace kinsort
