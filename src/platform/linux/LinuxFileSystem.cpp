#include "platform/linux/LinuxFileSystem.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>
#include <utility>
#include <vector>

#include <errno.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unicode/uchar.h>
#include <unicode/utf16.h>

#include "platform/linux/FolderStream.h"
#include "platform/linux/LinuxError.h"
#include "platform/linux/LinuxFileStreams.h"
#include "platform/linux/PathWalk.h"
#include "text/PathSyntax.h"
#include "text/Wildcard.h"

namespace kinsort {

namespace {

using UpperTable = std::array<char16_t, 0x10000>;

// Simple upper case, unit by unit.
const UpperTable& Upper() {
    static const auto table = [] {
        auto upper = std::make_unique<UpperTable>();
        for (size_t i = 0; i < upper->size(); ++i) {
            const auto unit = static_cast<char16_t>(i);
            const UChar32 mapped = U16_IS_SURROGATE(unit) ? unit : u_toupper(unit);
            (*upper)[i] = mapped <= 0xFFFF ? static_cast<char16_t>(mapped) : unit;
        }
        return upper;
    }();
    return *table;
}

uint32_t AttributesOf(const struct stat& info, bool isLink, std::u16string_view name) {
    uint32_t bits = isLink ? kAttributeReparsePoint : 0;
    if (S_ISDIR(info.st_mode)) {
        bits |= kAttributeDirectory;
    } else {
        bits |= S_ISREG(info.st_mode) || S_ISLNK(info.st_mode) ? kAttributeArchive : kAttributeSystem;
        if ((info.st_mode & 0222) == 0) bits |= kAttributeReadOnly;
    }
    if (name.starts_with(u'.') && name != u"." && name != u"..") bits |= kAttributeHidden;
    return bits;
}

// What stands at `text` below `folder`, links followed as far as they lead; nothing when there is no such entry.
std::optional<FindData> Look(int folder, const char* text, std::u16string_view name) {
    struct stat own = {};
    if (fstatat(folder, text, &own, AT_SYMLINK_NOFOLLOW) != 0) return std::nullopt;
    const bool isLink = S_ISLNK(own.st_mode);
    struct stat target = {};
    const struct stat& info = isLink && fstatat(folder, text, &target, 0) == 0 ? target : own;
    FindData data;
    data.name = name;
    data.attributes = AttributesOf(info, isLink, name);
    if ((data.attributes & kAttributeDirectory) == 0) {
        data.size = static_cast<uint64_t>(info.st_size);
        data.modifiedNs = int64_t{info.st_mtim.tv_sec} * 1'000'000'000 + info.st_mtim.tv_nsec;
    }
    return data;
}

struct ListedName {
    std::u16string name;
    bool isPlainFolder = false;  // the listing itself says so; everything else is looked at when its turn comes
};

class OneEntry final : public FolderSearch {
  public:
    explicit OneEntry(FindData data) : data_(std::move(data)) {}
    bool Next(FindData& entry) override {
        if (!data_) return false;
        entry = std::move(*data_);
        data_.reset();
        return true;
    }

  private:
    std::optional<FindData> data_;
};

class Listing final : public FolderSearch {
  public:
    Listing(const PathCodec& codec, Descriptor folder, std::vector<ListedName> names)
        : codec_(codec), folder_(std::move(folder)), names_(std::move(names)) {}

    bool Next(FindData& entry) override {
        while (next_ < names_.size()) {
            ListedName& listed = names_[next_++];
            if (listed.isPlainFolder) {
                entry = FindData{};
                entry.attributes = kAttributeDirectory;
                const bool isDots = listed.name == u"." || listed.name == u"..";
                if (listed.name.starts_with(u'.') && !isDots) entry.attributes |= kAttributeHidden;
                entry.name = std::move(listed.name);
                return true;
            }
            std::optional<FindData> data = Look(folder_.get(), codec_.NameToStored(listed.name).c_str(), listed.name);
            if (!data) continue;
            entry = std::move(*data);
            return true;
        }
        return false;
    }

  private:
    const PathCodec& codec_;
    Descriptor folder_;
    std::vector<ListedName> names_;
    size_t next_ = 0;
};

bool StandsBefore(const ListedName& a, const ListedName& b) {
    const UpperTable& upper = Upper();
    const auto [inA, inB] = std::mismatch(a.name.begin(), a.name.end(), b.name.begin(), b.name.end(),
                                          [&](char16_t x, char16_t y) { return upper[x] == upper[y]; });
    if (inA != a.name.end() && inB != b.name.end()) return upper[*inA] < upper[*inB];
    return a.name.size() != b.name.size() ? a.name.size() < b.name.size() : a.name < b.name;
}

class LinuxFileSystem final : public FileSystem {
  public:
    explicit LinuxFileSystem(const PathCodec& codec) : codec_(codec) {}

    uint32_t GetAttributes(std::u16string_view path) override {
        const Result<PathPlace> place = Place(path);
        if (!place.ok()) return kInvalidAttributes;
        const std::optional<FindData> data = Look(place->folder(), place->text.c_str(), LastName(path));
        return data ? data->attributes : kInvalidAttributes;
    }

    Result<std::unique_ptr<FolderSearch>> OpenSearch(std::u16string_view pattern) override {
        const size_t cut = pattern.find_last_of(u"\\/");
        const std::u16string_view last = pattern.substr(cut == std::u16string_view::npos ? 0 : cut + 1);
        if (last.find_first_of(u"*?") == std::u16string_view::npos) return FindOne(pattern);
        // Without its pattern "C:*" means the current folder of that drive, "*" the current folder.
        const std::u16string_view above = pattern.substr(0, pattern.size() - last.size());
        if (ParsePathRoot(pattern).kind == PathRootKind::kDriveRelative && above.empty()) {
            return FindAll(pattern.substr(0, 2), last.substr(2));
        }
        return FindAll(above, last);
    }

