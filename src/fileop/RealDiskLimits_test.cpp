// Batches on real folders where the system says no: full and read-only volumes, mounts, rights, limits of the process.
// Each test has a process of its own, which takes its mounts, rights and limits with it.
#include <cstring>

#include <errno.h>
#include <grp.h>
#include <linux/fs.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include "fileop/RealDisk_test.h"

namespace kinsort {
namespace {

constexpr OperationPolicy kSkip = RealPolicy(ConflictAnswer::kSkip);
constexpr OperationPolicy kReplace = RealPolicy(ConflictAnswer::kReplace);
constexpr uid_t kNobody = 65534;

std::string Because(const std::string& what) {
    return what + ": " + strerror(errno);
}

class RealLimits : public RealDiskTest {
  protected:
    // Mounts of this process alone; who is not root is the same user in a name space of users too.
    static std::string EnterOwnMounts() {
        const uid_t user = geteuid();
        const gid_t group = getegid();
        if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0)
            return Because("no namespace for mounts");
        const auto tell = [](const char* file, const std::string& text) {
            const int opened = open(file, O_WRONLY | O_CLOEXEC);
            const bool isTold = write(opened, text.data(), text.size()) == static_cast<ssize_t>(text.size());
            close(opened);
            return isTold;
        };
        const auto same = [](unsigned number) {
            return std::to_string(number) + " " + std::to_string(number) + " 1\n";
        };
        const bool isMapped =
            user == 0 || (tell("/proc/self/setgroups", "deny") && tell("/proc/self/gid_map", same(group)) &&
                          tell("/proc/self/uid_map", same(user)));
        if (!isMapped) return Because("no user namespace");
        const bool isOwn = mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        return isOwn ? "" : Because("no private mounts");
    }
    std::string MountSmall(const char* name, const char* options) {
        if (std::string reason = EnterOwnMounts(); !reason.empty()) return reason;
        return mount("tmpfs", P(name).c_str(), "tmpfs", 0, options) == 0 ? "" : Because("no tmpfs");
    }
    std::string BindMount(const char* what, const char* where, unsigned long flags) {
        if (mount(P(what).c_str(), P(where).c_str(), nullptr, MS_BIND, nullptr) != 0) return Because("no bind mount");
        const bool isSet = mount(nullptr, P(where).c_str(), nullptr, MS_REMOUNT | MS_BIND | flags, nullptr) == 0;
        return isSet ? "" : Because("no remount");
    }
    // Everything in the world becomes nobody's, and so does this process.
    std::string BecomeNobody() {
        if (geteuid() != 0) return {};
        const auto give = [](const Row& row) {
            EXPECT_EQ(fchownat(row.folder, row.name.c_str(), kNobody, kNobody, AT_SYMLINK_NOFOLLOW), 0) << row.path;
            return true;
        };
        Walk(home_.path(), give);
        if (hasOtherVolume() && chown(other_.c_str(), kNobody, kNobody) != 0) return Because("no chown");
        const bool isNobody = setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0 &&
                              setresuid(kNobody, kNobody, kNobody) == 0;
        if (!isNobody) return Because("cannot give up the rights of root");
        sys_ = MakeLinuxSys();
        return {};
    }
    static std::string Limit(__rlimit_resource what, rlim_t most) {
        rlimit limit{};
        if (getrlimit(what, &limit) == 0) limit.rlim_cur = std::min(most, limit.rlim_max);
        return setrlimit(what, &limit) == 0 ? "" : Because("no limit");
    }

