// A world of real folders for the tests of the batch engine: one on the volume of the temporary files, one on another
// volume where the machine has one, and ways to say exactly what is there.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "fileop/BatchWorld_test.h"
#include "platform/linux/LinuxSys.h"
#include "platform/linux/TemporaryFolder_test.h"

namespace kinsort {

constexpr OperationPolicy RealPolicy(ConflictAnswer conflicts, unsigned threads = 2) {
    return {.conflicts = conflicts, .durability = Durability::kContent, .threads = threads};
}

class RealDiskTest : public testing::Test {
  protected:
    struct Row {
        const std::string& path;  // below the folder that is walked
        int folder;
        const std::string& name;
        const struct stat& status;
    };
    enum class Times : uint8_t { kAll, kOfFiles };
    enum class Kept : uint8_t { kShown, kHidden };  // the folders for replaced files

    RealDiskTest() {
        EXPECT_EQ(chmod(home_.path().c_str(), 0755), 0);
        for (const char* folder : {"in", "out/A", "out/B", "state/undo"})
            std::filesystem::create_directories(P(folder));
        EXPECT_EQ(chmod(P("state/undo").c_str(), 0700), 0);
        struct stat here {};
        struct stat there {};
        char name[] = "/dev/shm/kinsort-XXXXXX";
        if (stat("/dev/shm", &there) != 0 || stat(home_.path().c_str(), &here) != 0) return;
        if (here.st_dev == there.st_dev || mkdtemp(name) == nullptr) return;
        other_ = name;
        EXPECT_EQ(chmod(name, 0755), 0);
    }
    ~RealDiskTest() override {
        std::error_code ignored;
        if (!other_.empty()) std::filesystem::remove_all(other_, ignored);
    }

    // "in/a.txt" is in the temporary folder, "usb/a.txt" on the other volume.
    std::string P(std::string_view name) const {
        if (name.starts_with("usb")) return other_ + std::string(name.substr(3));
        return home_.path() + "/" + std::string(name);
    }
    bool hasOtherVolume() const { return !other_.empty(); }

