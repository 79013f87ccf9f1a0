#include "platform/fake/MemoryFileSystem.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "text/AsciiCase.h"
#include "text/PathSyntax.h"
#include "text/Wildcard.h"

namespace kinsort {

namespace {

class Listing final : public FolderSearch {
  public:
    explicit Listing(std::vector<FindData> entries) : entries_(std::move(entries)) {}
    bool Next(FindData& entry) override {
        if (next_ == entries_.size()) return false;
        entry = entries_[next_++];
        return true;
    }

  private:
    std::vector<FindData> entries_;
    size_t next_ = 0;
};

class MemoryInput final : public InputFile {
  public:
    explicit MemoryInput(std::shared_ptr<MemoryFile> file) : file_(std::move(file)) { ++file_->readers; }
    ~MemoryInput() override { --file_->readers; }
    Result<size_t> Read(std::span<std::byte> bytes) override {
        const std::string_view rest = std::string_view(file_->bytes).substr(std::min(next_, file_->bytes.size()));
        const size_t count = std::min(rest.size(), bytes.size());
        std::copy_n(reinterpret_cast<const std::byte*>(rest.data()), count, bytes.begin());
        next_ += count;
        return count;
    }

  private:
    std::shared_ptr<MemoryFile> file_;
    size_t next_ = 0;
};

class MemoryOutput final : public OutputFile {
  public:
    MemoryOutput(std::shared_ptr<MemoryFile> file, std::u16string_view path) : file_(std::move(file)), path_(path) {
        file_->hasWriter = true;
    }
    ~MemoryOutput() override { static_cast<void>(Close()); }
    Status Write(std::span<const std::byte> bytes) override {
        if (file_ == nullptr) return Status::Failure(StatusCode::kInvalid).At(path_);
        if (file_->isFull) return Status::Failure(StatusCode::kNoSpace, 28, u"No space left on device").At(path_);
        file_->bytes.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        return {};
    }
    Status Close() override {
        if (file_ != nullptr) file_->hasWriter = false;
        file_.reset();
        return {};
    }

