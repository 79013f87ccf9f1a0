// Where a run stands among its blocks and loops. Lines are named by their index in ScriptSource. The current item of a
// "for" loop is ScriptRun::scope.forIndex.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kinsort {

// An open if-block.
enum class IfState : uint8_t {
    kElseRunning,     // the condition was false; the else branch runs
    kThenRunning,     // the condition was true; the then branch runs
    kThenSkipping,    // the condition was false; the then branch is skipped
    kRestSkipping,    // everything up to the endif is skipped
    kNestedSkipping,  // an if inside of a skipped then branch; its else does not count
};

enum class LoopKind : uint8_t { kFor = 1, kDo = 2 };

// Loops share one item and one pair of skip flags: nested "for" loops walk the items together.
struct FlowState {
    size_t current = 0;  // the line that is being run
    size_t next = 0;     // the one that is run after it
    std::vector<IfState> ifs;
    std::vector<LoopKind> loops;
    std::vector<size_t> doBodies;  // the line after each open "do"
    size_t forBody = 0;            // the line after the "for"
    bool skipsToNext = false;      // until a "next" line
    bool skipsToWhile = false;     // until a "while" line
    int32_t jumpCount = 0;         // backward jumps by "goto"
};

}  // namespace kinsort