    // --- making -----------------------------------------------------------------------------------------------------
    void WriteFile(std::string_view name, std::string_view content, mode_t mode = 0644) {
        const int file = open(P(name).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        ASSERT_GE(file, 0) << name;
        EXPECT_EQ(write(file, content.data(), content.size()), static_cast<ssize_t>(content.size()));
        EXPECT_EQ(fchmod(file, mode), 0);
        EXPECT_EQ(close(file), 0);
    }
    std::string ReadFile(std::string_view name) const {
        const int file = open(P(name).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        if (file < 0) return "(none)";
        std::string content(1 << 20, '\0');
        content.resize(static_cast<size_t>(std::max<ssize_t>(0, read(file, content.data(), content.size()))));
        close(file);
        return content;
    }
    bool Has(std::string_view name) const {
        struct stat status {};
        return lstat(P(name).c_str(), &status) == 0;
    }
    // Gives everything times of long ago, each another one, to the nanosecond.
    void Age() {
        int64_t count = 0;
        const auto age = [&count](const Row& row) {
            const timespec time{1'500'000'000 + ++count * 1000, 987'654'321 - count};
            const timespec both[] = {time, time};
            EXPECT_EQ(utimensat(row.folder, row.name.c_str(), both, AT_SYMLINK_NOFOLLOW), 0) << row.path;
            return row.name != "state";
        };
        Walk(home_.path(), age);
        if (hasOtherVolume()) Walk(other_, age);
    }

    // --- acting -----------------------------------------------------------------------------------------------------
    FileOperationServices ServicesOn(Sys& sys) { return {sys, *codec_, clock_, P("state/undo")}; }
    BatchResult Run(Sys& sys, const std::vector<Job>& jobs, const OperationPolicy& policy,
                    AskUserAction* asker = nullptr) {
        FileOperation operation(ServicesOn(sys));
        operation.SetPolicy(policy);
        for (const Job& job : jobs) {
            const auto source = codec_->PathToInner(P(job.source));
            const auto folder = codec_->PathToInner(P(job.folder));
            job.isMove ? operation.MoveItems(source, folder) : operation.CopyItems(source, folder);
        }
        return operation.PerformOperations(asker, nullptr, nullptr);
    }
    BatchResult Run(const std::vector<Job>& jobs, const OperationPolicy& policy) { return Run(*sys_, jobs, policy); }
    BatchResult Undo(BatchId id = 0) {
        UndoHistory history(ServicesOn(*sys_));
        return history.Undo(id != 0 ? id : history.NewestUndoable(), nullptr, nullptr);
    }
    BatchResult Redo(BatchId id = 0) {
        UndoHistory history(ServicesOn(*sys_));
        return history.Redo(id != 0 ? id : history.NewestRedoable(), nullptr, nullptr);
    }
    std::string Explain(const BatchResult& result) const {
        std::string text = "done " + std::to_string(result.done) + ", batch status " +
                           std::to_string(static_cast<int>(result.status.code()));
        for (const ItemReport& report : result.reports) {
            text += "; " + codec_->PathForPeople(report.source) + " outcome " +
                    std::to_string(static_cast<int>(report.outcome)) + " reason " +
                    std::to_string(static_cast<int>(report.reason)) + " status " +
                    std::to_string(static_cast<int>(report.status.code()));
        }
        return text;
    }

    // Runs the jobs, undoes, redoes and undoes them again. `inspect` looks at what the batch and its redo brought
    // about.
    void ExpectThereAndBack(const std::vector<Job>& jobs, const OperationPolicy& policy,
                            const std::function<void()>& inspect) {
        const std::string before = Snapshot(Times::kAll);
        const BatchResult result = Run(jobs, policy);
        ASSERT_EQ(result.done, jobs.size()) << Explain(result);
        inspect();
        const std::string after = Snapshot(Times::kOfFiles);
        ASSERT_NE(after, before);
        for (const bool isLast : {false, true}) {
            const BatchResult undone = Undo();
            ASSERT_EQ(undone.done, jobs.size()) << Explain(undone);
            EXPECT_EQ(Snapshot(Times::kAll), before) << (isLast ? "after the undo of the redo" : "after the undo");
            if (isLast) break;
            const BatchResult redone = Redo();
            ASSERT_EQ(redone.done, jobs.size()) << Explain(redone);
            EXPECT_EQ(Snapshot(Times::kOfFiles), after);
            inspect();
        }
    }

    // --- looking ----------------------------------------------------------------------------------------------------
    // "path=content" of every file, "path/" of every folder, "path->text" of every link below `name`.
    std::string Tree(std::string_view name, Kept kept = Kept::kShown) const {
        std::string out;
        Walk(P(name), [&out, kept](const Row& row) {
            if (kept == Kept::kHidden && row.name.starts_with(".kinsort-")) return false;
            out += (out.empty() ? "" : " ") + row.path + ContentOf(row);
            return true;
        });
        return out;
    }
    // Everything that an undo has to give back, one line for each name; the journals are left out.
    std::string Snapshot(Times times) const {
        std::string out;
        const auto add = [&](const Row& row) {
            if (row.path == "state") return false;
            // What a batch keeps for its undo has other names after its redo.
            if (times == Times::kOfFiles && row.name.starts_with(".kinsort-")) return false;
            out += row.path + ContentOf(row) + " mode " + std::to_string(row.status.st_mode) + " links " +
                   std::to_string(row.status.st_nlink) + AttributesOf(row);
            if (times == Times::kAll || !S_ISDIR(row.status.st_mode)) {
                const timespec& at = row.status.st_mtim;
                out += " at " + std::to_string(at.tv_sec) + "." + std::to_string(at.tv_nsec);
            }
            out += "\n";
            return true;
        };
        Walk(home_.path(), add);
        if (hasOtherVolume()) Walk(other_, add);
        return out;
    }
    // Names in order, each folder before its contents, as deep as it goes; `visit` says whether to go into a folder.
    static void Walk(const std::string& folder, const std::function<bool(const Row&)>& visit) {
        const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ASSERT_GE(opened, 0) << folder;
        WalkBelow(opened, "", visit);
        close(opened);
    }

    // --- other processes --------------------------------------------------------------------------------------------
    // Runs `check` and its expectations in a process of its own, after `enter` there; returns why `enter` could not,
    // empty when it could.
    static std::string RunInChild(const std::function<std::string()>& enter, const std::function<void()>& check) {
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        fflush(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            const std::string reason = enter();
            if (reason.empty()) check();
            fflush(nullptr);
            _exit(write(ends[1], reason.data(), reason.size()) < 0 || HasFailure() ? 1 : 0);
        }
        close(ends[1]);
        char reason[300] = {};
        (void)!read(ends[0], reason, sizeof reason - 1);
        close(ends[0]);
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the child's expectations failed, see above";
        return reason;
    }

    std::unique_ptr<Sys> sys_ = MakeLinuxSys();
    std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec("/drives");
    TemporaryFolder home_;
    std::string other_;

  private:
    static void WalkBelow(int folder, const std::string& below, const std::function<bool(const Row&)>& visit) {
        std::vector<std::string> names;
        DIR* listing = fdopendir(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        ASSERT_NE(listing, nullptr) << below;
        while (const dirent* entry = readdir(listing)) {
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") names.emplace_back(name);
        }
        closedir(listing);
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) {
            struct stat status {};
            if (fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) continue;
            const std::string path = below + name;
            if (!visit({path, folder, name, status}) || !S_ISDIR(status.st_mode)) continue;
            const int inner = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            ASSERT_GE(inner, 0) << path;
            WalkBelow(inner, path + "/", visit);
            close(inner);
        }
    }

    static std::string ContentOf(const Row& row) {
        if (S_ISDIR(row.status.st_mode)) return "/";
        if (S_ISLNK(row.status.st_mode)) {
            std::string text(static_cast<size_t>(row.status.st_size), '\0');
            const ssize_t got = readlinkat(row.folder, row.name.c_str(), text.data(), text.size());
            return "->" + text.substr(0, static_cast<size_t>(std::max<ssize_t>(got, 0)));
        }
        if (!S_ISREG(row.status.st_mode)) return "|";
        const int file = openat(row.folder, row.name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
        if (file < 0) return "=?";
        std::string data;  // of a sparse file only what is no hole
        for (off_t at = 0; (at = lseek(file, at, SEEK_DATA)) >= 0;) {
            const off_t end = lseek(file, at, SEEK_HOLE);
            std::string part(static_cast<size_t>(end - at), '\0');
            EXPECT_EQ(pread(file, part.data(), part.size(), at), static_cast<ssize_t>(part.size())) << row.path;
            data += part;
            at = end;
        }
        close(file);
        if (data.size() <= 24 && row.status.st_size <= 24) return "=" + data;
        return "=" + data.substr(0, 3) + "~" + std::to_string(row.status.st_size) + "#" +
               std::to_string(std::hash<std::string_view>()(data));
    }

    static std::string AttributesOf(const Row& row) {
        if (!S_ISREG(row.status.st_mode) && !S_ISDIR(row.status.st_mode)) return {};
        const int file = openat(row.folder, row.name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        char names[1000];
        const ssize_t length = flistxattr(file, names, sizeof names);
        std::string out;
        for (ssize_t at = 0; at < length;) {
            const std::string name = names + at;
            at += static_cast<ssize_t>(name.size()) + 1;
            char value[1000];
            const ssize_t size = fgetxattr(file, name.c_str(), value, sizeof value);
            if (name.starts_with("user.") && size >= 0)
                out += " " + name + "=" + std::string(value, static_cast<size_t>(size));
        }
        close(file);
        return out;
    }

    ManualClock clock_;
};

}  // namespace kinsort
