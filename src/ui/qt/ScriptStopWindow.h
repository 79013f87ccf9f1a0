// The window that stops a script.
#pragma once

#include <memory>

#include "app/ScriptStop.h"
#include "ui/qt/ProgressWindow.h"

namespace kinsort {

class QtScriptStopView final : public ScriptStopView {
  public:
    void ShowStop(const ProgressTexts& texts) override;
    bool WasStopPressed() override;
    void HideStop() override;

  private:
    std::unique_ptr<ProgressWindow> window_;
    bool isPressed_ = false;
};

}  // namespace kinsort
