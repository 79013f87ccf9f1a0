#include "fileop/Batch.h"

#include <charconv>

namespace kinsort {

namespace {

constexpr std::string_view kJournalSuffix = ".batch";
constexpr std::string_view kKeptSuffix = ".kept";
constexpr size_t kIdDigits = 16;

std::string HexOf(uint64_t number, size_t digits = kIdDigits) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text(digits, '0');
    for (size_t i = digits; i-- > 0; number >>= 4)
        text[i] = kDigits[number & 15];
    return text;
}

}  // namespace

std::string KeptName(size_t stepIndex) {
    return std::to_string(stepIndex);
}

std::string TemporaryName(BatchId id, size_t stepIndex) {
    return ".kinsort-" + HexOf(id) + "-" + std::to_string(stepIndex) + ".part";
}

std::string JournalName(BatchId id) {
    return HexOf(id).append(kJournalSuffix);
}

std::string KeptFolderName(const BatchHeader& header) {
    std::string name = HexOf(header.id);
    name.append("-").append(HexOf(header.user, 8)).append("-").append(HexOf(static_cast<uint64_t>(header.startedNs)));
    return name.append(kKeptSuffix);
}

BatchId IdOfJournalName(std::string_view name) {
    if (name.size() != kIdDigits + kJournalSuffix.size() || !name.ends_with(kJournalSuffix)) return 0;
    BatchId id = 0;
    const char* end = name.data() + kIdDigits;
    const auto [stop, error] = std::from_chars(name.data(), end, id, 16);
    const bool isOurs = error == std::errc{} && stop == end && JournalName(id) == name;
    return isOurs && id != UINT64_MAX ? id : 0;  // behind the last number there is no next one
}

std::string StoredPathOf(const std::vector<FolderRecord>& folders, uint32_t index) {
    const FolderRecord& folder = folders[index];
    if (folder.parent == kNoIndex) return folder.name;
    std::string path = StoredPathOf(folders, folder.parent);
    if (!path.ends_with('/')) path += '/';
    return path + folder.name;
}

std::u16string InnerPathOf(const PathCodec& codec, const std::vector<FolderRecord>& folders, const Place& place) {
    if (place.folder == kNoIndex) return codec.NameToInner(place.name);
    std::u16string path = codec.PathToInner(StoredPathOf(folders, place.folder));
    if (place.name.empty()) return path;
    if (!path.ends_with(u'\\')) path += u'\\';
    return path + codec.NameToInner(place.name);
}

}  // namespace kinsort
