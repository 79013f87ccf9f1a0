#include "cli/UserFile.h"

#include <span>
#include <utility>

namespace kinsort {
namespace {

struct PathParts {
    std::string folder;
    std::string name;
};

PathParts Parts(const std::string& path) {
    const size_t end = path.rfind('/');
    return {end == 0 ? "/" : path.substr(0, end), path.substr(end + 1)};
}

Result<FileHandle> OpenOrMakeFolder(Sys& sys, const std::string& path) {
    Result<FileHandle> folder = sys.OpenFolder(path);
    if (folder.code() != StatusCode::kNotFound || path == "/") return folder;
    const PathParts parts = Parts(path);
    const Result<FileHandle> above = OpenOrMakeFolder(sys, parts.folder);
    if (!above.ok()) return above.status();
    Status made = sys.MakeFolderAt(*above, parts.name, 0755);
    if (!made.ok() && made.code() != StatusCode::kExists) return made;
    return sys.OpenFolder(path);
}

Status WriteAll(Sys& sys, const FileHandle& file, std::string_view content) {
    std::span<const std::byte> rest = std::as_bytes(std::span(content));
    uint64_t offset = 0;
    while (!rest.empty()) {
        const Result<size_t> put = sys.Write(file, offset, rest);
        if (put.code() == StatusCode::kInterrupted) continue;
        if (!put.ok()) return put.status();
        offset += *put;
        rest = rest.subspan(*put);
    }
    Status sized = sys.SetSize(file, content.size());
    return sized.ok() ? sys.Sync(file) : sized;
}

Status CreateWhole(Sys& sys, const FileHandle& folder, const std::string& name, std::string_view content,
                   uint32_t mode) {
    Result<FileHandle> file = sys.CreateFileAt(folder, name, mode);
    if (!file.ok()) return file.status();
    Status status = WriteAll(sys, *file, content);
    if (status.ok()) status = file->Close();
    if (!status.ok()) (void)sys.RemoveFileAt(folder, name);
    return status;
}

Status ReplaceWhole(Sys& sys, const FileHandle& folder, const std::string& name, std::string_view content,
                    uint32_t mode) {
    const std::string newName = "." + name + ".kinsort-new";
    (void)sys.RemoveFileAt(folder, newName);  // of a run that was killed
    Status status = CreateWhole(sys, folder, newName, content, mode);
    if (!status.ok()) return status;
    status = sys.Exchange(folder, newName, folder, name);
    (void)sys.RemoveFileAt(folder, newName);
    if (status.code() != StatusCode::kUnsupported) return status;
    // A volume that cannot swap two names: written in place.
    Result<FileHandle> file = sys.OpenForWrite(folder, name);
    return file.ok() ? WriteAll(sys, *file, content) : file.status();
}

}  // namespace

Status WriteUserFile(Sys& sys, const std::string& path, std::string_view content, uint32_t mode) {
    std::string place = path;
    constexpr int kMaxLinks = 16;
    for (int links = 0; links <= kMaxLinks; ++links) {
        const PathParts parts = Parts(place);
        const Result<FileHandle> folder = OpenOrMakeFolder(sys, parts.folder);
        if (!folder.ok()) return folder.status();
        const Result<FileInfo> info = sys.StatAt(*folder, parts.name);
        if (info.code() == StatusCode::kNotFound) return CreateWhole(sys, *folder, parts.name, content, mode);
        if (!info.ok()) return info.status();
        if (info->kind != FileKind::kLink) return ReplaceWhole(sys, *folder, parts.name, content, info->mode & 07777);
        const Result<std::string> target = sys.ReadLinkAt(*folder, parts.name);
        if (!target.ok()) return target.status();
        place = target->starts_with('/') ? *target : parts.folder + "/" + *target;
    }
    return Status::Failure(StatusCode::kIsLink);
}

Status RemoveUserFile(Sys& sys, const std::string& path) {
    const PathParts parts = Parts(path);
    const Result<FileHandle> folder = sys.OpenFolder(parts.folder);
    return folder.ok() ? sys.RemoveFileAt(*folder, parts.name) : folder.status();
}

}  // namespace kinsort
