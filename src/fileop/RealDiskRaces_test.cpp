// Batches on real folders that others change meanwhile, that are killed, that are many, and whose journals are not what
// they should be.
#include <fstream>
#include <set>

#include <signal.h>
#include <sys/resource.h>

#include "fileop/RealDisk_test.h"

namespace kinsort {
namespace {

constexpr OperationPolicy kSkip = RealPolicy(ConflictAnswer::kSkip, 1);
constexpr OperationPolicy kReplace = RealPolicy(ConflictAnswer::kReplace, 1);

class RealRaces : public RealDiskTest {
  protected:
    void Append(const std::string& name, const std::string& text) { std::ofstream(P(name), std::ios::app) << text; }
    void Replace(const std::string& name, const std::string& text) {
        WriteFile(name + ".new", text);
        std::filesystem::rename(P(name + ".new"), P(name));
    }
};

TEST_F(RealRaces, ASourceThatChangesMeanwhileIsNeverLost) {
    struct Case {
        const char* name;
        bool isMove;
        const char* folder;
        SysCall call;  // the first of its kind after the plan was made
        std::function<void()> meddle;
        ItemReason reason;  // kNone: it is done all the same
        std::string in;     // what is left of "in" and "out/A" or "usb"
        std::string target;
    };
    const auto vanish = [this] { std::filesystem::remove(P("in/a")); };
    const auto replace = [this] { Replace("in/a", "another file"); };
    const auto grow = [this] { Append("in/a", "+"); };
    const auto becomeFolder = [this] {
        std::filesystem::remove(P("in/a"));
        std::filesystem::create_directory(P("in/a"));
    };
    const auto becomeLink = [this] {
        std::filesystem::remove(P("in/a"));
        EXPECT_EQ(symlink("/etc/passwd", P("in/a").c_str()), 0);
    };
    const auto becomePipe = [this] {
        std::filesystem::remove(P("in/a"));
        EXPECT_EQ(mkfifo(P("in/a").c_str(), 0600), 0);
    };
    const Case cases[] = {
        {"move, vanished", true, "out/A", SysCall::kSync, vanish, ItemReason::kSourceGone, "", "b=B"},
        {"copy, vanished", false, "out/A", SysCall::kSync, vanish, ItemReason::kSourceGone, "b=B", "b=B"},
        {"transfer, vanished", true, "usb", SysCall::kSync, vanish, ItemReason::kSourceGone, "", "b=B"},
        {"move, replaced", true, "out/A", SysCall::kSync, replace, ItemReason::kSourceChanged, "a=another file", "b=B"},
        {"copy, replaced", false, "out/A", SysCall::kSync, replace, ItemReason::kSourceChanged, "a=another file b=B",
         "b=B"},
        {"transfer, replaced", true, "usb", SysCall::kSync, replace, ItemReason::kSourceChanged, "a=another file",
         "b=B"},
        {"move, grown", true, "out/A", SysCall::kSync, grow, ItemReason::kNone, "", "a=A+ b=B"},
        {"copy, grown", false, "out/A", SysCall::kSync, grow, ItemReason::kNone, "a=A+ b=B", "a=A+ b=B"},
        {"copy, grows", false, "out/A", SysCall::kRead, grow, ItemReason::kNone, "a=A+ b=B", "a=A+ b=B"},
        {"transfer, grows", true, "usb", SysCall::kRead, grow, ItemReason::kNone, "", "a=A+ b=B"},
        {"transfer, grown when copied", true, "usb", SysCall::kRemoveFileAt, grow, ItemReason::kNone, "", "a=A b=B"},
        {"transfer, grown when named", true, "usb", SysCall::kNameFile, grow, ItemReason::kSourceChanged, "a=A+",
         "b=B"},
        {"transfer, replaced when named", true, "usb", SysCall::kNameFile, replace, ItemReason::kSourceChanged,
         "a=another file", "b=B"},
        {"copy, replaced while read", false, "out/A", SysCall::kRead, replace, ItemReason::kNone, "a=another file b=B",
         "a=A b=B"},
        {"copy, now a folder", false, "out/A", SysCall::kSync, becomeFolder, ItemReason::kSystem, "a/ b=B", "b=B"},
        {"copy, now a link", false, "out/A", SysCall::kSync, becomeLink, ItemReason::kSystem, "a->/etc/passwd b=B",
         "b=B"},
        {"copy, now a pipe", false, "out/A", SysCall::kSync, becomePipe, ItemReason::kSystem, "a| b=B", "b=B"},
        {"move, now a link", true, "out/A", SysCall::kSync, becomeLink, ItemReason::kSourceChanged, "a->/etc/passwd",
         "b=B"},
    };
    for (const Case& test : cases) {
        if (std::string_view(test.folder) == "usb" && !hasOtherVolume()) continue;
        SCOPED_TRACE(test.name);
        WriteFile("in/a", "A");
        WriteFile("in/b", "B");
        FaultSys sys(*sys_);
        sys.AtKind(test.call, 1, Fault::Hook(test.meddle));
        const BatchResult result =
            Run(sys, {{test.isMove, "in/a", test.folder}, {test.isMove, "in/b", test.folder}}, kSkip);
        EXPECT_EQ(sys.strikes(), 1u);
        const bool isDone = test.reason == ItemReason::kNone;
        EXPECT_EQ(result.done, isDone ? 2u : 1u) << Explain(result);
        if (!isDone && !result.reports.empty()) {
            EXPECT_EQ(result.reports[0].reason, test.reason) << Explain(result);
        }
        EXPECT_EQ(Tree("in"), test.in);
        EXPECT_EQ(Tree(test.folder), test.target);
        (void)Undo();
        for (const char* folder : {"in/", "out/A/", "usb/"}) {
            std::filesystem::remove_all(P(folder + std::string("a")));
            std::filesystem::remove_all(P(folder + std::string("b")));
        }
    }
}

TEST_F(RealRaces, ATargetFolderThatIsNoLongerTheOneIsNotUsed) {
    const auto clear = [this](const char* folder) { std::filesystem::remove_all(P(folder)); };
    struct Case {
        const char* name;
        std::function<void()> meddle;
        std::string out;
    };
    const Case cases[] = {
        {"a link",
         [&] {
             clear("out/A");
             EXPECT_EQ(symlink(P("elsewhere").c_str(), P("out/A").c_str()), 0);
         },
         "A->" + P("elsewhere")},
        {"a file",
         [&] {
             clear("out/A");
             WriteFile("out/A", "file");
         },
         "A=file"},
        {"gone", [&] { clear("out/A"); }, ""},
        {"another folder",
         [&] {
             std::filesystem::rename(P("elsewhere"), P("out/A2"));
             clear("out/A");
             std::filesystem::rename(P("out/A2"), P("out/A"));
         },
         "A/"},
        {"a way that became a link",
         [&] {
             std::filesystem::rename(P("out/A"), P("moved"));
             EXPECT_EQ(symlink(P("elsewhere").c_str(), P("out/A").c_str()), 0);
         },
         "A->" + P("elsewhere")},
    };
    for (const Case& test : cases) {
        for (const bool isMove : {true, false}) {
            SCOPED_TRACE(test.name);
            for (const char* folder : {"out", "elsewhere", "moved", "in"})
                clear(folder);
            for (const char* folder : {"out/A", "elsewhere", "in", "out/B"})
                std::filesystem::create_directories(P(folder));
            WriteFile("in/a", "A");
            WriteFile("in/b", "B");
            FaultSys sys(*sys_);
            sys.AtKind(SysCall::kSync, 1, Fault::Hook(test.meddle));
            const BatchResult result = Run(sys, {{isMove, "in/a", "out/A"}, {isMove, "in/b", "out/B"}}, kReplace);
            EXPECT_EQ(sys.strikes(), 1u);
            EXPECT_EQ(result.done, 1u) << Explain(result);
            ASSERT_EQ(result.reports.size(), 1u);
            EXPECT_EQ(result.reports[0].reason, ItemReason::kTargetFolderChanged);
            EXPECT_EQ(ReadFile("in/a"), "A");
            EXPECT_EQ(Tree("out"), test.out + (test.out.empty() ? "" : " ") + "B/ B/b=B");
            EXPECT_EQ(Has("elsewhere/a") || Has("moved/a"), false);
            EXPECT_EQ(Undo().done, 1u);
        }
    }
}

class RealKills : public RealRaces {
  protected:
    struct Scenario {
        const char* name;
        std::vector<Job> jobs;
        bool isUndo = false;
    };

