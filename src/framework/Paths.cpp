#include "framework/Paths.h"

#include <algorithm>

#include "text/AsciiCase.h"

namespace kinsort {

namespace {

constexpr std::u16string_view kSeparators = u"\\/";
constexpr std::u16string_view kUrlPrefixes[] = {u"https://", u"http://", u"ftp://"};
constexpr uint32_t kFirstBuildOf11 = 22000;

// Where the name begins, 0 when the path has no separator.
size_t NameOffset(std::u16string_view path) {
    return path.find_last_of(kSeparators) + 1;
}

// "C:\", "c:/".
bool IsDriveRoot(std::u16string_view path) {
    return path.size() == 3 && path[1] == u':' && IsSeparator(path[2]);
}

bool IsSpecialPath(std::u16string_view text) {
    return text.starts_with(u':') || text.starts_with(u';');
}

}  // namespace

std::u16string ToLongPathForm(std::u16string_view path) {
    if (path.size() >= kLongPathLength) {
        if (IsDriveLetter(path[0])) return u"\\\\?\\" + std::u16string(path);
        if (path.starts_with(u"\\\\") && path[2] != u'?') return u"\\\\?\\UNC" + std::u16string(path.substr(1));
    }
    return std::u16string(path);
}

bool IsUrl(std::u16string_view text) {
    return std::any_of(std::begin(kUrlPrefixes), std::end(kUrlPrefixes),
                       [&](std::u16string_view prefix) { return StartsWithNoCase(text, prefix); });
}

std::u16string GetDirectoryPart(std::u16string_view path) {
    const size_t name = NameOffset(path);
    return std::u16string(name == 0 ? path : path.substr(0, name));
}

std::u16string GetFileNamePart(std::u16string_view path) {
    return std::u16string(path.substr(NameOffset(path)));
}

PathParts SplitPath(std::u16string_view path) {
    const size_t name = path.rfind(u'\\') + 1;
    const size_t drive = name > 2 && path[1] == u':' ? 2 : 0;
    const std::u16string_view rest = path.substr(name);
    const size_t dot = std::min(rest.rfind(u'.'), rest.size());
    return {.drive = std::u16string(path.substr(0, drive)),
            .folder = std::u16string(path.substr(drive, name - drive)),
            .baseName = std::u16string(rest.substr(0, dot)),
            .extension = std::u16string(rest.substr(dot))};
}

std::u16string AddTrailingSeparator(std::u16string_view path) {
    std::u16string out(path);
    const char16_t separator = path.find(u'/') != path.npos ? u'/' : u'\\';
    if (!path.empty() && path.back() != separator) out += separator;
    return out;
}

std::u16string RemoveTrailingSeparator(std::u16string_view path) {
    if (!path.empty() && IsSeparator(path.back())) path.remove_suffix(1);
    return std::u16string(path);
}

std::u16string RemoveTrailingSeparatorKeepRoot(std::u16string_view path) {
    return IsDriveRoot(path) ? std::u16string(path) : RemoveTrailingSeparator(path);
}

void SortNoCase(std::vector<std::u16string>& texts) {
    std::stable_sort(texts.begin(), texts.end(),
                     [](const std::u16string& a, const std::u16string& b) { return CompareNoCase(a, b) < 0; });
}

bool FileExists(FileSystem& files, std::u16string_view path) {
    return GetPathAttributes(files, path) != kInvalidAttributes;
}

bool FolderExists(FileSystem& files, std::u16string_view path) {
    const uint32_t attributes = GetPathAttributes(files, path);
    return attributes != kInvalidAttributes && (attributes & kAttributeDirectory) != 0;
}

uint32_t GetPathAttributes(FileSystem& files, std::u16string_view path) {
    // The empty path names nothing, though resolving it gives the current folder.
    return path.empty() ? kInvalidAttributes : files.GetAttributes(ToLongPathForm(path));
}

Result<std::unique_ptr<FolderSearch>> FindFirst(FileSystem& files, std::u16string_view pattern) {
    return files.OpenSearch(RemoveTrailingSeparatorKeepRoot(ToLongPathForm(pattern)));
}

std::u16string GetFullPath(FileSystem& files, std::u16string_view path) {
    if (IsUrl(path) || IsSpecialPath(path)) return std::u16string(path);
    Result<std::u16string> full = files.ResolveFullPath(path);
    return full.ok() ? std::move(*full) : std::u16string(path);
}

Status CreateFolderPath(FileSystem& files, std::u16string_view path) {
    if (path.empty()) return Status::Failure(StatusCode::kInvalid);
    Result<std::u16string> full = files.ResolveFullPath(path);
    if (!full.ok()) return full.status().At(std::u16string(path));

    // Upwards until a folder can be made or is there, then down again.
    std::vector<std::u16string> missing = {RemoveTrailingSeparatorKeepRoot(*full)};
    Status status = files.CreateFolder(ToLongPathForm(missing.back()));
    while (status.code() == StatusCode::kNotFound) {
        const std::u16string& below = missing.back();
        const size_t cut = below.find_last_of(kSeparators);
        if (cut == below.npos || ResolveNames(ParsePathRoot(below).remainder).empty()) return status;
        missing.push_back(below.substr(0, cut));
        status = files.CreateFolder(ToLongPathForm(missing.back()));
    }
    for (missing.pop_back(); !missing.empty(); missing.pop_back()) {
        if (!status.ok() && status.code() != StatusCode::kExists) return status;
        status = files.CreateFolder(ToLongPathForm(missing.back()));
    }
    return status;
}

std::u16string GetLongName(FileSystem& files, std::u16string_view path) {
    return FileExists(files, path) ? ToLongPathForm(path) : std::u16string();
}

std::u16string GetShortName(const SystemInfo& system, std::u16string_view path) {
    return system.ShortPath(ToLongPathForm(path));
}

std::u16string GetSystemDir(const SystemInfo& system) {
    return AddTrailingSeparator(system.SystemFolder());
}

void GetShellVersion(const SystemInfo& system, uint32_t& major, uint32_t& minor) {
    const ProgramVersion version = system.ShellVersion();
    const bool is11 = version.major >= 10 && version.build >= kFirstBuildOf11;
    major = is11 ? 11 : version.major;
    minor = is11 ? 0 : version.minor;
}

}  // namespace kinsort
