#include "script/ScriptRun.h"

#include <algorithm>

namespace kinsort {
namespace {

constexpr int32_t kPauseSliceMs = 50;  // how late a pause notices that the run is cancelled

MessageRequest BoxOf(std::u16string_view text) {
    MessageRequest request;
    request.text = text;
    return request;
}

}  // namespace

ScriptRun::ScriptRun(ScriptSession& theSession, const ScriptCall& theCall, VariableTable& theVariables,
                     OptionTable& theOptionTable)
    : session(theSession),
      services(theSession.services),
      call(theCall),
      hostWindow(theCall.hostWindow != kNoWindow ? theCall.hostWindow
                                                 : services.windows.FindTopLevel(kHostWindowClass)),
      itemsAtStart(theCall.selectedItems.size()),
      selectedItems(theCall.selectedItems),
      variables(theVariables),
      optionTable(theOptionTable),
      source(services.files),
      tokens(theCall.scriptPath, theCall.selectedItems.size()),
      scope{theVariables,          services.folders,    services.system,       services.clock,
            theCall.currentFolder, theCall.otherFolder, theCall.selectedItems, -1},
      processes{services.processes,   services.opener, services.ui, services.files,
                services.environment, services.codec,  {}},
      readFile(services.files) {
    processes.isCancelled = [this] { return isCancelled(); };
    ReadOptions(optionTable, options);
}

LineOutcome ScriptRun::Fail(ScriptError error, std::u16string_view text) {
    return FailWith(std::u16string(ScriptErrorText(error)).append(text));
}

LineOutcome ScriptRun::FailWith(std::u16string_view message) {
    Tell(message);
    session.ending = ScriptEnding::kError;
    return LineOutcome::kEndWithZero;
}

LineOutcome ScriptRun::FailTooLong(std::u16string_view statement) {
    return FailWith(std::u16string(kExpandedTooLongMessage).append(statement));
}

void ScriptRun::Tell(std::u16string_view message) {
    services.ui.ShowMessage(BoxOf(message));
}

LineOutcome ScriptRun::Decline() {
    session.ending = ScriptEnding::kDeclined;
    return LineOutcome::kEndWithZero;
}

bool ScriptRun::isCancelled() const {
    if (services.pulse != nullptr) services.pulse->OnPulse();
    return services.cancel != nullptr && services.cancel->isCancelled();
}

void ScriptRun::Pause(int32_t milliseconds) {
    while (milliseconds > 0 && !isCancelled()) {
        const int32_t slice = std::min(milliseconds, kPauseSliceMs);
        services.sleeper.Sleep(slice);
        milliseconds -= slice;
    }
}

}  // namespace kinsort
