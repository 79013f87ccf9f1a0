// Whether the blocks and loops of a script match, line by line.
#pragma once

#include <string_view>
#include <vector>

#include "script/ScriptLine.h"
#include "script/check/ScriptFinding.h"

namespace kinsort {

class BlockCheck {
  public:
    explicit BlockCheck(FindingList& findings) : findings_(findings) {}

    // Each line in turn, and at last Finish. Lines stay where they are meanwhile.
    void Visit(const ScriptLine& line);
    void Finish();

    // Of the line that was visited last.
    bool isInIf() const { return IsInside(LineKind::kIf); }
    bool isInFor() const { return IsInside(LineKind::kFor); }
    bool isInLoop() const { return isInFor() || IsInside(LineKind::kDo); }

  private:
    struct OpenBlock {
        LineKind opener;
        const ScriptLine* line;
        bool hasElse;
    };

    bool IsInside(LineKind opener) const;
    void VisitElse(const ScriptLine& line);
    void Close(const ScriptLine& line, LineKind opener);
    void VisitUnreachable(const ScriptLine& line);

    FindingList& findings_;
    std::vector<OpenBlock> open_;
    const ScriptLine* leaving_ = nullptr;  // the line before, when none can follow it
};

}  // namespace kinsort