    Status CreateFolder(std::u16string_view path) override {
        const Result<PathPlace> place = Place(path);
        if (!place.ok()) return place.status().At(std::u16string(path));
        if (mkdirat(place->folder(), place->text.c_str(), 0777) == 0) return {};
        return StatusFromErrno(errno).At(std::u16string(path));
    }

    Result<std::unique_ptr<InputFile>> OpenInput(std::u16string_view path) override {
        const Result<PathPlace> place = Place(path);
        if (!place.ok()) return place.status().At(std::u16string(path));
        return OpenLinuxInput(*place, path);
    }

    Result<std::unique_ptr<OutputFile>> OpenOutput(std::u16string_view path, OutputStart start) override {
        const Result<PathPlace> place = Place(path);
        if (!place.ok()) return place.status().At(std::u16string(path));
        return OpenLinuxOutput(*place, start, path);
    }

    Result<std::u16string> ResolveFullPath(std::u16string_view path) override {
        const PathRootKind kind = ParsePathRoot(path).kind;
        const bool isAbsolute = kind == PathRootKind::kDrive || kind == PathRootKind::kShare;
        const std::u16string current = isAbsolute ? u"" : CurrentFolder();
        if (!isAbsolute && current.empty()) {
            return Status::Failure(StatusCode::kNotFound).At(std::u16string(path));
        }
        return ResolvePathText(path, current);
    }

    std::u16string CurrentFolder() override {
        const std::unique_ptr<char, decltype(&std::free)> folder(getcwd(nullptr, 0), &std::free);
        // A folder outside the process's root has a name that begins with something else.
        return folder == nullptr || folder.get()[0] != '/' ? u"" : codec_.PathToInner(folder.get());
    }

  private:
    static std::u16string_view LastName(std::u16string_view path) {
        const auto names = ResolveNames(ParsePathRoot(path).remainder);
        return names.empty() ? std::u16string_view() : names.back();
    }

    Result<PathPlace> Place(std::u16string_view path) {
        const Result<std::u16string> full = ResolveFullPath(path);
        if (!full.ok()) return full.status();
        const Result<std::string> stored = codec_.PathToStored(*full);
        if (!stored.ok()) return stored.status();
        return FindPlace(*stored);
    }

    Result<std::unique_ptr<FolderSearch>> FindOne(std::u16string_view path) {
        const Status notFound = Status::Failure(StatusCode::kNotFound).At(std::u16string(path));
        if (path.empty() || IsSeparator(path.back())) return notFound;
        const std::u16string_view name = LastName(path);
        const Result<PathPlace> place = Place(path);
        if (!place.ok()) return place.status().At(std::u16string(path));
        if (name.empty()) return notFound;
        std::optional<FindData> data = Look(place->folder(), place->text.c_str(), name);
        if (!data) return notFound;
        return std::unique_ptr<FolderSearch>(std::make_unique<OneEntry>(std::move(*data)));
    }

    Result<std::unique_ptr<FolderSearch>> FindAll(std::u16string_view folder, std::u16string_view pattern) {
        const std::u16string pathForErrors(folder);
        const Result<std::u16string> full = ResolveFullPath(folder);
        if (!full.ok()) return full.status();
        const Result<PathPlace> place = Place(*full);
        if (!place.ok()) return place.status().At(pathForErrors);
        Descriptor opened(openat(place->folder(), place->text.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!opened.isOpen()) {
            const Status status = StatusFromErrno(errno, errno == ENOTDIR ? StatusCode::kNotFound : CodeOfErrno(errno));
            return status.At(pathForErrors);
        }
        const bool isRoot = ResolveNames(ParsePathRoot(*full).remainder).empty();
        Result<std::vector<ListedName>> names = ReadNames(opened.get(), pattern, !isRoot);
        if (!names.ok()) return names.status().At(pathForErrors);
        if (names->empty()) return Status::Failure(StatusCode::kNotFound).At(pathForErrors + std::u16string(pattern));
        return std::unique_ptr<FolderSearch>(std::make_unique<Listing>(codec_, std::move(opened), std::move(*names)));
    }

    // The matching names in the order of the listing.
    Result<std::vector<ListedName>> ReadNames(int folder, std::u16string_view pattern, bool withDots) const {
        // Not opened anew, which takes the right to pass the folder.
        const FolderStream stream = ListDescriptor(Descriptor(fcntl(folder, F_DUPFD_CLOEXEC, 0)));
        if (stream == nullptr) return StatusFromErrno(errno);
        std::vector<ListedName> names;
        for (const std::u16string_view dots : {std::u16string_view(u"."), std::u16string_view(u"..")}) {
            if (withDots && NameMatchesPattern(dots, pattern)) names.push_back({std::u16string(dots), true});
        }
        const auto firstReal = static_cast<std::ptrdiff_t>(names.size());
        errno = 0;
        while (const dirent* entry = readdir(stream.get())) {
            const std::string_view stored = entry->d_name;
            if (stored == "." || stored == "..") continue;
            std::u16string name = codec_.NameToInner(stored);
            if (NameMatchesPattern(name, pattern)) {
                names.push_back({std::move(name), entry->d_type == DT_DIR});
            }
            errno = 0;
        }
        if (errno != 0) return StatusFromErrno(errno);
        std::sort(names.begin() + firstReal, names.end(), StandsBefore);
        return names;
    }

    const PathCodec& codec_;
};

}  // namespace

std::unique_ptr<FileSystem> MakeLinuxFileSystem(const PathCodec& codec) {
    return std::make_unique<LinuxFileSystem>(codec);
}

}  // namespace kinsort
