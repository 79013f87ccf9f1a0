// The conditions of `if` and `while`: two sides with one of eight operators between them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "script/ExpandLine.h"

namespace kinsort {

enum class ConditionResult : int8_t {
    kTrue = 1,
    kFalse = -1,
    kNoOperator = 0,  // a syntax error
    kTooLong = 2,     // ExpandLine gave nothing
};

// Taken apart, the sides trimmed; the views point into the text.
struct Condition {
    std::u16string_view left;
    std::u16string_view right;
    bool (*holds)(const std::u16string& left, const std::u16string& right) = nullptr;  // null: there is no operator
};

// The operator is looked for before anything is filled in, in this order wherever it stands: == != !^ ^ <= >= < >.
Condition SplitCondition(std::u16string_view text);

// Both sides are expanded, trimmed and brought into number form; == and != compare without regard to case, < and its
// kind by value where both sides are whole numbers and in natural order where not, ^ and !^ with patterns
// ("*.txt;*.log") that must match the whole left side.
ConditionResult EvaluateCondition(const Condition& condition, const ExpansionScope& scope);

}  // namespace kinsort
