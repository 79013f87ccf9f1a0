#include "platform/linux/LinuxProcesses.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/linux/ChildReaper.h"
#include "platform/linux/LinuxError.h"
#include "platform/linux/PathWalk.h"
#include "text/PathSyntax.h"
#include "text/Utf8.h"

namespace kinsort {

namespace {

using SteadyTime = std::chrono::steady_clock;

constexpr uint32_t kSignalBase = 128;
constexpr int32_t kTerminateWaitMs = 1000;

// The state letter of the main thread, behind the program's name, which may hold anything.
bool IsSleeping(pid_t id) {
    const Descriptor file(open(("/proc/" + std::to_string(id) + "/stat").c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 256> bytes;
    const ssize_t got = file.isOpen() ? read(file.get(), bytes.data(), bytes.size()) : 0;
    const std::string_view text(bytes.data(), got > 0 ? static_cast<size_t>(got) : 0);
    const size_t bracket = text.rfind(')');
    return bracket != text.npos && text.substr(bracket).starts_with(") S");
}

class LinuxProcess final : public Process {
  public:
    LinuxProcess(std::shared_ptr<ChildReaper> reaper, pid_t id, Descriptor handle)
        : reaper_(std::move(reaper)), id_(id), handle_(std::move(handle)) {}
    LinuxProcess(const LinuxProcess&) = delete;
    LinuxProcess& operator=(const LinuxProcess&) = delete;
    ~LinuxProcess() override {
        if (!Wait(0)) reaper_->Adopt(id_, std::move(handle_));
    }

    bool Wait(int32_t milliseconds) override {
        if (ended_) return true;
        const auto end = SteadyTime::now() + std::chrono::milliseconds(milliseconds);
        int left = milliseconds < 0 ? -1 : milliseconds;
        pollfd wait = {handle_.get(), POLLIN, 0};
        int ready = poll(&wait, 1, left);
        while (ready < 0 && errno == EINTR) {
            if (milliseconds >= 0) {
                const auto rest = std::chrono::ceil<std::chrono::milliseconds>(end - SteadyTime::now()).count();
                left = static_cast<int>(rest > 0 ? rest : 0);
            }
            ready = poll(&wait, 1, left);
        }
        if (ready > 0) Collect();
        return ended_.has_value();
    }

    // What a main thread does that has nothing to do: it sleeps until something comes.
    Result<bool> WaitForIdle(int32_t milliseconds) override {
        constexpr int32_t kLookEveryMs = 10;
        const auto end = SteadyTime::now() + std::chrono::milliseconds(milliseconds);
        while (!Wait(kLookEveryMs)) {
            if (IsSleeping(id_)) return true;
            if (SteadyTime::now() >= end) return false;
        }
        return StatusFromErrno(ESRCH, StatusCode::kNotFound);
    }

    uint32_t ExitCode() override { return Wait(0) ? *ended_ : kStillRunning; }

    Status Terminate(uint32_t exitCode) override {
        if (Wait(0)) return {};
        // Nobody but us collects the child, so its number cannot have passed to another process.
        if (kill(id_, SIGKILL) != 0) return StatusFromErrno(errno);
        terminatedWith_ = exitCode;
        Wait(kTerminateWaitMs);
        return {};
    }

    uint32_t Id() const override { return static_cast<uint32_t>(id_); }

  private:
    void Collect() {
        int status = 0;
        pid_t got = waitpid(id_, &status, 0);
        while (got < 0 && errno == EINTR)
            got = waitpid(id_, &status, 0);
        const bool bySignal = WIFSIGNALED(status);
        const uint32_t own = bySignal ? kSignalBase + static_cast<uint32_t>(WTERMSIG(status))
                                      : static_cast<uint32_t>(WEXITSTATUS(status));
        // A process that ended by itself just before the signal came keeps its own code.
        ended_ = bySignal && terminatedWith_ ? *terminatedWith_ : own;
    }

    std::shared_ptr<ChildReaper> reaper_;
    pid_t id_;
    Descriptor handle_;
    std::optional<uint32_t> terminatedWith_;
    std::optional<uint32_t> ended_;
};

// The two records of posix_spawn, taken apart when they go.
class SpawnPlan {
  public:
    SpawnPlan() {
        posix_spawn_file_actions_init(&actions_);
        posix_spawnattr_init(&attributes_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }

    void Fill(int startFolder, ProcessTie tie, ProcessOutput output) {
        if (startFolder >= 0) posix_spawn_file_actions_addfchdir_np(&actions_, startFolder);
        posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        if (output == ProcessOutput::kNowhere || fcntl(STDERR_FILENO, F_GETFD) < 0) {
            posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        }
        posix_spawn_file_actions_adddup2(&actions_, STDERR_FILENO, STDOUT_FILENO);
        posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);

        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setsigdefault(&attributes_, &all);
        const int session = tie == ProcessTie::kFree ? POSIX_SPAWN_SETSID : 0;
        posix_spawnattr_setflags(&attributes_,
                                 static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | session));
    }

    const posix_spawn_file_actions_t* actions() const { return &actions_; }
    const posix_spawnattr_t* attributes() const { return &attributes_; }

  private:
    posix_spawn_file_actions_t actions_;
    posix_spawnattr_t attributes_;
};

// What the program is handed for one argument: the native path for one that is wholly a path with a drive or share that
// is set up, else the text itself, in which parts of stored names become their bytes again.
std::string ArgumentToStored(const PathCodec& codec, std::u16string_view argument) {
    const PathRootKind kind = ParsePathRoot(argument).kind;
    if (kind == PathRootKind::kDrive || (kind == PathRootKind::kShare && argument.starts_with(u"\\\\"))) {
        Result<std::string> path = codec.PathToStored(argument);
        if (path.ok()) return std::move(*path);
    }
    std::string out;
    for (size_t begin = 0; begin <= argument.size();) {
        const size_t end = std::min(argument.find(u'/', begin), argument.size());
        out += codec.NameToStored(argument.substr(begin, end - begin));
        if (end < argument.size()) out += '/';
        begin = end + 1;
    }
    return out;
}

// As the system takes lists of texts: with a null at the end.
std::vector<char*> PointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> EnvironmentWith(const std::vector<std::pair<std::u16string, std::u16string>>& variables) {
    std::vector<std::string> environment;
    for (const auto& [name, value] : variables)
        environment.push_back(ToUtf8(name) + "=" + ToUtf8(value));
    const size_t ownCount = environment.size();
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
        const std::string_view text = *variable;
        const std::string_view nameAndSign = text.substr(0, std::min(text.find('='), text.size() - 1) + 1);
        const auto isReplaced = [nameAndSign](const std::string& own) { return own.starts_with(nameAndSign); };
        if (std::none_of(environment.begin(), environment.begin() + static_cast<ptrdiff_t>(ownCount), isReplaced))
            environment.emplace_back(text);
    }
    return environment;
}

class LinuxProcesses final : public Processes {
  public:
    LinuxProcesses(const PathCodec& codec, FileSystem& files) : codec_(codec), files_(files) {
        struct sigaction action = {};
        const bool isIgnored = sigaction(SIGCHLD, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
        if (isIgnored) signal(SIGCHLD, SIG_DFL);
    }

    Result<std::unique_ptr<Process>> Start(const ProcessRequest& request) override {
        Result<std::string> program = StoredProgram(request.program);
        if (!program.ok()) return program.status().At(request.program);
        Result<Descriptor> folder = OpenStartFolder(request.startFolder);
        if (!folder.ok()) return folder.status().At(request.startFolder);

        std::vector<std::string> arguments = {*program};
        arguments.reserve(request.arguments.size() + 1);
        for (const std::u16string& argument : request.arguments) {
            arguments.push_back(ArgumentToStored(codec_, argument));
        }
        const std::vector<char*> pointers = PointersTo(arguments);
        std::vector<std::string> variables = EnvironmentWith(request.variables);
        const std::vector<char*> variablePointers = PointersTo(variables);

        SpawnPlan plan;
        plan.Fill(folder->get(), request.tie, request.output);
        pid_t id = 0;
        const int error = posix_spawnp(&id, program->c_str(), plan.actions(), plan.attributes(), pointers.data(),
                                       variablePointers.data());
        if (error == ENOEXEC) return StatusFromErrno(error, StatusCode::kUnsupported).At(request.program);
        if (error != 0) return StatusFromErrno(error).At(request.program);
        // Not through <sys/pidfd.h>, which some versions of the library declare wrongly for C++.
        Descriptor handle(static_cast<int>(syscall(SYS_pidfd_open, id, 0)));
        const int handleError = errno;
        if (!handle.isOpen()) {
            // Without a handle nobody could wait for it: better not started than lost sight of.
            kill(id, SIGKILL);
            waitpid(id, nullptr, 0);
            return StatusFromErrno(handleError).At(request.program);
        }
        return std::unique_ptr<Process>(std::make_unique<LinuxProcess>(reaper_, id, std::move(handle)));
    }

  private:
    Result<std::string> StoredProgram(std::u16string_view program) {
        if (program.empty()) return StatusFromErrno(ENOENT);
        const bool isBareName = program.find_first_of(u"\\/") == program.npos;
        if (isBareName) return codec_.NameToStored(program);
        const Result<std::u16string> full = files_.ResolveFullPath(program);
        if (!full.ok()) return full.status();
        return codec_.PathToStored(*full);
    }

    // Not open for the empty path.
    Result<Descriptor> OpenStartFolder(std::u16string_view path) {
        if (path.empty()) return Descriptor();
        const Result<std::u16string> full = files_.ResolveFullPath(path);
        if (!full.ok()) return full.status();
        const Result<std::string> stored = codec_.PathToStored(*full);
        if (!stored.ok()) return stored.status();
        const Result<PathPlace> place = FindPlace(*stored);
        if (!place.ok()) return place.status();
        Descriptor folder(openat(place->folder(), place->text.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
        if (!folder.isOpen()) return StatusFromErrno(errno);
        return folder;
    }

    const PathCodec& codec_;
    FileSystem& files_;
    std::shared_ptr<ChildReaper> reaper_ = std::make_shared<ChildReaper>();
};

}  // namespace

std::unique_ptr<Processes> MakeLinuxProcesses(const PathCodec& codec, FileSystem& files) {
    return std::make_unique<LinuxProcesses>(codec, files);
}

}  // namespace kinsort
