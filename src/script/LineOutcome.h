// What becomes of a run after one of its lines.
#pragma once

#include <cstdint>

namespace kinsort {

enum class LineOutcome : uint8_t {
    kNextLine,
    kMoved,            // the run was set to another line and goes on there
    kEndNormally,      // the deferred runs are carried out, then the run returns 0
    kEndWithZero,      // the run returns 0 at once; deferred runs are dropped
    kEndWithMinusOne,  // the run, and every run that includes it, returns -1 at once; deferred runs are dropped
};

}  // namespace kinsort
