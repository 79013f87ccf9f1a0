#include "app/ScriptStop.h"

#include <utility>

#include "app/DialogTemplate.h"
#include "framework/MessageNumbers.h"

namespace kinsort {
namespace {

constexpr int64_t kMillisecond = 1'000'000;
constexpr int64_t kOfferAfterNs = 3'000 * kMillisecond;
constexpr int64_t kLookEveryNs = 50 * kMillisecond;
// A script gives a sign of life more often than this, unless it waits for an answer of its user.
constexpr int64_t kLongestWorkNs = 500 * kMillisecond;

}  // namespace

ScriptStop::ScriptStop(Clock& clock, Messages& messages, ScriptStopView& view, std::u16string shownPath)
    : clock_(clock),
      messages_(messages),
      view_(view),
      shownPath_(std::move(shownPath)),
      lastPulseNs_(clock.SteadyNanoseconds()) {}

ScriptStop::~ScriptStop() {
    if (isShown_) view_.HideStop();
}

void ScriptStop::OnPulse() {
    const int64_t now = clock_.SteadyNanoseconds();
    const int64_t passed = now - std::exchange(lastPulseNs_, now);
    if (passed < kLongestWorkNs) workedNs_ += passed;
    if (workedNs_ < kOfferAfterNs || now - lastLookNs_ < kLookEveryNs) return;
    lastLookNs_ = now;
    if (!isShown_) {
        isShown_ = true;
        view_.ShowStop({.title = std::u16string(kProgramTitle),
                        .headline = messages_.GetMessageText(kMsgScriptRuns),
                        .name = shownPath_,
                        .figures = {},
                        .cancel = messages_.GetMessageText(kMsgStopBatch)});
    }
    if (view_.WasStopPressed()) token_.Cancel();
}

}  // namespace kinsort
