// The folders in which programs start.
#pragma once

#include <string>
#include <string_view>

namespace kinsort {

struct ScriptRun;

// The folder in which something stands, without its separator unless it is a drive root; empty for a bare name.
std::u16string FolderOf(std::u16string_view path);
// Where a target starts when "bootdir" is empty or "1"; the option itself otherwise.
std::u16string WorkingFolderOf(ScriptRun& run, std::u16string_view target);

}  // namespace kinsort
