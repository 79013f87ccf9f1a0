#include "framework/LaunchBatch.h"

#include <semaphore>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/fake/FakeEnvironment.h"
#include "platform/fake/MemoryFileSystem.h"
#include "platform/fake/ScriptedProcesses.h"
#include "platform/fake/ScriptedUserInterface.h"
#include "platform/linux/LinuxPathCodec.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Tells what it was asked to open, from any thread; can be held up.
class GatedOpener final : public DesktopOpener {
  public:
    std::vector<OpenRequest> opened;
    std::counting_semaphore<> asked{0};
    std::counting_semaphore<> gate{1'000};
    std::u16string missing;  // fails

    Status Open(const OpenRequest& request) override {
        asked.release();
        gate.acquire();
        opened.push_back(request);
        return request.file == missing ? Status::Failure(StatusCode::kNotFound) : Status();
    }
    void CloseGate() {
        while (gate.try_acquire()) {
        }
    }
};

class LaunchBatchTest : public testing::Test {
  protected:
    LaunchBatchTest() { ui_.mainWindow = 77; }

    LaunchBatch ThreeItems(int32_t mode, uint32_t elevated) const {
        LaunchBatch batch;
        batch.elevated = elevated;
        AddLaunchItem(batch, 99, u"one", u"a \"b c\"", u"Z:\\x", 3, 50);
        AddLaunchItem(batch, 99, u"two", u"", u"", kShowNormal, kWaitForever);
        AddLaunchItem(batch, mode, u"three", u"z", u"", kShowNormal, 70);
        return batch;
    }
    void Run(LaunchBatch& batch, LaunchWorkers& workers) {
        RunLaunchBatch(
            context_, [this](int32_t ms) { pauses_.push_back(ms); }, workers, batch);
        EXPECT_THAT(batch.items, IsEmpty());
    }
    std::vector<std::u16string> Opened() const {
        std::vector<std::u16string> files;
        for (const OpenRequest& request : opener_.opened)
            files.push_back(request.file);
        return files;
    }

