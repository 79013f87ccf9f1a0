#include "platform/linux/LinuxTerminal.h"

#include <array>
#include <atomic>

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <unicode/uchar.h>
#include <unistd.h>

#include "platform/linux/Descriptor.h"
#include "platform/linux/LinuxError.h"

namespace kinsort {
namespace {

// What the signal handler may touch. The pipe wakes a read that waits for the user.
std::atomic<void (*)(void*)> gAction{nullptr};
std::atomic<void*> gContext{nullptr};
std::atomic<int> gWakeUp{-1};

void OnSignal(int) {
    const int savedError = errno;
    if (auto* action = gAction.load()) action(gContext.load());
    const char byte = 0;
    if (write(gWakeUp.load(), &byte, 1) < 0) {
        // The pipe is full: a byte is waiting already.
    }
    errno = savedError;
}

constexpr int kDefaultColumns = 80;
constexpr size_t kBlock = 65536;

int DescriptorOf(Stream stream) {
    return static_cast<int>(stream);
}
static_assert(static_cast<int>(Stream::kInput) == STDIN_FILENO && static_cast<int>(Stream::kOutput) == STDOUT_FILENO &&
              static_cast<int>(Stream::kMessages) == STDERR_FILENO);

class LinuxTerminal : public Terminal {
  public:
    ~LinuxTerminal() override {
        if (!wakeUp_.isOpen()) return;
        for (const int number : kStopSignals)
            signal(number, SIG_DFL);
        gWakeUp = -1;
    }

    bool IsTerminal(Stream stream) const override { return isatty(DescriptorOf(stream)) == 1; }

    int WindowColumns() const override {
        for (const Stream stream : {Stream::kOutput, Stream::kMessages, Stream::kInput}) {
            winsize size{};
            if (ioctl(DescriptorOf(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
        }
        return kDefaultColumns;
    }

    int CharacterColumns(char32_t character) const override {
        const auto point = static_cast<UChar32>(character);
        switch (u_charType(point)) {
            case U_NON_SPACING_MARK:
            case U_ENCLOSING_MARK:
            case U_FORMAT_CHAR:
                return point == 0xAD ? 1 : 0;  // a soft hyphen is drawn
            default:
                break;
        }
        if (point >= 0x1160 && point <= 0x11FF) return 0;  // vowels and finals join the syllable before them
        const int width = u_getIntPropertyValue(point, UCHAR_EAST_ASIAN_WIDTH);
        return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
    }

    Status Write(Stream stream, std::string_view bytes) override {
        while (!bytes.empty()) {
            const ssize_t written = write(DescriptorOf(stream), bytes.data(), bytes.size());
            if (written >= 0) {
                bytes.remove_prefix(static_cast<size_t>(written));
            } else if (errno == EPIPE) {
                return StatusFromErrno(EPIPE, StatusCode::kStale);
            } else if (errno == EAGAIN) {  // somebody made the stream non-blocking
                pollfd ready{DescriptorOf(stream), POLLOUT, 0};
                poll(&ready, 1, -1);
            } else if (errno != EINTR) {
                return StatusFromErrno(errno);
            }
        }
        return {};
    }

    Result<std::string> ReadLine() override {
        std::string line;
        for (;;) {
            char byte = 0;
            const Result<size_t> got = ReadSome(STDIN_FILENO, &byte, 1);
            if (!got.ok()) return got.status();
            if (*got == 0 && line.empty()) return Status::Failure(StatusCode::kNotFound);
            if (*got == 0 || byte == '\n') return line;
            line.push_back(byte);
        }
    }

    Result<std::string> ReadAll(std::string_view nativePath) override {
        if (nativePath == "-") return ReadToEnd(STDIN_FILENO);
        // Non-blocking, so that a pipe without a writer is waited for where an interrupt is seen.
        const Descriptor file(open(std::string(nativePath).c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
        if (!file.isOpen()) return StatusFromErrno(errno);
        return ReadToEnd(file.get());
    }

    void CallOnInterrupt(void (*action)(void*), void* context) override {
        gContext = context;
        gAction = action;
        std::array<int, 2> ends = {};
        if (wakeUp_.isOpen() || pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
        wokenUp_ = Descriptor(ends[0]);
        wakeUp_ = Descriptor(ends[1]);
        gWakeUp = wakeUp_.get();
        struct sigaction handler {};
        handler.sa_handler = OnSignal;
        handler.sa_flags = SA_RESTART;  // no call in the middle of a batch fails because of it
        for (const int number : kStopSignals) {
            struct sigaction before {};
            sigaction(number, nullptr, &before);
            if (before.sa_handler != SIG_IGN) sigaction(number, &handler, nullptr);  // nohup, background jobs
        }
    }

  private:
    static constexpr std::array kStopSignals = {SIGINT, SIGTERM, SIGHUP};

    // Waits for input or an interrupt; 0 at the end.
    Result<size_t> ReadSome(int file, char* buffer, size_t size) {
        for (;;) {
            std::array<pollfd, 2> waiting = {pollfd{file, POLLIN, 0}, pollfd{wokenUp_.get(), POLLIN, 0}};
            if (poll(waiting.data(), waiting.size(), -1) < 0 && errno != EINTR) return StatusFromErrno(errno);
            if ((waiting[1].revents & POLLIN) != 0) return StatusFromErrno(EINTR);
            if (waiting[0].revents == 0) continue;
            const ssize_t got = read(file, buffer, size);
            if (got >= 0) return static_cast<size_t>(got);
            if (errno != EINTR && errno != EAGAIN) return StatusFromErrno(errno);
        }
    }

    Result<std::string> ReadToEnd(int file) {
        std::string content;
        for (;;) {
            const size_t before = content.size();
            content.resize(before + kBlock);
            const Result<size_t> got = ReadSome(file, content.data() + before, kBlock);
            if (!got.ok()) return got.status();
            content.resize(before + *got);
            if (*got == 0) return content;
        }
    }

    Descriptor wokenUp_;  // readable once there was an interrupt
    Descriptor wakeUp_;   // its other end
};

}  // namespace

std::unique_ptr<Terminal> MakeLinuxTerminal() {
    // A standard stream that was closed would give its number to the next file opened, and our words would go there.
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0 && errno == EBADF) (void)open("/dev/null", O_RDWR);  // takes the lowest number
    }
    return std::make_unique<LinuxTerminal>();
}

}  // namespace kinsort
