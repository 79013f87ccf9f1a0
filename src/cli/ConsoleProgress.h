// Progress of a batch: a bar that redraws itself on a terminal, now and then a plain line elsewhere.
#pragma once

#include <string>

#include "cli/CliContext.h"
#include "cli/Texts.h"
#include "fileop/Progress.h"

namespace kinsort {

// "Moving  45% [########          ] 450 of 1000 items, 12.3 MB/s, 0:35 left", at most `columns` wide.
std::string FormatProgressBar(BatchAction action, const ProgressState& state, size_t columns);
// "Moving: 450 of 1000 items, 12.3 MB/s, 0:35 left"
std::string FormatProgressLine(BatchAction action, const ProgressState& state);

class ConsoleProgress : public ProgressSink {
  public:
    ConsoleProgress(CliContext& context, BatchAction action);
    ~ConsoleProgress() override { Clear(); }

    void Report(const ProgressState& state) override;
    // Takes the bar off the screen, before something else is said.
    void Clear();

  private:
    CliContext& context_;
    BatchAction action_;
    bool isTerminal_;
    bool isDrawn_ = false;
    int64_t lastLineNs_;
};

}  // namespace kinsort
