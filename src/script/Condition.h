// The conditions of `if` and `while`: two sides with one of eight operators between them.
#pragma once

#include <cstdint>
#include <string_view>

#include "script/ExpandLine.h"

namespace kinsort {

enum class ConditionResult : int8_t {
    kTrue = 1,
    kFalse = -1,
    kNoOperator = 0,  // a syntax error
    kTooLong = 2,     // ExpandLine gave nothing
};

// The operator is looked for before anything is filled in, in this order wherever it stands: == != !^ ^ <= >= < >.
// Both sides are expanded, trimmed and brought into number form; == and != compare without regard to case, < and its
// kind by value where both sides are whole numbers and in natural order where not, ^ and !^ with patterns
// ("*.txt;*.log") that must match the whole left side.
ConditionResult EvaluateCondition(std::u16string_view condition, const ExpansionScope& scope);

// Where the operator of a condition stands. `size` 0: there is none.
struct ConditionOperator {
    size_t position = 0;
    size_t size = 0;
};
ConditionOperator FindConditionOperator(std::u16string_view condition);

}  // namespace kinsort
