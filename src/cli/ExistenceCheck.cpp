#include "cli/ExistenceCheck.h"

#include "text/PathSyntax.h"

namespace kinsort {

Status ExistenceCheck::CheckHasName(std::u16string_view path) {
    const bool isRoot = ParsePathRoot(path).remainder.empty();
    return isRoot ? Status::Failure(StatusCode::kInvalid, 0, u"it has no name to compare; name files or folders")
                  : Status();
}

Status ExistenceCheck::Look(const std::u16string& path) {
    if (Status named = CheckHasName(path); !named.ok()) return named;
    const size_t end = path.find_last_not_of(u'\\') + 1;
    const size_t separator = std::u16string_view(path).substr(0, end).find_last_of(u'\\');
    const std::u16string_view name = std::u16string_view(path).substr(separator + 1, end - separator - 1);
    if (separator == std::u16string::npos || name.empty()) return Status::Failure(StatusCode::kInvalid);
    const auto folder = Open(std::u16string_view(path).substr(0, separator + 1));
    if (!folder.ok()) return folder.status();
    return services_.sys.StatAt(**folder, services_.codec.NameToStored(name)).status();
}

Result<std::shared_ptr<const FileHandle>> ExistenceCheck::Open(std::u16string_view parent) {
    const std::lock_guard lock(mutex_);
    if (parent == parent_ && folder_ != nullptr) return folder_;
    const Result<std::string> stored = services_.codec.PathToStored(parent);
    if (!stored.ok()) return stored.status();
    Result<FileHandle> opened = services_.sys.OpenFolder(*stored);
    if (!opened.ok()) return opened.status();
    folder_ = std::make_shared<const FileHandle>(std::move(*opened));
    parent_ = parent;
    return folder_;
}

}  // namespace kinsort
