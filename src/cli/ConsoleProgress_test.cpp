#include "cli/ConsoleProgress.h"

#include <gtest/gtest.h>

#include "cli/CliFixture_test.h"
#include "text/Amounts.h"

namespace kinsort {
namespace {

ProgressState Running(uint64_t done, uint64_t total) {
    ProgressState state;
    state.phase = BatchPhase::kRunning;
    state.itemsDone = done;
    state.itemsTotal = total;
    return state;
}

TEST(Progress, FormatsSizesAndTimes) {
    const std::pair<double, const char*> sizes[] = {
        {0, "0 B"}, {999, "999 B"}, {1000, "1.0 kB"}, {12'345'678, "12.3 MB"}, {999'600, "1.0 MB"}, {123e9, "123 GB"}};
    for (const auto& [bytes, text] : sizes)
        EXPECT_EQ(FormatSize(bytes), text);
    const std::pair<double, const char*> times[] = {
        {0, "0:00"}, {35.4, "0:35"}, {59.6, "1:00"}, {3599, "59:59"}, {7509, "2:05:09"}};
    for (const auto& [seconds, text] : times)
        EXPECT_EQ(FormatDuration(seconds), text);
}

TEST(Progress, BarShowsWhatIsKnownAndFitsTheWindow) {
    ProgressState state = Running(450, 1000);
    EXPECT_EQ(FormatProgressBar(BatchAction::kMove, state, 60),
              "Moving  45% [############                ] 450 of 1000 items");
    state.bytesDone = 30;
    state.bytesTotal = 40;
    state.bytesPerSecond = 12.3e6;
    state.secondsLeft = 35;
    EXPECT_EQ(FormatProgressBar(BatchAction::kCopy, state, 79),
              "Copying  75% [##################      ] 450 of 1000 items, 12.3 MB/s, 0:35 left");
    EXPECT_EQ(FormatProgressBar(BatchAction::kCopy, state, 51), "Copying  75% 450 of 1000 items, 0:35 left");
    EXPECT_EQ(FormatProgressBar(BatchAction::kCopy, state, 40), "Copying  75% 450 of 1000 items");
    EXPECT_EQ(FormatProgressBar(BatchAction::kCopy, state, 20), "Copying  75% ");
    for (size_t columns = 0; columns < 120; ++columns) {
        EXPECT_LE(FormatProgressBar(BatchAction::kUndo, state, columns).size(), columns);
    }
    state.secondsLeft = 1e9;
    state.bytesPerSecond = 0;
    state.itemsPerSecond = 1200.4;
    EXPECT_EQ(FormatProgressLine(BatchAction::kCopy, state), "Copying: 450 of 1000 items, 1200 items/s");
    state.bytesDone = 50;  // more than announced: the file grew
    state.secondsLeft = 30;
    EXPECT_EQ(FormatProgressBar(BatchAction::kCopy, state, 60),
              "Copying 100% [#############] 450 of 1000 items, 1200 items/s");
    state = Running(0, 1);
    state.phase = BatchPhase::kPlanning;
    EXPECT_EQ(FormatProgressLine(BatchAction::kCopy, state), "Looking: 1 item");
}

TEST(ConsoleProgress, WritesAPlainLineNowAndThen) {
    CliFixture fixture;
    CliContext context(fixture.services);
    ConsoleProgress progress(context, BatchAction::kMove);
    const ProgressState state = Running(1, 2);
    progress.Report(state);
    EXPECT_EQ(fixture.terminal.messages, "") << "a short run says nothing";
    for (int second = 0; second < 11; ++second) {
        fixture.clock.Advance(1'000'000'000);
        progress.Report(state);
    }
    EXPECT_EQ(fixture.terminal.messages, "kinsort: Moving: 1 of 2 items\nkinsort: Moving: 1 of 2 items\n");
    context.console.SetQuiet(true);
    fixture.clock.Advance(60'000'000'000);
    progress.Report(state);
    EXPECT_EQ(fixture.terminal.messages.size(), 60U);
    EXPECT_EQ(fixture.terminal.output, "");
}

TEST(ConsoleProgress, LeavesAnEmptyLineOnATerminal) {
    CliFixture fixture;
    fixture.terminal.isTerminal[static_cast<size_t>(Stream::kMessages)] = true;
    fixture.terminal.columns = 30;
    CliContext context(fixture.services);
    {
        ConsoleProgress progress(context, BatchAction::kMove);
        progress.Report(Running(1, 2));
        EXPECT_EQ(fixture.terminal.messages, "\r\x1B[KMoving  50% 1 of 2 items");
    }
    EXPECT_TRUE(fixture.terminal.messages.ends_with("\r\x1B[K"));
}

}  // namespace
}  // namespace kinsort
