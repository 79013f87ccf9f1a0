#include "cli/ConsoleProgress.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "text/Amounts.h"

namespace kinsort {
namespace {

constexpr int64_t kLineIntervalNs = 5'000'000'000;
constexpr size_t kShortestBar = 10;
constexpr size_t kLongestBar = 40;
constexpr double kLongestShown = 100.0 * 3600;  // seconds; beyond that nobody believes the number

std::string_view Doing(BatchAction action) {
    constexpr std::array<std::string_view, 5> kWords = {"Copying", "Moving", "Taking back", "Doing again", "Finishing"};
    return kWords[static_cast<size_t>(action)];
}

double FractionOf(const ProgressState& state) {
    const bool byBytes = state.bytesTotal > 0;
    const auto total = static_cast<double>(byBytes ? state.bytesTotal : state.itemsTotal);
    const auto done = static_cast<double>(byBytes ? state.bytesDone : state.itemsDone);
    return total > 0 ? std::clamp(done / total, 0.0, 1.0) : 0.0;
}

struct Details {
    std::string items;
    std::string rate;  // with ", " before it; empty while unknown, as the next
    std::string left;
};

Details DetailsOf(const ProgressState& state) {
    Details details{
        .items = std::to_string(state.itemsDone) + " of " + Counted(state.itemsTotal, "item"), .rate = {}, .left = {}};
    if (state.bytesPerSecond > 0) {
        details.rate = ", " + FormatSize(state.bytesPerSecond) + "/s";
    } else if (state.itemsPerSecond >= 1) {
        details.rate = ", " + std::to_string(std::llround(state.itemsPerSecond)) + " items/s";
    }
    // Once every byte is there, only names are left to be made, and the bytes' rate says nothing about those.
    const bool onlyNamesLeft = state.bytesTotal > 0 && state.bytesDone >= state.bytesTotal;
    if (!onlyNamesLeft && state.secondsLeft >= 0 && state.secondsLeft < kLongestShown) {
        details.left = ", " + FormatDuration(state.secondsLeft) + " left";
    }
    return details;
}

// As many of the details as fit, each whole: the rate goes first, then the time left.
std::string FitDetails(const Details& details, size_t columns) {
    for (const std::string& text : {details.items + details.rate + details.left, details.items + details.left}) {
        if (text.size() <= columns) return text;
    }
    return details.items.size() <= columns ? details.items : "";
}

}  // namespace

std::string FormatProgressLine(BatchAction action, const ProgressState& state) {
    if (state.phase == BatchPhase::kPlanning) return "Looking: " + Counted(state.itemsTotal, "item");
    if (state.phase == BatchPhase::kSyncing) return "Making it safe on the disk: " + Counted(state.itemsDone, "item");
    return std::string(Doing(action)) + ": " + FitDetails(DetailsOf(state), std::string::npos);
}

std::string FormatProgressBar(BatchAction action, const ProgressState& state, size_t columns) {
    if (state.phase != BatchPhase::kRunning) return FormatProgressLine(action, state).substr(0, columns);
    const double fraction = FractionOf(state);
    std::array<char, 8> percent{};
    std::snprintf(percent.data(), percent.size(), "%3d%%", static_cast<int>(fraction * 100));
    std::string line = std::string(Doing(action)) + " " + percent.data() + " ";
    const std::string details = FitDetails(DetailsOf(state), columns - std::min(columns, line.size()));
    const size_t taken = line.size() + details.size() + 3;  // brackets and a blank
    if (taken + kShortestBar <= columns) {
        const size_t length = std::min(columns - taken, kLongestBar);
        const auto filled = static_cast<size_t>(fraction * static_cast<double>(length));
        line.append(1, '[').append(filled, '#').append(length - filled, ' ').append("] ");
    }
    return (line + details).substr(0, columns);
}

ConsoleProgress::ConsoleProgress(CliContext& context, BatchAction action)
    : context_(context),
      action_(action),
      isTerminal_(context.services.terminal.IsTerminal(Stream::kMessages)),
      lastLineNs_(context.services.clock.SteadyNanoseconds()) {}

void ConsoleProgress::Report(const ProgressState& state) {
    if (context_.console.isQuiet()) return;
    if (isTerminal_) {
        // The last column stays free: some terminals wrap when it is written.
        const auto columns = static_cast<size_t>(std::max(context_.services.terminal.WindowColumns() - 1, 0));
        context_.console.PutMessage("\r\x1B[K" + FormatProgressBar(action_, state, columns));
        isDrawn_ = true;
        return;
    }
    const int64_t now = context_.services.clock.SteadyNanoseconds();
    if (now - lastLineNs_ < kLineIntervalNs) return;
    lastLineNs_ = now;
    context_.console.Note(FormatProgressLine(action_, state));
}

void ConsoleProgress::Clear() {
    if (!isDrawn_) return;
    context_.console.PutMessage("\r\x1B[K");
    isDrawn_ = false;
}

}  // namespace kinsort
