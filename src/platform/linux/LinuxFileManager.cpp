#include "platform/linux/LinuxFileManager.h"

#include <errno.h>

#include "platform/linux/LinuxError.h"
#include "text/FileUri.h"
#include "text/Utf8.h"

namespace kinsort {

namespace {

// Longer than any file manager takes to start.
constexpr int32_t kAnswerMs = 10'000;

class LinuxFileManager final : public FileManager {
  public:
    LinuxFileManager(Processes& processes, DesktopOpener& opener, FileSystem& files, const PathCodec& codec)
        : processes_(processes), opener_(opener), files_(files), codec_(codec) {}

    Status ShowFolder(std::u16string_view path) override {
        const Result<std::string> stored = Find(path);
        if (!stored.ok()) return stored.status();
        if (Call(u"ShowFolders", *stored)) return {};
        return Open(path);
    }

    Status ShowFile(std::u16string_view path) override {
        const Result<std::string> stored = Find(path);
        if (!stored.ok()) return stored.status();
        if (Call(u"ShowItems", *stored)) return {};
        return Open(path.substr(0, path.find_last_of(u"\\/") + 1));
    }

  private:
    Result<std::string> Find(std::u16string_view path) const {
        if (files_.GetAttributes(path) == kInvalidAttributes) return StatusFromErrno(ENOENT).At(std::u16string(path));
        return codec_.PathToStored(path);
    }

    // Calls a method of the interface that file managers share; false when nobody did what it says. The tool splits
    // its list at commas, but an address has none that is not escaped.
    bool Call(std::u16string_view method, const std::string& stored) const {
        ProcessRequest request;
        request.program = u"dbus-send";
        request.arguments = {u"--session",
                             u"--print-reply",
                             u"--reply-timeout=5000",
                             u"--dest=org.freedesktop.FileManager1",
                             u"/org/freedesktop/FileManager1",
                             std::u16string(u"org.freedesktop.FileManager1.").append(method),
                             u"array:string:" + FromUtf8(FileUriOfPath(stored)),
                             u"string:"};
        request.output = ProcessOutput::kNowhere;
        const Result<std::unique_ptr<Process>> call = processes_.Start(request);
        return call.ok() && (*call)->Wait(kAnswerMs) && (*call)->ExitCode() == 0;
    }

    Status Open(std::u16string_view folder) const {
        OpenRequest request;
        request.file = folder;
        return opener_.Open(request);
    }

    Processes& processes_;
    DesktopOpener& opener_;
    FileSystem& files_;
    const PathCodec& codec_;
};

}  // namespace

std::unique_ptr<FileManager> MakeLinuxFileManager(Processes& processes, DesktopOpener& opener, FileSystem& files,
                                                  const PathCodec& codec) {
    return std::make_unique<LinuxFileManager>(processes, opener, files, codec);
}

}  // namespace kinsort
