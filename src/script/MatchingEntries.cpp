#include "script/MatchingEntries.h"

#include "framework/Paths.h"

namespace kinsort {

void ListMatchingEntries(FileSystem& files, std::u16string_view folderOrPattern, std::vector<std::u16string>& entries) {
    std::u16string pattern(folderOrPattern);
    if (pattern.find_first_of(u"*?") == pattern.npos) {
        pattern = AddTrailingSeparator(RemoveTrailingSeparator(pattern)) + u"*";
    }
    const std::u16string folder = pattern.substr(0, pattern.find_last_of(u"\\/") + 1);
    Result<std::unique_ptr<FolderSearch>> search = FindFirst(files, pattern);
    if (!search.ok()) return;
    for (FindData entry; (*search)->Next(entry);) {
        if (entry.name == u"." || entry.name == u"..") continue;
        entries.push_back(folder + entry.name);
        if (entries.size() > kMaxMatchingEntries) return;
    }
}

}  // namespace kinsort
