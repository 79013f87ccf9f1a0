// Real small programs, started and waited for.
#include "platform/linux/LinuxProcesses.h"

#include <chrono>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include "platform/linux/LinuxFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"
#include "platform/linux/TemporaryFolder_test.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

class LinuxProcessesTest : public testing::Test {
  protected:
    std::u16string At(std::string_view below) { return codec_->PathToInner(folder_.path() + "/" + std::string(below)); }

    void WriteProgram(std::string_view name, std::string_view content, mode_t mode) {
        const std::string path = folder_.path() + "/" + std::string(name);
        std::ofstream(path) << content;
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
    }

    std::string Content(std::string_view name) {
        std::ifstream file(folder_.path() + "/" + std::string(name));
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static ProcessRequest Shell(std::u16string_view script) {
        ProcessRequest request;
        request.program = u"sh";
        request.arguments = {u"-c", std::u16string(script)};
        return request;
    }

    // The exit code of the whole run; 9999 when it could not be started.
    uint32_t Run(const ProcessRequest& request) {
        Result<std::unique_ptr<Process>> process = processes_->Start(request);
        if (!process.ok()) return 9999;
        EXPECT_TRUE((*process)->Wait(kWaitForever));
        return (*process)->ExitCode();
    }

    TemporaryFolder folder_;
    std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec(folder_.path() + "/drives");
    std::unique_ptr<FileSystem> files_ = MakeLinuxFileSystem(*codec_);
    std::unique_ptr<Processes> processes_ = MakeLinuxProcesses(*codec_, *files_);
};

TEST_F(LinuxProcessesTest, ExitCodesAreTold) {
    EXPECT_EQ(Run(Shell(u"exit 7")), 7u);
    EXPECT_EQ(Run(Shell(u"kill -TERM $$")), 128u + SIGTERM);
    ProcessRequest request;
    request.program = u"Z:\\bin\\true";
    EXPECT_EQ(Run(request), 0u);
    for (const ProcessTie tie : {ProcessTie::kOurs, ProcessTie::kFree}) {
        request = Shell(u"test $(ps -o sid= -p $$ 2>/dev/null || cut -d' ' -f6 /proc/$$/stat) = $$");
        request.tie = tie;
        EXPECT_EQ(Run(request), tie == ProcessTie::kFree ? 0u : 1u);
    }
}

TEST_F(LinuxProcessesTest, AProcessThatTakesTooLongCanBeEnded) {
    ProcessRequest request;
    request.program = u"sleep";
    request.arguments = {u"1000"};
    Result<std::unique_ptr<Process>> process = processes_->Start(request);
    ASSERT_TRUE(process.ok());
    EXPECT_FALSE((*process)->Wait(0));
    EXPECT_FALSE((*process)->Wait(20));
    EXPECT_EQ((*process)->ExitCode(), kStillRunning);
    EXPECT_TRUE((*process)->Terminate(999).ok());
    EXPECT_TRUE((*process)->Wait(kWaitForever));
    EXPECT_EQ((*process)->ExitCode(), 999u);
    EXPECT_TRUE((*process)->Terminate(5).ok());
    EXPECT_EQ((*process)->ExitCode(), 999u);
}

TEST_F(LinuxProcessesTest, AProgramIsIdleWhenItWaits) {
    const Result<std::unique_ptr<Process>> busy = processes_->Start(Shell(u"while :; do :; done"));
    const Result<std::unique_ptr<Process>> waiting = processes_->Start(Shell(u"exec sleep 1000 # ) S"));
    const Result<std::unique_ptr<Process>> ended = processes_->Start(Shell(u"exit 1"));
    ASSERT_TRUE(busy.ok() && waiting.ok() && ended.ok());
    EXPECT_TRUE(*(*waiting)->WaitForIdle(60'000));
    EXPECT_FALSE(*(*busy)->WaitForIdle(0));
    EXPECT_TRUE((*ended)->Wait(kWaitForever));
    EXPECT_EQ((*ended)->WaitForIdle(60'000).code(), StatusCode::kNotFound);
    for (const auto* process : {&busy, &waiting})
        EXPECT_TRUE((**process)->Terminate(1).ok());
}

TEST_F(LinuxProcessesTest, OnlyWholePathsAreTranslated) {
    std::filesystem::create_directories(folder_.path() + "/in here");
    ProcessRequest request = Shell(u"printf '%s\\n' \"$PWD\" \"$@\" > out");
    request.startFolder = At("in here");
    for (const char16_t* argument :
         {u"sh", u"Z:\\a b\\c", u"\\\\?\\Z:\\x", u"--to=Z:\\a", u"Q:\\not\\here", u"\\\\no\\share", u"Z:", u"a/b\\c",
          u"", u"\u3042", u"$HOME `id` ; *", u"Z:\\x\uF05Cy"}) {
        request.arguments.push_back(argument);
    }
    request.arguments.push_back(std::u16string(u"name\uF009") + char16_t{0xDCFF});
    EXPECT_EQ(Run(request), 0u);
    EXPECT_EQ(Content("in here/out"),
              folder_.path() +
                  "/in here\n/a b/c\n/x\n--to=Z:\\a\nQ:\\not\\here\n\\\\no\\share\nZ:\na/b\\c\n\n"
                  "\xE3\x81\x82\n$HOME `id` ; *\n/x\\y\nname\t\xFF\n");
}

TEST_F(LinuxProcessesTest, VariablesComeOnTopOfTheUsersOwn) {
    setenv("KINSORT_TEST_KEPT", "kept", 1);
    setenv("KINSORT_TEST", "old", 1);
    setenv("KINSORT_TEST_LONGER", "other", 1);
    ProcessRequest request = Shell(
        u"printf '%s|' \"$KINSORT_TEST\" \"$KINSORT_TEST_KEPT\" \"$KINSORT_TEST_LONGER\" "
        u"\"$KINSORT_NEW\" > out; env | grep -c ^KINSORT_TEST= >> out");
    request.startFolder = At("");
    request.variables = {{u"KINSORT_TEST", u"new = 1"}, {u"KINSORT_NEW", u"\u3042"}};
    EXPECT_EQ(Run(request), 0u);
    EXPECT_EQ(Content("out"), "new = 1|kept|other|\xE3\x81\x82|1\n");
}

TEST_F(LinuxProcessesTest, ProgramsInOtherPlacesAreReached) {
    WriteProgram("to\\ol", "#!/bin/sh\nexit 3\n", 0755);
    std::filesystem::create_directories(folder_.path() + "/drives");
    std::filesystem::create_directory_symlink(folder_.path(), folder_.path() + "/drives/c:");
    ProcessRequest request;
    request.program = u"C:\\to\uF05Col";
    EXPECT_EQ(Run(request), 3u);
}

TEST_F(LinuxProcessesTest, NothingOfOursIsHandedOn) {
    const int original = open("/dev/null", O_RDONLY);
    ASSERT_GE(fcntl(original, F_DUPFD, 150), 150);  // both without close-on-exec
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    signal(SIGUSR1, SIG_IGN);

    EXPECT_EQ(Run(Shell(u"for f in /proc/$$/fd/*; do case ${f##*/} in ?) ;; *) exit 1;; esac; done")), 0u);
    EXPECT_EQ(Run(Shell(u"test -e /proc/$$/fd/2 -a ! -e /proc/$$/fd/150")), 0u);
    EXPECT_EQ(Run(Shell(u"read line")), 1u);  // no input, not ours
    ProcessRequest silent = Shell(u"test /dev/fd/1 -ef /dev/null -a /dev/fd/2 -ef /dev/null");
    silent.output = ProcessOutput::kNowhere;
    EXPECT_EQ(Run(silent), 0u);
    EXPECT_EQ(Run(Shell(u"kill -TERM $$")), 128u + SIGTERM);
    EXPECT_EQ(Run(Shell(u"kill -USR1 $$")), 128u + SIGUSR1);

    signal(SIGUSR1, SIG_DFL);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    close(original);
    close(150);
}

TEST_F(LinuxProcessesTest, FailuresNameWhatIsMissing) {
    WriteProgram("not executable", "#!/bin/sh\n", 0644);
    WriteProgram("no program", "just text\n", 0755);
    struct Case {
        std::u16string program;
        std::u16string startFolder;
        StatusCode code;
        std::u16string path;
    };
    const Case cases[] = {
        {u"no-such-program-anywhere", u"", StatusCode::kNotFound, u"no-such-program-anywhere"},
        {At("none"), u"", StatusCode::kNotFound, At("none")},
        {At("not executable"), u"", StatusCode::kAccessDenied, At("not executable")},
        {At("no program"), u"", StatusCode::kUnsupported, At("no program")},
        {u"", u"", StatusCode::kNotFound, u""},
        {u"Q:\\x", u"", StatusCode::kNotFound, u"Q:\\x"},
        {u"true", At("gone"), StatusCode::kNotFound, At("gone")},
        {u"true", At("no program"), StatusCode::kNotFolder, At("no program")},
    };
    for (const Case& c : cases) {
        ProcessRequest request;
        request.program = c.program;
        request.startFolder = c.startFolder;
        const Result<std::unique_ptr<Process>> process = processes_->Start(request);
        EXPECT_EQ(process.code(), c.code) << ToUtf8(c.program);
        EXPECT_EQ(process.status().path(), c.path);
        EXPECT_FALSE(process.status().systemText().empty());
    }
}

// A zombie still answers to signal 0, a collected child does not.
void ExpectCollected(pid_t child) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (kill(child, 0) == 0 && std::chrono::steady_clock::now() < limit)
        std::this_thread::yield();
    EXPECT_NE(kill(child, 0), 0);
}

TEST_F(LinuxProcessesTest, NobodyStaysBehindAsAZombie) {
    std::vector<pid_t> children;
    ProcessRequest request = Shell(u"while test ! -e go; do :; done");
    request.startFolder = At("");
    for (int i = 0; i < 3; ++i) {
        const Result<std::unique_ptr<Process>> process = processes_->Start(request);
        ASSERT_TRUE(process.ok());
        EXPECT_EQ((*process)->ExitCode(), kStillRunning);
        children.push_back(static_cast<pid_t>((*process)->Id()));
    }
    WriteProgram("go", "", 0644);  // they end after we have let go of them
    for (const pid_t child : children)
        ExpectCollected(child);
    const Result<std::unique_ptr<Process>> last = processes_->Start(Shell(u"exit 1"));
    processes_.reset();  // a process may outlive what started it
    EXPECT_TRUE((*last)->Wait(kWaitForever));
    EXPECT_EQ((*last)->ExitCode(), 1u);
}

}  // namespace
}  // namespace kinsort