    void MakeFiles() {
        for (const char* folder : {"in", "out", "state"})
            std::filesystem::remove_all(P(folder));
        for (const char* folder : {"in/album/deep", "out/A", "out/B", "state/undo", "usb/U"})
            std::filesystem::create_directories(P(folder));
        EXPECT_EQ(chmod(P("state/undo").c_str(), 0700), 0);
        for (const auto& entry : std::filesystem::directory_iterator(other_))
            std::filesystem::remove_all(entry.path());
        std::filesystem::create_directories(P("usb/U"));
        for (const char* name : {"in/a", "in/b", "in/album/one", "in/album/deep/two"})
            WriteFile(name, std::string("content of ") + name);
        for (const char* name : {"out/A/a", "usb/U/a"})
            WriteFile(name, std::string("old content of ") + name);
    }
    void Act(Sys& sys, const Scenario& scenario) {
        if (scenario.isUndo) {
            (void)UndoHistory(ServicesOn(sys)).Undo(1, nullptr, nullptr);
        } else {
            (void)Run(sys, scenario.jobs, kReplace);
        }
    }
    void Start(const Scenario& scenario) {
        MakeFiles();
        if (scenario.isUndo) {
            EXPECT_EQ(Run(scenario.jobs, kReplace).done, scenario.jobs.size());
        }
    }
    // Both volumes, without the journals and what is kept for undo.
    std::string All() const {
        std::string all;
        for (const char* top : {"in", "out", "usb"})
            all += std::string(top) + ": " + Tree(top, Kept::kHidden) + " ";
        return all;
    }
    // Whether something is kept or left over, in the target folders or beside the journals.
    bool HasLeftovers() const {
        return Tree("usb").find(".kinsort-") != std::string::npos ||
               Tree("out").find(".kinsort-") != std::string::npos || Tree("state/undo").find("/") != std::string::npos;
    }

