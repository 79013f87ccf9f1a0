// A script's services, with a report of each step that reaches outside: a program started, a file written, a message
// sent. A dry run only reports; nothing outside is touched, and the run goes on as if all had worked.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "script/ScriptServices.h"

namespace kinsort {

class Registry;

enum class Performance : uint8_t {
    kReportAndDo,
    kReportOnly,
};

// One line: "start: prog.exe a b", "write: C:\a.txt (appended, 6 bytes)". Paths are in the inner form.
using ReportStep = std::function<void(const std::u16string& step)>;

class ReportedServices {
  public:
    // `registry` is the one behind `inner.settings`. All outlive this object. What is only reported behaves like this:
    // a program ends at once with code 0, an opened document is handed over, a file takes every byte and is closed, a
    // host window is there and answers 0, waiting takes no time but moves the clock. Reading and asking stay what they
    // are.
    ReportedServices(const ScriptServices& inner, Registry& registry, ReportStep report, Performance performance);
    ~ReportedServices();
    ReportedServices(const ReportedServices&) = delete;
    ReportedServices& operator=(const ReportedServices&) = delete;

    const ScriptServices& services() const;

  private:
    struct Decorators;
    std::unique_ptr<Decorators> decorators_;
};

}  // namespace kinsort