  private:
    std::shared_ptr<MemoryFile> file_;
    std::u16string path_;
};

FindData FolderData(std::u16string_view name) {
    FindData data;
    data.name = name;
    data.attributes = kAttributeDirectory;
    if (name.starts_with(u'.') && name != u"." && name != u"..") data.attributes |= kAttributeHidden;
    return data;
}

std::u16string_view ParentOf(std::u16string_view key) {
    const size_t cut = key.rfind(u'\\');
    // "\\server\share" has no parent.
    const bool isRoot = cut == std::u16string_view::npos || (key.starts_with(u"\\\\") && key.find(u'\\', 2) == cut);
    return isRoot ? std::u16string_view() : key.substr(0, cut);
}

std::u16string_view NameOf(std::u16string_view key) {
    return key.substr(key.rfind(u'\\') + 1);
}

bool StandsBefore(const FindData& a, const FindData& b) {
    const std::u16string upperA = AsciiUpper(a.name);
    const std::u16string upperB = AsciiUpper(b.name);
    return upperA != upperB ? upperA < upperB : a.name < b.name;
}

}  // namespace

std::u16string MemoryFileSystem::KeyOf(std::u16string_view path) const {
    const std::u16string full = RemoveLongPathPrefix(ResolvePathText(path, current_));
    const PathRoot root = ParsePathRoot(full);
    std::u16string key;
    if (root.kind == PathRootKind::kShare) {
        key.append(u"\\\\").append(root.server).append(u"\\").append(root.share);
    } else if (root.drive != 0) {
        key += AsciiUpper(root.drive);
        key += u':';
    } else {
        return {};
    }
    for (const std::u16string_view name : ResolveNames(root.remainder))
        key.append(u"\\").append(name);
    return key;
}

void MemoryFileSystem::AddEntry(const std::u16string& key, const FindData& data) {
    if (const std::u16string_view parent = ParentOf(key); !parent.empty() && !isFolder(std::u16string(parent))) {
        AddEntry(std::u16string(parent), FolderData(NameOf(parent)));
    }
    entries_[key] = data;
}

bool MemoryFileSystem::isFolder(const std::u16string& key) const {
    const auto found = entries_.find(key);
    return key == u"Z:" || (found != entries_.end() && (found->second.attributes & kAttributeDirectory) != 0);
}

void MemoryFileSystem::AddFolder(std::u16string_view path, uint32_t extraAttributes) {
    const std::u16string key = KeyOf(path);
    FindData data = FolderData(NameOf(key));
    data.attributes |= extraAttributes;
    AddEntry(key, data);
}

void MemoryFileSystem::AddFile(std::u16string_view path, uint64_t size, int64_t modifiedNs, uint32_t extraAttributes) {
    const std::u16string key = KeyOf(path);
    FindData data;
    data.name = NameOf(key);
    data.attributes = kAttributeArchive | extraAttributes;
    if (data.name.starts_with(u'.')) data.attributes |= kAttributeHidden;
    data.size = size;
    data.modifiedNs = modifiedNs;
    AddEntry(key, data);
}

MemoryFile& MemoryFileSystem::FileAt(const std::u16string& key) {
    std::shared_ptr<MemoryFile>& file = files_[key];
    if (file == nullptr) file = std::make_shared<MemoryFile>(MemoryFile{std::string(entries_.at(key).size, '\0')});
    return *file;
}

void MemoryFileSystem::SetContent(std::u16string_view path, std::string_view bytes) {
    AddFile(path, bytes.size());
    FileAt(KeyOf(path)).bytes = bytes;
}

std::string MemoryFileSystem::ContentOf(std::u16string_view path) const {
    const auto file = files_.find(KeyOf(path));
    return file == files_.end() ? std::string() : file->second->bytes;
}

void MemoryFileSystem::FillUp(std::u16string_view path) {
    FileAt(KeyOf(path)).isFull = true;
}

void MemoryFileSystem::Remove(std::u16string_view path) {
    const std::u16string key = KeyOf(path);
    const auto isInside = [&](const auto& entry) { return entry.first == key || entry.first.starts_with(key + u'\\'); };
    std::erase_if(entries_, isInside);
    std::erase_if(files_, isInside);
}

void MemoryFileSystem::SetCurrentFolder(std::u16string_view path) {
    current_ = ResolvePathText(path, current_);
}

void MemoryFileSystem::DenyFolder(std::u16string_view path) {
    denied_.insert(KeyOf(path));
}

uint32_t MemoryFileSystem::GetAttributes(std::u16string_view path) {
    const std::u16string key = KeyOf(path);
    const auto found = entries_.find(key);
    if (found != entries_.end()) return found->second.attributes;
    return isFolder(key) ? kAttributeDirectory : kInvalidAttributes;
}

Result<std::unique_ptr<FolderSearch>> MemoryFileSystem::OpenSearch(std::u16string_view pattern) {
    const Status notFound = Status::Failure(StatusCode::kNotFound).At(std::u16string(pattern));
    const std::u16string key = KeyOf(pattern);
    const std::u16string parent(ParentOf(key));
    if (parent.empty() || IsSeparator(pattern.back())) return notFound;
    const std::u16string_view last = NameOf(key);
    std::vector<FindData> found;
    if (last.find_first_of(u"*?") == std::u16string_view::npos) {
        if (!entries_.contains(key)) return notFound;
        found.push_back(entries_.at(key));
        return std::unique_ptr<FolderSearch>(std::make_unique<Listing>(std::move(found)));
    }
    if (denied_.contains(parent)) return Status::Failure(StatusCode::kAccessDenied).At(std::u16string(pattern));
    for (const auto& [path, data] : entries_) {
        if (ParentOf(path) == parent && NameMatchesPattern(data.name, last)) found.push_back(data);
    }
    std::sort(found.begin(), found.end(), StandsBefore);
    if (!ParentOf(parent).empty()) {
        for (const std::u16string_view dots : {std::u16string_view(u".."), std::u16string_view(u".")}) {
            if (NameMatchesPattern(dots, last) && isFolder(parent)) found.insert(found.begin(), FolderData(dots));
        }
    }
    if (found.empty()) return notFound;
    return std::unique_ptr<FolderSearch>(std::make_unique<Listing>(std::move(found)));
}

Status MemoryFileSystem::CreateFolder(std::u16string_view path) {
    const std::u16string key = KeyOf(path);
    const std::u16string parent(ParentOf(key));
    StatusCode code = StatusCode::kOk;
    if (isFolder(key) || entries_.contains(key)) {
        code = StatusCode::kExists;
    } else if (parent.empty() || !isFolder(parent)) {
        code = parent.empty() || !entries_.contains(parent) ? StatusCode::kNotFound : StatusCode::kNotFolder;
    } else if (denied_.contains(parent)) {
        code = StatusCode::kAccessDenied;
    }
    if (code != StatusCode::kOk) return Status::Failure(code).At(std::u16string(path));
    AddEntry(key, FolderData(NameOf(key)));
    return {};
}

Result<std::unique_ptr<InputFile>> MemoryFileSystem::OpenInput(std::u16string_view path) {
    const std::u16string key = KeyOf(path);
    StatusCode code = StatusCode::kOk;
    if (isFolder(key)) {
        code = StatusCode::kIsFolder;
    } else if (!entries_.contains(key)) {
        code = StatusCode::kNotFound;
    } else if (denied_.contains(std::u16string(ParentOf(key)))) {
        code = StatusCode::kAccessDenied;
    } else if (FileAt(key).hasWriter) {
        code = StatusCode::kLocked;
    }
    if (code != StatusCode::kOk) return Status::Failure(code).At(std::u16string(path));
    return std::unique_ptr<InputFile>(std::make_unique<MemoryInput>(files_.at(key)));
}

Result<std::unique_ptr<OutputFile>> MemoryFileSystem::OpenOutput(std::u16string_view path, OutputStart start) {
    const std::u16string key = KeyOf(path);
    const std::u16string parent(ParentOf(key));
    StatusCode code = StatusCode::kOk;
    if (isFolder(key)) {
        code = StatusCode::kIsFolder;
    } else if (!isFolder(parent)) {
        code = entries_.contains(parent) ? StatusCode::kNotFolder : StatusCode::kNotFound;
    } else if (denied_.contains(parent)) {
        code = StatusCode::kAccessDenied;
    }
    if (code == StatusCode::kOk && !entries_.contains(key)) AddFile(path);
    if (code == StatusCode::kOk && (FileAt(key).hasWriter || FileAt(key).readers > 0)) code = StatusCode::kLocked;
    if (code != StatusCode::kOk) return Status::Failure(code).At(std::u16string(path));
    if (start == OutputStart::kEmpty) FileAt(key).bytes.clear();
    return std::unique_ptr<OutputFile>(std::make_unique<MemoryOutput>(files_.at(key), path));
}

Result<std::u16string> MemoryFileSystem::ResolveFullPath(std::u16string_view path) {
    return ResolvePathText(path, current_);
}

std::u16string MemoryFileSystem::CurrentFolder() {
    return current_;
}

}  // namespace kinsort