    // Every one of the files is in exactly one of the two folders, whole.
    void ExpectEachOnce(size_t count, const char* source, const char* target, const std::string& content) {
        for (size_t i = 0; i < count; ++i) {
            const std::string name = "/" + std::to_string(i);
            EXPECT_NE(Has(source + name), Has(target + name)) << i;
            EXPECT_EQ(ReadFile((Has(source + name) ? source : target) + name), content) << i;
        }
    }
    std::vector<Job> MakeFiles(size_t count, const std::string& content, const char* target, bool isMove) {
        std::vector<Job> jobs;
        for (size_t i = 0; i < count; ++i) {
            WriteFile("in/" + std::to_string(i), content);
            jobs.push_back({isMove, "in/" + std::to_string(i), target});
        }
        return jobs;
    }
};

TEST_F(RealLimits, AFullVolumeKeepsWhatItHas) {
    std::filesystem::create_directories(P("out/small"));
    const std::string whyNot =
        RunInChild([this] { return MountSmall("out/small", "size=256k"); },
                   [this] {
                       WriteFile("in/big", std::string(1 << 20, 'x'));
                       WriteFile("in/little", "small enough");
                       WriteFile("out/small/big", "old");
                       Age();
                       const std::string before = Snapshot(Times::kAll);
                       for (const bool isMove : {true, false}) {
                           const BatchResult result =
                               Run({{isMove, "in/big", "out/small"}, {isMove, "in/little", "out/small"}}, kReplace);
                           ASSERT_EQ(result.failed, 1u) << Explain(result);
                           EXPECT_EQ(result.done, 1u);
                           EXPECT_EQ(result.reports.at(0).status.code(), StatusCode::kNoSpace);
                           EXPECT_EQ(Tree("out/small"), "big=old little=small enough");
                           EXPECT_TRUE(Has("in/big"));
                           EXPECT_EQ(Undo().done, 1u);
                           EXPECT_EQ(Snapshot(Times::kAll), before);
                       }
                   });
    if (!whyNot.empty()) GTEST_SKIP() << whyNot;
}

TEST_F(RealLimits, WhatFitsIsDoneAndTheRestStays) {
    std::filesystem::create_directories(P("out/small"));
    for (const char* options : {"size=256k", "nr_inodes=20"}) {
        const std::string whyNot = RunInChild(([this, options] { return MountSmall("out/small", options); }), [this] {
            const std::string content(20'000, 'c');
            const std::vector<Job> jobs = MakeFiles(40, content, "out/small", true);
            const std::string before = Snapshot(Times::kOfFiles);
            const BatchResult result = Run(jobs, kSkip);
            EXPECT_GT(result.done, 0u);
            EXPECT_GT(result.failed, 0u);
            EXPECT_EQ(result.done + result.failed, jobs.size()) << Explain(result);
            ExpectEachOnce(40, "in", "out/small", content);
            const BatchResult undone = Undo();
            EXPECT_EQ(undone.done, result.done) << Explain(undone);
            EXPECT_EQ(Snapshot(Times::kOfFiles), before);
        });
        if (!whyNot.empty()) GTEST_SKIP() << whyNot;
    }
}

TEST_F(RealLimits, NothingIsChangedWithoutRoomForTheJournal) {
    const std::string whyNot =
        RunInChild([this] { return MountSmall("state/undo", "size=64k,mode=0700"); },
                   [this] {
                       const std::vector<Job> jobs = MakeFiles(300, "content", "out/A", true);
                       const std::string before = Snapshot(Times::kOfFiles);
                       const auto fill = [this] {
                           const int file = open(P("state/undo/filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
                           const char block[4096] = {};
                           while (write(file, block, sizeof block) > 0) {
                           }
                           close(file);
                       };
                       fill();
                       BatchResult result = Run(jobs, kSkip);
                       EXPECT_EQ(result.status.code(), StatusCode::kNoSpace);
                       EXPECT_EQ(result.notReached, jobs.size());
                       EXPECT_EQ(Snapshot(Times::kOfFiles), before);
                       EXPECT_EQ(Tree("state/undo").find("batch"), std::string::npos);

                       unlink(P("state/undo/filler").c_str());
                       ASSERT_EQ(Run({jobs[0], jobs[1]}, kSkip).done, 2u);
                       fill();
                       const std::string sorted = Snapshot(Times::kAll);
                       result = Undo();
                       EXPECT_EQ(result.status.code(), StatusCode::kNoSpace) << Explain(result);
                       EXPECT_EQ(Snapshot(Times::kAll), sorted);
                       unlink(P("state/undo/filler").c_str());
                       EXPECT_EQ(Undo().done, 2u);
                       EXPECT_EQ(Snapshot(Times::kOfFiles), before);
                   });
    if (!whyNot.empty()) GTEST_SKIP() << whyNot;
}

TEST_F(RealLimits, AReadOnlyVolumeIsLeftAlone) {
    std::filesystem::create_directories(P("ro/album"));
    std::filesystem::create_directories(P("view"));
    WriteFile("ro/a.txt", "AAA");
    WriteFile("ro/album/one", "1");
    WriteFile("in/b.txt", "BBB");
    Age();
    const std::string whyNot = RunInChild(
        [this] {
            std::string reason = EnterOwnMounts();
            return reason.empty() ? BindMount("ro", "view", MS_RDONLY) : reason;
        },
        [this] {
            const std::string before = Snapshot(Times::kAll);
            for (const bool isMove : {true, false}) {
                const BatchResult into = Run({{isMove, "in/b.txt", "view"}}, kReplace);
                ASSERT_EQ(into.failed, 1u) << Explain(into);
                EXPECT_EQ(into.reports.at(0).status.code(), StatusCode::kReadOnly);
                EXPECT_EQ(Snapshot(Times::kAll), before);
            }
            // What cannot leave is not half moved: the same volume, but not a rename.
            const BatchResult away = Run({{true, "view/a.txt", "out/A"}}, kSkip);
            ASSERT_EQ(away.failed, 1u) << Explain(away);
            EXPECT_EQ(away.reports.at(0).status.code(), StatusCode::kReadOnly);
            EXPECT_EQ(Tree("out/A"), "");
            ExpectThereAndBack({{false, "view/a.txt", "out/A"}, {false, "view/album", "out/A"}}, kSkip,
                               [this] { EXPECT_EQ(Tree("out/A"), "a.txt=AAA album/ album/one=1"); });
        });
    if (!whyNot.empty()) GTEST_SKIP() << whyNot;
}

TEST_F(RealLimits, AMountIsAnotherVolumeAndCanBeRecognised) {
    for (const char* folder : {"in/album/deep", "in/mounted", "view", "out/A/view"})
        std::filesystem::create_directories(P(folder));
    WriteFile("in/album/deep/one", "1");
    WriteFile("in/a.txt", "AAA");
    Age();
    const std::string whyNot = RunInChild(
        [this] {
            std::string reason = EnterOwnMounts();
            if (reason.empty()) reason = BindMount("out/B", "view", 0);
            if (reason.empty()) reason = BindMount("in/album", "out/A/view", 0);
            if (reason.empty() && mount("tmpfs", P("in/mounted").c_str(), "tmpfs", 0, "size=1m") != 0)
                reason = Because("no tmpfs");
            return reason;
        },
        [this] {
            ExpectThereAndBack({{true, "in/a.txt", "view"}, {true, "in/album/deep", "view"}}, kSkip,
                               [this] { EXPECT_EQ(Tree("out/B"), "a.txt=AAA deep/ deep/one=1"); });
            const std::string before = Snapshot(Times::kAll);
            for (const char* inside : {"out/A/view", "out/A/view/deep"}) {
                const BatchResult refused = Run({{true, "in/album", inside}}, kSkip);
                ASSERT_EQ(refused.reports.size(), 1u) << inside;
                EXPECT_EQ(refused.reports[0].reason, ItemReason::kIntoItself) << inside;
            }
            EXPECT_EQ(Snapshot(Times::kAll), before);
            // A mount itself cannot be moved; what is in it is never lost.
            WriteFile("in/mounted/file", "on the mount");
            const BatchResult result = Run({{true, "in/mounted", "out/B"}}, kSkip);
            EXPECT_EQ(result.failed, 1u) << Explain(result);
            EXPECT_EQ(ReadFile("out/B/mounted/file"), "on the mount");
            (void)Undo();
            EXPECT_EQ(ReadFile("in/mounted/file"), "on the mount");
            EXPECT_FALSE(Has("out/B/mounted"));
        });
    if (!whyNot.empty()) GTEST_SKIP() << whyNot;
}

TEST_F(RealLimits, AFileBeyondTheSizeLimitFailsAlone) {
    WriteFile("in/big", std::string(100 << 10, 'x'));
    WriteFile("in/little", "small enough");
    const std::vector<Job> many = MakeFiles(400, "m", "out/A", true);
    Age();
    const std::string whyNot = RunInChild(
        [] {
            PrepareLinuxProcess();
            return Limit(RLIMIT_FSIZE, 32 << 10);
        },
        [&] {
            const std::string before = Snapshot(Times::kAll);
            const BatchResult result = Run({{false, "in/big", "out/B"}, {false, "in/little", "out/B"}}, kSkip);
            ASSERT_EQ(result.failed, 1u) << Explain(result);
            EXPECT_EQ(result.reports.at(0).status.code(), StatusCode::kFileTooLarge);
            EXPECT_EQ(Tree("out/B"), "little=small enough");
            EXPECT_EQ(Undo().done, 1u);
            EXPECT_EQ(Snapshot(Times::kAll), before);
            // The plan itself does not fit: then nothing begins.
            const BatchResult none = Run(many, kSkip);
            EXPECT_EQ(none.status.code(), StatusCode::kFileTooLarge);
            EXPECT_EQ(none.notReached, many.size());
            EXPECT_EQ(Snapshot(Times::kAll), before);
        });
    if (!whyNot.empty()) GTEST_SKIP() << whyNot;
}

TEST_F(RealLimits, FewDescriptorsAreEnoughForManyFolders) {
    std::vector<Job> jobs;
    for (int folder = 0; folder < 50; ++folder) {
        const std::string number = std::to_string(folder);
        std::filesystem::create_directories(P("in/" + number));
        for (int i = 0; i < 60; ++i) {
            const std::string name = "in/" + number + "/" + std::to_string(i);
            WriteFile(name, name);
            jobs.push_back({i % 30 != 0, name, "out/B/" + number});
        }
    }
    for (const bool isOtherVolume : {false, true}) {
        if (isOtherVolume && !hasOtherVolume()) break;
        if (isOtherVolume) std::erase_if(jobs, [](const Job& job) { return !job.source.ends_with("17"); });
        for (Job& job : jobs) {
            if (isOtherVolume) job.folder.replace(0, 5, "usb");
            std::filesystem::create_directories(P(job.folder));
        }
        const std::string whyNot = RunInChild(
            [] { return Limit(RLIMIT_NOFILE, 32); },
            [&] {
                const std::string before = Snapshot(Times::kOfFiles);
                const BatchResult result = Run(jobs, RealPolicy(ConflictAnswer::kSkip, 1));
                EXPECT_EQ(result.done, jobs.size()) << Explain(result).substr(0, 500);
                for (const Job& job : jobs)
                    ASSERT_EQ(ReadFile(job.folder + job.source.substr(job.source.find_last_of('/'))), job.source);
                EXPECT_EQ(Limit(RLIMIT_NOFILE, RLIM_INFINITY), "");
                const BatchResult undone = Undo();
                EXPECT_EQ(undone.done, jobs.size()) << Explain(undone).substr(0, 500);
                EXPECT_EQ(Snapshot(Times::kOfFiles), before);
            });
        if (!whyNot.empty()) GTEST_SKIP() << whyNot;
    }
}

TEST_F(RealLimits, AnImmutableFileStaysWhereItIs) {
    WriteFile("in/fixed", "fixed");
    WriteFile("in/free", "free");
    WriteFile("in/target", "new");
    WriteFile("out/A/target", "fixed too");
    const auto setImmutable = [this](const char* name, bool isOn) {
        const int file = open(P(name).c_str(), O_RDONLY | O_CLOEXEC);
        int flags = 0;
        bool isSet = ioctl(file, FS_IOC_GETFLAGS, &flags) == 0;
        flags = isOn ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
        isSet = isSet && ioctl(file, FS_IOC_SETFLAGS, &flags) == 0;
        close(file);
        return isSet;
    };
    if (!setImmutable("in/fixed", true) || !setImmutable("out/A/target", true))
        GTEST_SKIP() << "immutable files cannot be made here: " << strerror(errno);
    const std::string before = Snapshot(Times::kOfFiles);
    const BatchResult result =
        Run({{true, "in/fixed", "out/A"}, {true, "in/free", "out/A"}, {true, "in/target", "out/A"}}, kReplace);
    EXPECT_EQ(result.done, 1u) << Explain(result);
    EXPECT_EQ(result.failed, 2u);
    for (const ItemReport& report : result.reports)
        EXPECT_EQ(report.status.code(), StatusCode::kAccessDenied);
    EXPECT_EQ(Tree("in"), "fixed=fixed target=new");
    EXPECT_EQ(Tree("out/A"), "free=free target=fixed too");
    EXPECT_EQ(Undo().done, 1u);
    if (hasOtherVolume()) {
        // Copied and then not removable: the move did not happen.
        const BatchResult away = Run({{true, "in/fixed", "usb"}}, kSkip);
        EXPECT_EQ(away.failed, 1u) << Explain(away);
        EXPECT_EQ(Tree("usb"), "");
    }
    EXPECT_EQ(Snapshot(Times::kOfFiles), before);
    EXPECT_TRUE(setImmutable("in/fixed", false) && setImmutable("out/A/target", false));
}

TEST_F(RealLimits, AForeignFileInAStickyFolderStays) {
    if (geteuid() != 0) GTEST_SKIP() << "only root can make somebody else's files";
    WriteFile("out/A/theirs", "theirs");
    WriteFile("in/theirs", "mine");
    WriteFile("in/other", "mine too");
    const auto prepare = [this] {
        const uid_t root = geteuid();
        EXPECT_EQ(chown(P("in").c_str(), kNobody, kNobody), 0);
        for (const char* name : {"in/theirs", "in/other", "state", "state/undo"})
            EXPECT_EQ(chown(P(name).c_str(), kNobody, kNobody), 0);
        EXPECT_EQ(chown(P("out/A/theirs").c_str(), root, root), 0);
        EXPECT_EQ(chown(P("out/A").c_str(), root, root), 0);
        EXPECT_EQ(chmod(P("out/A").c_str(), 01777), 0);
        const bool isNobody = setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0 &&
                              setresuid(kNobody, kNobody, kNobody) == 0;
        return isNobody ? std::string() : Because("cannot give up the rights of root");
    };
    const std::string whyNot = RunInChild(prepare, [this] {
        const std::string before = Snapshot(Times::kOfFiles);
        for (const bool isMove : {true, false}) {
            const BatchResult result = Run({{isMove, "in/theirs", "out/A"}, {isMove, "in/other", "out/A"}}, kReplace);
            EXPECT_EQ(result.done, 1u) << Explain(result);
            ASSERT_EQ(result.failed, 1u);
            EXPECT_EQ(result.reports.at(0).status.code(), StatusCode::kAccessDenied);
            EXPECT_EQ(Tree("out/A"), "other=mine too theirs=theirs");
            EXPECT_EQ(ReadFile("in/theirs"), "mine");
            EXPECT_EQ(Undo().done, 1u);
            EXPECT_EQ(Snapshot(Times::kOfFiles), before);
        }
        const BatchResult away = Run({{true, "out/A/theirs", "out/B"}, {true, "out/A/theirs", "in"}}, kReplace);
        EXPECT_EQ(away.done, 0u) << Explain(away);
        EXPECT_EQ(Snapshot(Times::kOfFiles), before);
    });
    if (!whyNot.empty()) GTEST_SKIP() << whyNot;
}

TEST_F(RealLimits, WithoutRightsNothingIsHalfDone) {
    for (const char* folder : {"in/locked", "in/plain", "out/closed", "out/folder"})
        std::filesystem::create_directories(P(folder));
    WriteFile("in/locked/inside", "inside");
    WriteFile("in/plain/readable", "r");
    WriteFile("in/plain/secret", "s", 0);
    WriteFile("in/secret", "hidden", 0);
    WriteFile("in/fixed", "read-only", 0444);
    WriteFile("in/a.txt", "AAA");
    Age();
    EXPECT_EQ(chmod(P("in/locked").c_str(), 0555), 0);
    EXPECT_EQ(chmod(P("out/closed").c_str(), 0555), 0);
    const std::string whyNot =
        RunInChild([this] { return BecomeNobody(); },
                   [this] {
                       const std::string before = Snapshot(Times::kAll);
                       // A move needs no rights to the file itself.
                       ExpectThereAndBack({{true, "in/secret", "out/A"}, {true, "in/fixed", "out/A"}}, kSkip,
                                          [this] { EXPECT_EQ(Tree("out/A"), "fixed=read-only secret=?"); });
                       ExpectThereAndBack({{false, "in/fixed", "out/A"}}, kSkip,
                                          [this] { EXPECT_EQ(Tree("out/A"), "fixed=read-only"); });
                       const Job denied[] = {{false, "in/secret", "out/A"},     {true, "in/a.txt", "out/closed"},
                                             {false, "in/a.txt", "out/closed"}, {true, "in/locked/inside", "out/A"},
                                             {true, "in/secret", "usb"},        {true, "in/locked/inside", "usb"}};
                       for (const Job& job : denied) {
                           if (job.folder == "usb" && !hasOtherVolume()) continue;
                           const BatchResult result = Run({job, {false, "in/fixed", "out/B"}}, kSkip);
                           EXPECT_EQ(result.done, 1u) << job.source << " " << Explain(result);
                           ASSERT_EQ(result.failed, 1u);
                           EXPECT_EQ(result.reports[0].status.code(), StatusCode::kAccessDenied)
                               << job.source << " " << job.folder;
                           EXPECT_EQ(Undo().done, 1u);
                           EXPECT_EQ(Snapshot(Times::kAll), before) << job.source << " to " << job.folder;
                       }
                   });
    if (!whyNot.empty()) GTEST_SKIP() << whyNot;
}

}  // namespace
}  // namespace kinsort
