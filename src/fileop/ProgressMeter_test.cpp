#include "fileop/ProgressMeter.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "platform/fake/ManualClock.h"

namespace kinsort {
namespace {

constexpr int64_t kMillisecond = 1'000'000;
constexpr int64_t kSecond = 1'000 * kMillisecond;

class RecordingSink final : public ProgressSink {
  public:
    void Report(const ProgressState& state) override { states.push_back(state); }
    std::vector<ProgressState> states;
};

class ProgressMeterTest : public testing::Test {
  protected:
    void Tick() {
        meter.Tick([this] {
            ++namesAsked;
            return std::u16string(u"name");
        });
    }
    const ProgressState& Last() const { return sink.states.back(); }

    ManualClock clock;
    RecordingSink sink;
    ProgressMeter meter{clock, &sink};
    int namesAsked = 0;
};

TEST_F(ProgressMeterTest, ReportsAtOnceThenAtMostEvery50Milliseconds) {
    for (int i = 0; i < 1000; ++i) {
        Tick();
        clock.Advance(kMillisecond);
    }
    EXPECT_EQ(sink.states.size(), 20u);
    EXPECT_EQ(namesAsked, 20) << "a name costs: it is made only to be shown";
    EXPECT_EQ(Last().currentName, u"name");
    clock.SetWall(0);  // somebody sets the clock back
    clock.Advance(50 * kMillisecond);
    Tick();
    EXPECT_EQ(sink.states.size(), 21u);
    meter.ReportEnd();
    EXPECT_EQ(sink.states.size(), 22u) << "the end is told whenever it comes";
    EXPECT_EQ(Last().currentName, u"");
}

TEST_F(ProgressMeterTest, RateAndTimeLeftLookBackAFewSeconds) {
    meter.SetTotals(100, 1000);
    meter.SetPhase(BatchPhase::kRunning);
    Tick();
    EXPECT_EQ(Last().secondsLeft, -1);
    EXPECT_EQ(Last().bytesPerSecond, 0);
    for (int i = 0; i < 10; ++i) {  // ten seconds of 10 bytes and 2 items each
        clock.Advance(kSecond);
        meter.AddBytes(10);
        meter.AddItems(2);
        Tick();
    }
    EXPECT_EQ(Last().phase, BatchPhase::kRunning);
    EXPECT_DOUBLE_EQ(Last().bytesPerSecond, 10);
    EXPECT_DOUBLE_EQ(Last().itemsPerSecond, 2);
    EXPECT_DOUBLE_EQ(Last().secondsLeft, 90) << "of 900 bytes at 10 and 80 items at 2, the slower";
    for (int i = 0; i < 6; ++i) {  // now much faster: what was long ago no longer counts
        clock.Advance(kSecond);
        meter.AddBytes(100);
        meter.AddItems(2);
        Tick();
    }
    EXPECT_DOUBLE_EQ(Last().bytesPerSecond, 100);
    EXPECT_DOUBLE_EQ(Last().secondsLeft, 34) << "now the items are the slower: 68 at 2";
    meter.AddBytes(300);
    meter.AddItems(68);
    clock.Advance(kSecond);
    Tick();
    EXPECT_DOUBLE_EQ(Last().secondsLeft, 0);
}

TEST_F(ProgressMeterTest, NeverPromisesWhatItCannotKnow) {
    meter.SetTotals(10, 0);
    Tick();
    clock.Advance(kSecond);
    Tick();
    EXPECT_EQ(Last().secondsLeft, -1) << "nothing was done yet";
    meter.AddBytes(50);  // more than was planned: files grew, steps were added
    meter.AddItems(20);
    clock.Advance(kSecond);
    Tick();
    EXPECT_EQ(Last().bytesTotal, 50u);
    EXPECT_EQ(Last().itemsTotal, 20u);
    EXPECT_DOUBLE_EQ(Last().secondsLeft, 0);
    clock.Advance(3600 * kSecond);  // asleep for an hour
    Tick();
    EXPECT_GE(Last().bytesPerSecond, 0);
}

TEST_F(ProgressMeterTest, CountsFromManyThreadsAndWithoutAnybodyLooking) {
    {
        std::vector<std::jthread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([this] {
                for (int i = 0; i < 1000; ++i) {
                    meter.AddBytes(3);
                    meter.AddItems(1);
                }
            });
    }
    meter.ReportEnd();
    EXPECT_EQ(Last().bytesDone, 12'000u);
    EXPECT_EQ(Last().itemsDone, 4'000u);

    ProgressMeter unseen(clock, nullptr);
    unseen.Tick([]() -> std::u16string {
        ADD_FAILURE() << "nobody wants the name";
        return {};
    });
    unseen.ReportEnd();
}

}  // namespace
}  // namespace kinsort
