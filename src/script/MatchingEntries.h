// The files and folders that a script names by a folder or a pattern.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"

namespace kinsort {

// No more entries are listed once so many are held.
constexpr size_t kMaxMatchingEntries = 1'000;

// Appends the entries of a folder, or those that match a pattern of "*" and "?" in the last part: files and folders
// alike, in the order of a listing, without "." and "..", each behind the folder as it was written. Stops as soon as
// `entries`, with what it held before, has more than kMaxMatchingEntries. Nothing is appended for a folder that is not
// there.
void ListMatchingEntries(FileSystem& files, std::u16string_view folderOrPattern, std::vector<std::u16string>& entries);

}  // namespace kinsort
