// Processes that never run: they do what a test has written down, in the order they are started.
#pragma once

#include <deque>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Processes.h"

namespace kinsort {

struct ScriptedRun {
    Status start;            // a failure: it cannot be started
    bool endsInTime = true;  // false: every Wait() runs out
    Result<bool> idle = true;
    uint32_t exitCode = 0;
    Status terminate;  // what the try to end it gives
};

class ScriptedProcesses final : public Processes {
  public:
    std::deque<ScriptedRun> runs;  // taken from the front; the default one when there are none left
    // What happened, in order.
    std::vector<ProcessRequest> started;
    std::vector<int32_t> waits;          // milliseconds
    std::vector<int32_t> idleWaits;      // likewise
    std::vector<uint32_t> terminations;  // exit codes

    Result<std::unique_ptr<Process>> Start(const ProcessRequest& request) override {
        started.push_back(request);
        ScriptedRun run;
        if (!runs.empty()) {
            run = runs.front();
            runs.pop_front();
        }
        if (!run.start.ok()) return run.start;
        return std::unique_ptr<Process>(std::make_unique<Scripted>(*this, run));
    }

  private:
    class Scripted final : public Process {
      public:
        Scripted(ScriptedProcesses& log, ScriptedRun run) : log_(log), run_(std::move(run)) {}
        bool Wait(int32_t milliseconds) override {
            log_.waits.push_back(milliseconds);
            return run_.endsInTime;
        }
        Result<bool> WaitForIdle(int32_t milliseconds) override {
            log_.idleWaits.push_back(milliseconds);
            return run_.idle;
        }
        uint32_t ExitCode() override { return run_.endsInTime ? run_.exitCode : kStillRunning; }
        Status Terminate(uint32_t exitCode) override {
            log_.terminations.push_back(exitCode);
            if (run_.terminate.ok()) run_ = {.start = {}, .exitCode = exitCode, .terminate = {}};
            return run_.terminate;
        }
        uint32_t Id() const override { return 4711; }

      private:
        ScriptedProcesses& log_;
        ScriptedRun run_;
    };
};

}  // namespace kinsort
