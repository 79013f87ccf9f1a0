// Lets the user stop a script that the dialog runs: after a few seconds a small window offers it. A script runs on the
// dialog's own thread, which nobody else looks after meanwhile.
#pragma once

#include <cstdint>
#include <string>

#include "app/OperationView.h"
#include "fileop/Progress.h"
#include "framework/Messages.h"
#include "platform/Clock.h"
#include "script/ScriptServices.h"

namespace kinsort {

class ScriptStopView {
  public:
    virtual ~ScriptStopView() = default;

    // Shows the window, in front of the dialog, which takes no input as long as it is there.
    virtual void ShowStop(const ProgressTexts& texts) = 0;
    // Works off what happened to the program's windows since the last time. True once the user has asked to stop.
    virtual bool WasStopPressed() = 0;
    virtual void HideStop() = 0;
};

// One for each run; `services.pulse` and `services.cancel` of the run point to it.
class ScriptStop final : public ScriptPulse {
  public:
    // `shownPath` is the script, as people know its path. All references outlive the run.
    ScriptStop(Clock& clock, Messages& messages, ScriptStopView& view, std::u16string shownPath);
    ~ScriptStop() override;

    const CancelToken& token() const { return token_; }
    void OnPulse() override;

  private:
    Clock& clock_;
    Messages& messages_;
    ScriptStopView& view_;
    std::u16string shownPath_;
    CancelToken token_;
    int64_t lastPulseNs_;
    int64_t lastLookNs_ = 0;
    int64_t workedNs_ = 0;  // without the time in which the script waited for an answer
    bool isShown_ = false;
};

}  // namespace kinsort
