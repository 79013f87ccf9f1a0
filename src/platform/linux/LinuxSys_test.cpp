// What only the real system can show: rights, special files, limits of the process, locks between processes, errno.
#include "platform/linux/LinuxSys.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <errno.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "platform/linux/LinuxError.h"
#include "platform/linux/TemporaryFolder_test.h"

namespace kinsort {
namespace {

constexpr uid_t kNobody = 65534;

std::span<const std::byte> Bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

class LinuxSysTest : public ::testing::Test {
  protected:
    LinuxSysTest() {
        (void)chmod(path_.c_str(), 0755);
        root_ = std::move(*sys_->OpenFolder(path_));
    }

    std::string Path(const std::string& name) const { return path_ + "/" + name; }
    void WriteFile(const std::string& name, const std::string& content, mode_t mode = 0644) {
        std::ofstream(Path(name)) << content;
        ASSERT_EQ(chmod(Path(name).c_str(), mode), 0);
    }

    // Runs `check` in a process of its own that has no special rights, and expects it to return an empty text.
    static void AsNobody(const std::function<std::string()>& check) {
        InChild([&] {
            if (geteuid() != 0) return check();
            if (setgroups(0, nullptr) != 0 || setresgid(kNobody, kNobody, kNobody) != 0 ||
                setresuid(kNobody, kNobody, kNobody) != 0)
                return std::string("cannot give up the rights of root");
            return check();
        });
    }
    static void InChild(const std::function<std::string()>& check) {
        int ends[2];
        ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            const std::string report = check();
            (void)!write(ends[1], report.data(), report.size());
            _exit(report.empty() ? 0 : 1);
        }
        close(ends[1]);
        char report[1000] = {};
        (void)!read(ends[0], report, sizeof report - 1);
        close(ends[0]);
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "in the child: " << report;
    }

