// Whether the blocks and loops of a script match, line by line.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "script/ScriptLine.h"
#include "script/check/ScriptFinding.h"

namespace kinsort {

class BlockCheck {
  public:
    explicit BlockCheck(FindingList& findings) : findings_(findings) {}

    // Each line in turn, and at last Finish. Those that open a block are kept meanwhile.
    void Visit(const std::shared_ptr<const ScriptLine>& visited);
    void Finish();

    // Of the line that was visited last.
    bool isInIf() const { return IsInside(LineKind::kIf); }
    bool isInFor() const { return IsInside(LineKind::kFor); }
    bool isInLoop() const { return isInFor() || IsInside(LineKind::kDo); }

  private:
    struct OpenBlock {
        LineKind opener;
        std::shared_ptr<const ScriptLine> line;
        bool hasElse;
    };

    bool IsInside(LineKind opener) const;
    void VisitElse(const ScriptLine& line);
    void Close(const ScriptLine& line, LineKind opener);
    void VisitUnreachable(const ScriptLine& line);

    FindingList& findings_;
    std::vector<OpenBlock> open_;
    int32_t leaving_ = 0;  // the number of the line before, when none can follow it
};

}  // namespace kinsort