    ScriptedProcesses processes_;
    GatedOpener opener_;
    ScriptedUserInterface ui_;
    MemoryFileSystem files_;
    FakeEnvironment environment_;
    std::unique_ptr<PathCodec> codec_ = MakeLinuxPathCodec("");
    ProcessContext context_{processes_, opener_, ui_, files_, environment_, *codec_, {}};
    std::vector<int32_t> pauses_;
};

TEST_F(LaunchBatchTest, ModesThroughTheDesktopDifferInWaitingAndPausing) {
    struct Case {
        int32_t mode;
        bool waits;
        std::vector<int32_t> pauses;
    };
    const Case cases[] = {{0, false, {}}, {1, true, {}}, {2, true, {200, 200, 200}}, {3, true, {500, 500, 500}}};
    LaunchWorkers workers;
    for (const Case& c : cases) {
        for (const uint32_t elevated : {0u, 5u}) {
            opener_.opened.clear();
            pauses_.clear();
            opener_.missing = u"two";  // the others start nevertheless
            LaunchBatch batch = ThreeItems(c.mode, elevated);
            Run(batch, workers);
            ASSERT_THAT(Opened(), ElementsAre(u"one", u"two", u"three")) << c.mode;
            EXPECT_EQ(pauses_, c.pauses);
            for (const OpenRequest& request : opener_.opened) {
                EXPECT_EQ(request.waitForOpener, c.waits);
                EXPECT_EQ(request.verb, elevated != 0 ? OpenVerb::kRunAs : OpenVerb::kDefault);
                EXPECT_EQ(request.owner, 77u);
            }
            EXPECT_THAT(opener_.opened[0].arguments, ElementsAre(u"a", u"b c"));
            EXPECT_EQ(opener_.opened[0].startFolder, u"Z:\\x");
            EXPECT_EQ(opener_.opened[0].showState, 3);
        }
    }
    EXPECT_THAT(processes_.started, IsEmpty());
    EXPECT_THAT(ui_.messages, IsEmpty());
}

TEST_F(LaunchBatchTest, UnknownModesAndEmptyBatchesLaunchNothing) {
    LaunchWorkers workers;
    for (const int32_t mode : {-1, 6, 9, 99}) {
        LaunchBatch batch = ThreeItems(mode, 0);
        Run(batch, workers);
    }
    for (int32_t mode = 0; mode <= 5; ++mode) {
        LaunchBatch batch;
        batch.mode = mode;
        Run(batch, workers);
    }
    EXPECT_THAT(opener_.opened, IsEmpty());
    EXPECT_THAT(processes_.started, IsEmpty());
    EXPECT_THAT(pauses_, IsEmpty());
}

TEST_F(LaunchBatchTest, WaitingForEachStopsAtTheFirstThatFailsOrTakesTooLong) {
    const ScriptedRun done;
    const ScriptedRun missing{.start = Status::Failure(StatusCode::kNotFound), .terminate = {}};
    const ScriptedRun late{.start = {}, .endsInTime = false, .terminate = {}};
    struct Case {
        std::deque<ScriptedRun> runs;
        std::deque<MessageAnswer> answers;
        size_t started;
        std::vector<uint32_t> terminations;
    };
    const Case cases[] = {
        {{done, done, done}, {}, 3, {}},
        {{missing, done, done}, {}, 1, {}},
        {{done, late, done}, {MessageAnswer::kNo}, 2, {}},
        {{late, done, done}, {MessageAnswer::kYes}, 1, {999}},
    };
    LaunchWorkers workers;
    for (const Case& c : cases) {
        processes_.runs = c.runs;
        ui_.messageAnswers = c.answers;
        processes_.started.clear();
        processes_.terminations.clear();
        LaunchBatch batch = ThreeItems(kLaunchEachWaited, 1);
        Run(batch, workers);
        EXPECT_EQ(processes_.started.size(), c.started);
        EXPECT_EQ(processes_.terminations, c.terminations);
        EXPECT_EQ(ui_.unexpected, 0);
        EXPECT_TRUE(ui_.messageAnswers.empty());
    }
    EXPECT_EQ(processes_.waits.front(), 50);
    EXPECT_EQ(processes_.started[0].startFolder, u"Z:\\x");
    EXPECT_THAT(opener_.opened, IsEmpty());
}

TEST_F(LaunchBatchTest, WhoGivesUpStartsNothingFurther) {
    LaunchWorkers workers;
    bool isCancelled = false;
    context_.isCancelled = [&] { return isCancelled; };
    LaunchBatch batch = ThreeItems(kLaunchPause200, 0);
    RunLaunchBatch(
        context_, [&](int32_t) { isCancelled = true; }, workers, batch);
    EXPECT_THAT(Opened(), ElementsAre(u"one"));

    // A wait without limit ends, and nobody is asked.
    batch = ThreeItems(kLaunchEachWaited, 0);
    isCancelled = false;
    int asked = 0;
    context_.isCancelled = [&] { return ++asked > 3; };
    processes_.runs = {{.start = {}, .endsInTime = false, .terminate = {}}};
    batch.items[0].timeoutMs = kWaitForever;
    Run(batch, workers);
    EXPECT_EQ(processes_.started.size(), 1u);
    EXPECT_THAT(ui_.messages, IsEmpty());

    // Slices add up to the time-out.
    context_.isCancelled = [] { return false; };
    processes_.runs = {{.start = {}, .endsInTime = false, .terminate = {}}};
    processes_.waits.clear();
    ui_.messageAnswers = {MessageAnswer::kNo};
    EXPECT_EQ(RunAndWait(context_, u"x", u"", u"", kShowNormal, 120), 0);
    EXPECT_THAT(processes_.waits, ElementsAre(50, 50, 20));
}

TEST_F(LaunchBatchTest, TheWorkerHasItsOwnCopyAndIsWaitedFor) {
    opener_.CloseGate();
    {
        LaunchWorkers workers;
        LaunchBatch batch = ThreeItems(kLaunchOnWorker, 1);
        Run(batch, workers);  // returns although nothing can be opened yet
        opener_.gate.release(1'000);
    }
    EXPECT_THAT(Opened(), ElementsAre(u"one", u"two", u"three"));
    for (const OpenRequest& request : opener_.opened) {
        EXPECT_EQ(request.verb, OpenVerb::kDefault);
        EXPECT_FALSE(request.waitForOpener);
        EXPECT_EQ(request.owner, kNoWindow);
    }
    EXPECT_EQ(opener_.opened[0].showState, 3);
    EXPECT_EQ(opener_.opened[0].startFolder, u"Z:\\x");
}

TEST_F(LaunchBatchTest, AWorkerThatHangsIsLeftBehindAndStartsNothingFurther) {
    opener_.CloseGate();
    {
        LaunchWorkers workers(std::chrono::milliseconds(0));
        LaunchBatch batch = ThreeItems(kLaunchOnWorker, 0);
        Run(batch, workers);
        opener_.asked.acquire();
    }
    EXPECT_EQ(WorkerThreads::LeftBehind(), 1u);
    opener_.gate.release(1'000);
    while (WorkerThreads::LeftBehind() > 0)
        std::this_thread::yield();
    EXPECT_THAT(Opened(), ElementsAre(u"one"));
}

}  // namespace
}  // namespace kinsort
