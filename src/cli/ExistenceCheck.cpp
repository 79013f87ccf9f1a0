#include "cli/ExistenceCheck.h"

#include "text/PathSyntax.h"

namespace kinsort {

Status ExistenceCheck::Look(const std::u16string& path) {
    const size_t end = path.find_last_not_of(u'\\') + 1;
    const size_t separator = std::u16string_view(path).substr(0, end).find_last_of(u'\\');
    const std::u16string_view name = std::u16string_view(path).substr(separator + 1, end - separator - 1);
    if (separator == std::u16string::npos || name.empty() || ParsePathRoot(path).remainder.empty()) {
        return Status::Failure(StatusCode::kInvalid);
    }
    if (Status opened = Open(std::u16string_view(path).substr(0, separator + 1)); !opened.ok()) return opened;
    const std::string stored = services_.codec.NameToStored(name);
    // A selection mostly is of one folder. How long it is is not known here, nor how long the folder: try now and then.
    ++looks_;
    if ((looks_ == 64 || looks_ == 512 || looks_ == 4096) && !(names_ && names_->isListed())) {
        names_.emplace(services_.sys, folder_, looks_ * 8);
    }
    if (names_ && names_->isListed() && names_->Contains(stored)) return {};
    return services_.sys.StatAt(folder_, stored).status();
}

Status ExistenceCheck::Open(std::u16string_view parent) {
    if (parent == parent_ && folder_.isOpen()) return {};
    const Result<std::string> stored = services_.codec.PathToStored(parent);
    if (!stored.ok()) return stored.status();
    Result<FileHandle> opened = services_.sys.OpenFolder(*stored);
    if (!opened.ok()) return opened.status();
    folder_ = std::move(*opened);
    parent_ = parent;
    looks_ = 0;
    names_.reset();
    return {};
}

}  // namespace kinsort