    // Ends the child that acts by SIGKILL at its call `number`.
    void KillAt(uint64_t number, const Scenario& scenario) {
        const pid_t child = fork();
        if (child == 0) {
            FaultSys sys(*sys_);
            sys.At(number, Fault::Signal());
            Act(sys, scenario);
            _exit(0);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << scenario.name << " at call " << number;
    }
};

TEST_F(RealKills, AfterAKillEveryItemIsWholeAndUndoBringsAllBack) {
    if (!hasOtherVolume()) GTEST_SKIP() << "/dev/shm is missing or on the volume of the temporary files";
    const std::vector<Job> moves{{true, "in/b", "out/B"}, {true, "in/album", "out/A"}};
    const std::vector<Job> copies{{false, "in/b", "out/B"}, {false, "in/album", "out/A"}};
    const std::vector<Job> replacing{{true, "in/a", "out/A"}, {false, "in/b", "out/A"}};
    const std::vector<Job> transfers{{true, "in/a", "usb/U"}, {true, "in/album", "usb/U"}};
    const Scenario scenarios[] = {{"move", moves},
                                  {"copy", copies},
                                  {"replace", replacing},
                                  {"transfer", transfers},
                                  {"undo of move", moves, true},
                                  {"undo of copy", copies, true},
                                  {"undo of replace", replacing, true},
                                  {"undo of transfer", transfers, true}};
    constexpr uint64_t kPoints = 14;
    for (const Scenario& scenario : scenarios) {
        Start(scenario);
        const std::string before = All();
        FaultSys counting(*sys_);
        Act(counting, scenario);
        const std::string after = All();
        const uint64_t calls = counting.calls();
        ASSERT_NE(before, after);
        size_t torn = 0;
        for (uint64_t point = 0; point < kPoints; ++point) {
            const uint64_t number = 1 + point * (calls - 1) / (kPoints - 1);
            const bool finishes = point % 2 == 0;
            const std::string where = std::string(scenario.name) + ", killed at " + counting.Describe(number) +
                                      (finishes ? ", finished" : ", taken back");
            Start(scenario);
            KillAt(number, scenario);
            UndoHistory history(ServicesOn(*sys_));
            const auto list = history.List();
            ASSERT_TRUE(list.ok()) << where;
            bool isTorn = false;
            for (const BatchSummary& batch : *list) {
                ASSERT_NE(batch.state, BatchState::kRunning) << where << ": the lock died with its holder";
                if (batch.state != BatchState::kUnfinished) continue;
                isTorn = true;
                const BatchResult result = history.Recover(
                    batch.id, finishes ? RecoverAction::kFinish : RecoverAction::kUndo, nullptr, nullptr);
                EXPECT_TRUE(result.status.ok()) << where;
                EXPECT_EQ(result.failed + result.skipped + result.notReached, 0u) << where << " " << Explain(result);
            }
            torn += isTorn ? 1 : 0;
            if (isTorn) {
                EXPECT_EQ(All(), finishes ? after : before) << where;
            } else {
                EXPECT_TRUE(All() == before || All() == after) << where << "\n" << All();
            }
            if (All() == after && !scenario.isUndo) {
                EXPECT_EQ(Undo().failed, 0u) << where;
            }
            if (!scenario.isUndo) {
                EXPECT_EQ(All(), before) << where;
                EXPECT_FALSE(HasLeftovers()) << where << "\n" << Tree("usb") << Tree("state/undo");
            }
        }
        EXPECT_GT(torn, 2u) << scenario.name << ": hardly any kill struck";
    }
}

TEST_F(RealRaces, OfTwoThatUndoOneDoesItAndTheOtherIsTold) {
    constexpr int kFiles = 30;
    std::vector<Job> jobs;
    for (int i = 0; i < kFiles; ++i) {
        WriteFile("in/" + std::to_string(i), std::to_string(i));
        jobs.push_back({i % 2 == 0, "in/" + std::to_string(i), "out/A"});
    }
    Age();
    const std::string before = Snapshot(Times::kAll);
    std::set<StatusCode> refusals;
    for (int round = 0; round < 50; ++round) {
        const BatchResult sorted = Run(jobs, RealPolicy(ConflictAnswer::kSkip));
        ASSERT_EQ(sorted.done, jobs.size()) << round;
        int ready[2];
        ASSERT_EQ(pipe2(ready, O_CLOEXEC), 0);
        pid_t children[2];
        for (pid_t& child : children) {
            child = fork();
            if (child != 0) continue;
            char go = 0;
            close(ready[1]);
            (void)!read(ready[0], &go, 1);  // ends when the parent lets go
            const BatchResult result = Undo(sorted.id);
            const bool isWhole = result.status.ok() && result.done == jobs.size();
            _exit(isWhole ? 0 : result.done > 0 ? 100 : static_cast<int>(result.status.code()));
        }
        close(ready[0]);
        close(ready[1]);
        int done = 0;
        for (const pid_t child : children) {
            int status = 0;
            ASSERT_EQ(waitpid(child, &status, 0), child);
            ASSERT_TRUE(WIFEXITED(status)) << round;
            if (WEXITSTATUS(status) == 0) {
                ++done;
            } else {
                refusals.insert(static_cast<StatusCode>(WEXITSTATUS(status)));
            }
        }
        ASSERT_EQ(done, 1) << round;
        ASSERT_EQ(Snapshot(Times::kAll), before) << round;
    }
    for (const StatusCode refusal : refusals)
        EXPECT_TRUE(refusal == StatusCode::kLocked || refusal == StatusCode::kInvalid) << static_cast<int>(refusal);
}

TEST_F(RealRaces, AJournalThatOthersCouldHaveWrittenIsNotActedOn) {
    WriteFile("in/a", "A");
    WriteFile("in/b", "B");
    ASSERT_EQ(Run({{true, "in/a", "out/A"}}, kSkip).done, 1u);
    const std::string sorted = Snapshot(Times::kAll);
    const std::string journal = P("state/undo/0000000000000001.batch");
    const std::string aside = P("state/aside");
    struct Case {
        const char* name;
        std::function<void()> spoil;
        std::function<void()> mend;
    };
    const auto setMode = [](const std::string& path, mode_t mode) { EXPECT_EQ(chmod(path.c_str(), mode), 0); };
    const Case cases[] = {
        {"others may write", [&] { setMode(journal, 0620); }, [&] { setMode(journal, 0600); }},
        {"a second name", [&] { std::filesystem::create_hard_link(journal, aside); },
         [&] { std::filesystem::remove(aside); }},
        {"a link",
         [&] {
             std::filesystem::rename(journal, aside);
             std::filesystem::create_symlink(aside, journal);
         },
         [&] { std::filesystem::rename(aside, journal); }},
        {"a pipe",
         [&] {
             std::filesystem::rename(journal, aside);
             EXPECT_EQ(mkfifo(journal.c_str(), 0600), 0);
         },
         [&] { std::filesystem::rename(aside, journal); }},
        {"a folder",
         [&] {
             std::filesystem::rename(journal, aside);
             std::filesystem::create_directory(journal);
         },
         [&] {
             std::filesystem::remove(journal);
             std::filesystem::rename(aside, journal);
         }},
        {"empty",
         [&] {
             std::filesystem::rename(journal, aside);
             std::ofstream(journal).close();
             setMode(journal, 0600);
         },
         [&] { std::filesystem::rename(aside, journal); }},
        {"somebody else's", [&] { EXPECT_EQ(chown(journal.c_str(), 12345, 12345), 0); },
         [&] { EXPECT_EQ(chown(journal.c_str(), 0, 0), 0); }},
    };
    for (const Case& test : cases) {
        if (std::string_view(test.name) == "somebody else's" && geteuid() != 0) continue;
        SCOPED_TRACE(test.name);
        test.spoil();
        UndoHistory history(ServicesOn(*sys_));
        EXPECT_EQ(history.NewestUndoable(), 0u);
        EXPECT_FALSE(history.Undo(1, nullptr, nullptr).status.ok());
        EXPECT_FALSE(history.Recover(1, RecoverAction::kUndo, nullptr, nullptr).status.ok());
        EXPECT_EQ(Snapshot(Times::kAll), sorted);
        // A new batch neither stumbles over it nor touches it.
        const BatchResult next = Run({{false, "in/b", "out/B"}}, kSkip);
        EXPECT_EQ(next.done, 1u) << Explain(next);
        EXPECT_EQ(Undo(next.id).done, 1u);
        EXPECT_EQ(Snapshot(Times::kAll), sorted);
        test.mend();
    }
    EXPECT_EQ(Undo(1).done, 1u) << "mended, it is as good as before";
}

TEST_F(RealRaces, AnUndoFolderThatOthersMayWriteToIsRefused) {
    WriteFile("in/a", "A");
    ASSERT_EQ(Run({{true, "in/a", "out/A"}}, kSkip).done, 1u);
    const std::string before = Snapshot(Times::kAll);
    const std::string folder = P("state/undo");
    const auto expectRefused = [&](const char* how) {
        WriteFile("in/b", "B");
        EXPECT_EQ(Run({{true, "in/b", "out/A"}}, kSkip).status.code(), StatusCode::kAccessDenied) << how;
        UndoHistory history(ServicesOn(*sys_));
        EXPECT_EQ(history.List().code(), StatusCode::kAccessDenied) << how;
        EXPECT_EQ(history.Undo(1, nullptr, nullptr).status.code(), StatusCode::kAccessDenied) << how;
        EXPECT_EQ(history.Redo(1, nullptr, nullptr).status.code(), StatusCode::kAccessDenied) << how;
        EXPECT_EQ(history.Recover(1, RecoverAction::kUndo, nullptr, nullptr).status.code(), StatusCode::kAccessDenied);
        EXPECT_EQ(history.Prune(0).code(), StatusCode::kAccessDenied) << how;
        EXPECT_EQ(Tree("in") + " " + Tree("out"), "b=B A/ A/a=A B/") << how;
    };
    for (const mode_t mode : {0720, 0702, 01777}) {
        ASSERT_EQ(chmod(folder.c_str(), mode), 0);
        expectRefused(std::to_string(mode).c_str());
    }
    ASSERT_EQ(chmod(folder.c_str(), 0700), 0);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(folder.c_str(), 12345, 12345), 0);
        expectRefused("somebody else's");
        ASSERT_EQ(chown(folder.c_str(), 0, 0), 0);
    }
    EXPECT_EQ(Undo(1).done, 1u);
    EXPECT_EQ(Tree("in"), "a=A b=B");
}

TEST_F(RealRaces, AHugeFolderNeedsLittleMemory) {
    if (KINSORT_SANITIZED) GTEST_SKIP() << "a sanitizer's own memory hides the engine's";
    constexpr uint64_t kFiles = 20'000;
    constexpr uint64_t kMostForEach = 3 << 10;  // bytes
    std::vector<Job> jobs;
    for (uint64_t i = 0; i < kFiles; ++i) {
        const std::string name = "in/" + std::to_string(i);
        ASSERT_EQ(mknod(P(name).c_str(), S_IFREG | 0644, 0), 0);
        jobs.push_back({true, name, "out/A"});
    }
    const auto most = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return static_cast<uint64_t>(usage.ru_maxrss) * 1024;
    };
    const auto measure = [&](const char* what, const std::function<BatchResult()>& act, const char* empty) {
        RunInChild([] { return std::string(); },
                   [&] {
                       const uint64_t before = most();
                       EXPECT_EQ(act().done, kFiles) << what;
                       EXPECT_LE((most() - before) / kFiles, kMostForEach) << "bytes for each file, " << what;
                       EXPECT_EQ(Tree(empty), "") << what;
                   });
    };
    measure(
        "moved", [&] { return Run(jobs, RealPolicy(ConflictAnswer::kSkip)); }, "in");
    measure(
        "undone", [&] { return Undo(); }, "out/A");
    measure(
        "redone", [&] { return Redo(); }, "in");
}

}  // namespace
}  // namespace kinsort