    const TemporaryFolder folder_;
    const std::string path_ = folder_.path();
    const std::unique_ptr<Sys> sys_ = MakeLinuxSys();
    FileHandle root_;
};

// The name of the first call whose code is not the expected one; empty when all are.
struct Expectation {
    const char* what;
    StatusCode got;
    StatusCode expected;
};
std::string FirstWrong(const std::vector<Expectation>& all) {
    for (const Expectation& one : all) {
        if (one.got != one.expected) return one.what + (" gave code " + std::to_string(static_cast<int>(one.got)));
    }
    return {};
}

TEST_F(LinuxSysTest, ErrnoBecomesACodeANumberAndAText) {
    const struct {
        int error;
        StatusCode code;
    } cases[] = {{EDQUOT, StatusCode::kQuota},
                 {EIO, StatusCode::kIo},
                 {ESTALE, StatusCode::kStale},
                 {ECHILD, StatusCode::kOther},
                 {EHWPOISON + 1000, StatusCode::kOther}};
    for (const auto& [error, code] : cases) {
        const Status status = StatusFromErrno(error);
        EXPECT_EQ(status.code(), code) << error;
        EXPECT_EQ(status.systemCode(), error);
        EXPECT_FALSE(status.systemText().empty());
    }
    EXPECT_EQ(StatusFromErrno(ENOENT).systemText(), u"No such file or directory");
    const Status special = StatusFromErrno(EISDIR, StatusCode::kUnsupported);
    EXPECT_EQ(special.code(), StatusCode::kUnsupported);
    EXPECT_EQ(special.systemText(), StatusFromErrno(EISDIR).systemText());
}

TEST_F(LinuxSysTest, RightsAreTold) {
    WriteFile("secret", "x", 0600);
    WriteFile("public", "x", 0644);
    std::filesystem::create_directory(Path("closed"));
    std::filesystem::create_directories(Path("passage/inside"));
    ASSERT_EQ(chmod(Path("closed").c_str(), geteuid() == 0 ? 0700 : 0000), 0);
    ASSERT_EQ(chmod(Path("passage").c_str(), geteuid() == 0 ? 0711 : 0100), 0);
    if (geteuid() != 0) {
        ASSERT_EQ(chmod(Path("secret").c_str(), 0), 0);
        ASSERT_EQ(chmod(Path("public").c_str(), 0444), 0);
        ASSERT_EQ(chmod(path_.c_str(), 0555), 0);
    }
    AsNobody([&] {
        const FileHandle inside = std::move(*sys_->OpenFolder(Path("passage/inside")));
        Result<FileHandle> passage = sys_->OpenParent(inside);
        std::string wrong = FirstWrong({
            {"read", sys_->OpenForRead(root_, "secret").code(), StatusCode::kAccessDenied},
            {"read another's", sys_->OpenForRead(root_, "public").code(), StatusCode::kOk},
            {"write", sys_->OpenForWrite(root_, "public").code(), StatusCode::kAccessDenied},
            {"create", sys_->CreateFileAt(root_, "new", 0644).code(), StatusCode::kAccessDenied},
            {"nameless", sys_->CreateNameless(root_, 0644).code(), StatusCode::kAccessDenied},
            {"folder", sys_->MakeFolderAt(root_, "new", 0755).code(), StatusCode::kAccessDenied},
            {"remove", sys_->RemoveFileAt(root_, "public").code(), StatusCode::kAccessDenied},
            {"rename", sys_->RenameNoReplace(root_, "public", root_, "n").code(), StatusCode::kAccessDenied},
            {"open folder", sys_->OpenFolderAt(root_, "closed").code(), StatusCode::kAccessDenied},
            {"pass above", passage.code(), StatusCode::kOk},
        });
        if (wrong.empty() && sys_->Stat(*passage)->inode != sys_->StatAt(root_, "passage")->inode)
            wrong = "another folder above";
        if (wrong.empty() && *sys_->PathOf(*passage) != Path("passage")) wrong = "path of a folder that hides its list";
        return wrong;
    });
    (void)chmod(path_.c_str(), 0755);
    (void)chmod(Path("closed").c_str(), 0755);
    (void)chmod(Path("passage").c_str(), 0755);
}

TEST_F(LinuxSysTest, ANamelessFileGetsItsNameWithoutSpecialRights) {
    ASSERT_EQ(chmod(path_.c_str(), 0777), 0);
    AsNobody([&]() -> std::string {
        for (const char* name : {"first", "second"}) {
            Result<FileHandle> file = sys_->CreateNameless(root_, 0640);
            if (!file.ok()) return "cannot create";
            if (!sys_->Write(*file, 0, Bytes("text")).ok()) return "cannot write";
            if (!sys_->NameFile(*file, root_, name).ok()) return "cannot name";
            if (sys_->NameFile(*file, root_, name).code() != StatusCode::kExists) return "named twice";
        }
        return {};
    });
    EXPECT_EQ(std::filesystem::file_size(Path("second")), 4u);
}

TEST_F(LinuxSysTest, ReadingLeavesNoTraceInTheAccessTime) {
    WriteFile("f", "text");
    const timespec old[2] = {{.tv_sec = 1000, .tv_nsec = 0}, {.tv_sec = 2000, .tv_nsec = 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, Path("f").c_str(), old, 0), 0);
    const FileHandle file = std::move(*sys_->OpenForRead(root_, "f"));
    std::byte buffer[4];
    ASSERT_EQ(*sys_->Read(file, 0, buffer), 4u);
    EXPECT_EQ(sys_->Stat(file)->accessedNs, 1000 * INT64_C(1'000'000'000));
}

TEST_F(LinuxSysTest, SpecialFilesAreNeverOpened) {
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0644), 0);
    // Neither waits for the pipe's other end, which never comes.
    EXPECT_EQ(sys_->OpenForRead(root_, "pipe").code(), StatusCode::kInvalid);
    EXPECT_EQ(sys_->OpenForWrite(root_, "pipe").code(), StatusCode::kInvalid);
    EXPECT_EQ(sys_->StatAt(root_, "pipe")->kind, FileKind::kOther);
    ASSERT_TRUE(sys_->RenameNoReplace(root_, "pipe", root_, "renamed").ok());
    const FileHandle dev = std::move(*sys_->OpenFolder("/dev"));
    EXPECT_EQ(sys_->OpenForRead(dev, "null").code(), StatusCode::kInvalid);
    const FileHandle own = std::move(*sys_->OpenFolder("/proc/self/fd"));
    EXPECT_EQ(sys_->OpenForRead(own, std::to_string(root_.number())).code(), StatusCode::kIsLink) << "a magic link";
}

TEST_F(LinuxSysTest, ModesAreThoseAskedForWhateverTheMask) {
    InChild([&]() -> std::string {
        umask(077);
        const std::unique_ptr<Sys> sys = MakeLinuxSys();
        const FileHandle file = std::move(*sys->CreateFileAt(root_, "f", 0664));
        if (sys->Stat(file)->mode != 0664) return "file";
        if (sys->Stat(*sys->CreateNameless(root_, 0644))->mode != 0644) return "nameless";
        if (!sys->MakeFolderAt(root_, "d", 0775).ok() || sys->StatAt(root_, "d")->mode != 0700) return "folder";
        return {};
    });
}

TEST_F(LinuxSysTest, UserAttributesAreCopiedAndOthersAreNot) {
    WriteFile("from", "");
    WriteFile("to", "");
    const std::string big(3000, 'v');
    if (setxattr(Path("from").c_str(), "user.big", big.data(), big.size(), 0) != 0)
        GTEST_SKIP() << "the volume of /tmp has no user attributes";
    ASSERT_EQ(setxattr(Path("from").c_str(), "user.empty", "", 0, 0), 0);
    const bool root = geteuid() == 0;
    if (root) {
        ASSERT_EQ(setxattr(Path("from").c_str(), "trusted.not", "x", 1, 0), 0);
    }
    for (int i = 0; i < 40; ++i) {  // more names than the first try has room for
        const std::string name = "user.attribute-with-a-long-name-" + std::to_string(i);
        if (setxattr(Path("from").c_str(), name.c_str(), "v", 1, 0) != 0) break;
    }
    const FileHandle from = std::move(*sys_->OpenForRead(root_, "from"));
    const FileHandle to = std::move(*sys_->OpenForWrite(root_, "to"));
    ASSERT_TRUE(sys_->CopyUserAttributes(from, to).ok());
    std::string value(5000, '\0');
    ASSERT_EQ(getxattr(Path("to").c_str(), "user.big", value.data(), value.size()), 3000);
    EXPECT_EQ(value.substr(0, 3000), big);
    EXPECT_EQ(getxattr(Path("to").c_str(), "user.empty", value.data(), value.size()), 0);
    EXPECT_EQ(getxattr(Path("to").c_str(), "trusted.not", value.data(), value.size()), -1);
    const ssize_t listed = listxattr(Path("to").c_str(), nullptr, 0);
    EXPECT_EQ(listed, listxattr(Path("from").c_str(), nullptr, 0) - (root ? ssize_t{sizeof "trusted.not"} : 0));
}

TEST_F(LinuxSysTest, ALockHoldsBetweenProcessesAndEndsWithThem) {
    WriteFile("lock", "");
    const FileHandle mine = std::move(*sys_->OpenForWrite(root_, "lock"));
    InChild([&]() -> std::string {
        const FileHandle theirs = std::move(*sys_->OpenForWrite(root_, "lock"));
        if (!sys_->TryLock(theirs).ok()) return "cannot take a free lock";
        _exit(0);  // without closing anything
    });
    ASSERT_TRUE(sys_->TryLock(mine).ok());
    InChild([&]() -> std::string {
        const FileHandle theirs = std::move(*sys_->OpenForWrite(root_, "lock"));
        return sys_->TryLock(theirs).code() == StatusCode::kLocked ? "" : "took a lock that is held";
    });
}

TEST_F(LinuxSysTest, LimitsOfTheProcessAreFailuresOfTheCall) {
    InChild([&]() -> std::string {
        rlimit files = {.rlim_cur = 20, .rlim_max = 40};
        (void)setrlimit(RLIMIT_NOFILE, &files);
        PrepareLinuxProcess();
        (void)getrlimit(RLIMIT_NOFILE, &files);
        if (files.rlim_cur != 40) return "the soft limit was not raised";
        std::vector<FileHandle> open;
        while (true) {
            Result<FileHandle> next = sys_->OpenFolder(path_);
            if (!next.ok()) {
                if (next.code() != StatusCode::kTooManyOpen) return "wrong code without descriptors";
                break;
            }
            open.push_back(std::move(*next));
        }
        if (open.size() < 20) return "too few files";
        if (sys_->ReadFolder(root_, [](const FolderEntry&) { return true; }).code() != StatusCode::kTooManyOpen)
            return "listing without descriptors";
        open.clear();

        const rlimit size = {.rlim_cur = 1000, .rlim_max = 1000};
        (void)setrlimit(RLIMIT_FSIZE, &size);
        const FileHandle file = std::move(*sys_->CreateFileAt(root_, "big", 0644));
        const std::string text(2000, 'x');
        if (*sys_->Write(file, 0, Bytes(text)) != 1000) return "not as much as fits";
        if (sys_->Write(file, 1000, Bytes(text)).code() != StatusCode::kFileTooLarge) return "beyond the size limit";
        int ends[2];
        if (pipe(ends) != 0) return "no pipe";
        close(ends[0]);
        return write(ends[1], "x", 1) == -1 && errno == EPIPE ? "" : "a broken pipe is not an error";
    });
}

TEST_F(LinuxSysTest, DescriptorsDoNotReachOtherPrograms) {
    WriteFile("f", "");
    const std::vector<FileHandle> all = [&] {
        std::vector<FileHandle> open;
        open.push_back(std::move(*sys_->OpenFolder(path_)));
        open.push_back(std::move(*sys_->OpenParent(root_)));
        open.push_back(std::move(*sys_->OpenForRead(root_, "f")));
        open.push_back(std::move(*sys_->OpenForWrite(root_, "f")));
        open.push_back(std::move(*sys_->CreateFileAt(root_, "g", 0644)));
        open.push_back(std::move(*sys_->CreateNameless(root_, 0644)));
        return open;
    }();
    for (const FileHandle& handle : all)
        EXPECT_NE(fcntl(handle.number(), F_GETFD) & FD_CLOEXEC, 0);
}

}  // namespace
}  // namespace kinsort
