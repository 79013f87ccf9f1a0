#include "platform/linux/LinuxDesktopOpener.h"

#include <utility>
#include <vector>

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include "platform/linux/LinuxError.h"
#include "platform/linux/PathWalk.h"
#include "text/Numbers.h"
#include "text/PathSyntax.h"

namespace kinsort {

namespace {

// Longer than any hand-over takes; an opener that becomes the document's program itself would take for ever.
constexpr int32_t kHandOverMs = 10'000;

// "mailto:", "https:": a scheme by the rules for URIs, but of two characters at least, since one is a drive.
bool IsAddress(std::u16string_view text) {
    const size_t colon = text.find(u':');
    if (colon == text.npos || colon < 2 || !IsDriveLetter(text[0])) return false;
    for (const char16_t unit : text.substr(0, colon)) {
        if (!IsDriveLetter(unit) && !IsDigit(unit) && unit != u'+' && unit != u'-' && unit != u'.') return false;
    }
    return true;
}

bool IsBareName(std::u16string_view file) {
    return file.find_first_of(u"\\/:") == file.npos;
}

class LinuxDesktopOpener final : public DesktopOpener {
  public:
    LinuxDesktopOpener(Processes& processes, FileSystem& files, const PathCodec& codec, DesktopPrograms programs)
        : processes_(processes), files_(files), codec_(codec), programs_(std::move(programs)) {}

    Status Open(const OpenRequest& request) override {
        if (request.file.empty()) return StatusFromErrno(ENOENT);
        const std::u16string path = FindFile(request);
        if (path.empty()) {
            if (IsBareName(request.file)) return RunProgram(request, request.file);
            if (IsAddress(request.file)) return HandOver(request, request.file);
            return StatusFromErrno(ENOENT).At(request.file);
        }
        if (!IsProgram(path)) {
            const bool wantsRights = request.verb == OpenVerb::kRunAs;
            return wantsRights ? StatusFromErrno(ENOEXEC, StatusCode::kUnsupported).At(path) : HandOver(request, path);
        }
        Status status = RunProgram(request, path);
        return status.code() == StatusCode::kUnsupported ? HandOver(request, path) : status;
    }

  private:
    // The absolute path of the file that the request means; empty when there is none.
    std::u16string FindFile(const OpenRequest& request) const {
        std::vector<std::u16string> candidates = {request.file};
        if (ParsePathRoot(request.file).kind == PathRootKind::kRelative && !request.startFolder.empty()) {
            candidates.insert(candidates.begin(), request.startFolder + u"\\" + request.file);
        }
        for (const std::u16string& candidate : candidates) {
            const Result<std::u16string> full = files_.ResolveFullPath(candidate);
            if (full.ok() && files_.GetAttributes(*full) != kInvalidAttributes) return *full;
        }
        return {};
    }

    bool IsProgram(std::u16string_view path) const {
        if ((files_.GetAttributes(path) & (kAttributeDirectory | kAttributeSystem)) != 0) return false;
        const Result<std::string> stored = codec_.PathToStored(path);
        if (!stored.ok()) return false;
        const Result<PathPlace> place = FindPlace(*stored);
        return place.ok() && faccessat(place->folder(), place->text.c_str(), X_OK, AT_EACCESS) == 0;
    }

    ProcessRequest Base(const OpenRequest& request) const {
        const bool hasFolder = !request.startFolder.empty() && IsFolder(request.startFolder);
        return {.program = {},
                .arguments = {},
                .startFolder = hasFolder ? request.startFolder : std::u16string(),
                .showState = request.showState,
                .tie = ProcessTie::kFree};
    }

    bool IsFolder(std::u16string_view path) const {
        const uint32_t attributes = files_.GetAttributes(path);
        return attributes != kInvalidAttributes && (attributes & kAttributeDirectory) != 0;
    }

    Status RunProgram(const OpenRequest& request, const std::u16string& program) const {
        ProcessRequest start = Base(request);
        start.program = program;
        start.arguments = request.arguments;
        if (request.verb == OpenVerb::kRunAs) {
            start.program = programs_.elevator;
            start.tie = ProcessTie::kOurs;  // without a dialog for the password it asks on our terminal
            start.arguments.insert(start.arguments.begin(), {u"--keep-cwd", program});
        }
        return processes_.Start(start).status();
    }

    Status HandOver(const OpenRequest& request, const std::u16string& target) const {
        ProcessRequest start = Base(request);
        start.program = programs_.opener;
        start.arguments = {target};
        Result<std::unique_ptr<Process>> opener = processes_.Start(start);
        if (!opener.ok() || !request.waitForOpener) return opener.status();
        const bool failed = (*opener)->Wait(kHandOverMs) && (*opener)->ExitCode() != 0;
        return failed ? StatusFromErrno(EOPNOTSUPP).At(target) : Status();
    }

    Processes& processes_;
    FileSystem& files_;
    const PathCodec& codec_;
    DesktopPrograms programs_;
};

}  // namespace

std::unique_ptr<DesktopOpener> MakeLinuxDesktopOpener(Processes& processes, FileSystem& files, const PathCodec& codec,
                                                      DesktopPrograms programs) {
    return std::make_unique<LinuxDesktopOpener>(processes, files, codec, std::move(programs));
}

}  // namespace kinsort
