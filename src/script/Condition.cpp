#include "script/Condition.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

#include "script/NumberText.h"
#include "text/AsciiCase.h"
#include "text/NaturalOrder.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Wildcard.h"

namespace kinsort {

namespace {

using Compare = bool (*)(const std::u16string& left, const std::u16string& right);

// Digits, with a sign or without; nothing at all is a number too.
bool IsNumeric(std::u16string_view text) {
    if (!text.empty() && (text.front() == u'+' || text.front() == u'-')) text.remove_prefix(1);
    return std::all_of(text.begin(), text.end(), IsDigit);
}

int Order(const std::u16string& left, const std::u16string& right) {
    if (!IsNumeric(left) || !IsNumeric(right)) return CompareNatural(left, right);
    const int32_t a = ReadInt32(left);
    const int32_t b = ReadInt32(right);
    return a < b ? -1 : a > b ? 1 : 0;
}

bool MatchesOneOf(const std::u16string& text, const std::u16string& patterns) {
    const std::u16string lower = AsciiLower(text);
    const auto all = SplitSkippingEmpty(AsciiLower(patterns), u';');
    return std::any_of(all.begin(), all.end(), [&](const auto& pattern) { return WildcardMatch(lower, pattern); });
}

struct Operator {
    std::u16string_view sign;
    Compare holds;
};

// In the order in which they are looked for.
constexpr Operator kOperators[] = {
    {u"==", [](const std::u16string& left, const std::u16string& right) { return EqualNoCase(left, right); }},
    {u"!=", [](const std::u16string& left, const std::u16string& right) { return !EqualNoCase(left, right); }},
    {u"!^", [](const std::u16string& left, const std::u16string& right) { return !MatchesOneOf(left, right); }},
    {u"^", [](const std::u16string& left, const std::u16string& right) { return MatchesOneOf(left, right); }},
    {u"<=", [](const std::u16string& left, const std::u16string& right) { return Order(left, right) <= 0; }},
    {u">=", [](const std::u16string& left, const std::u16string& right) { return Order(left, right) >= 0; }},
    {u"<", [](const std::u16string& left, const std::u16string& right) { return Order(left, right) < 0; }},
    {u">", [](const std::u16string& left, const std::u16string& right) { return Order(left, right) > 0; }},
};

struct Found {
    const Operator* op = nullptr;
    size_t position = 0;
};

// The sign that begins here, as an index into kOperators; the number of operators when none does.
size_t SignAt(std::u16string_view condition, size_t position) {
    const char16_t unit = condition[position];
    if (unit != u'=' && unit != u'!' && unit != u'^' && unit != u'<' && unit != u'>') return std::size(kOperators);
    for (size_t i = 0; i < std::size(kOperators); ++i)
        if (condition.substr(position).starts_with(kOperators[i].sign)) return i;
    return std::size(kOperators);
}

// One look at the text: the first place of the sign that comes first in kOperators.
Found FindOperator(std::u16string_view condition) {
    size_t best = std::size(kOperators);
    size_t place = 0;
    for (size_t i = 0; i < condition.size() && best > 0; ++i) {
        const size_t sign = SignAt(condition, i);
        if (sign >= best) continue;
        best = sign;
        place = i;
    }
    if (best == std::size(kOperators)) return {};
    return {&kOperators[best], place};
}

std::u16string Normalize(std::u16string text) {
    return IsPlainInteger(text) ? std::move(text) : NormalizeNumber(text);
}

}  // namespace

ConditionOperator FindConditionOperator(std::u16string_view condition) {
    const Found found = FindOperator(condition);
    return found.op == nullptr ? ConditionOperator{} : ConditionOperator{found.position, found.op->sign.size()};
}

ConditionResult EvaluateCondition(std::u16string_view condition, const ExpansionScope& scope) {
    const auto [op, position] = FindOperator(condition);
    if (op == nullptr) return ConditionResult::kNoOperator;
    auto left = ExpandLine(condition.substr(0, position), scope, Trimming::kTrim);
    auto right = ExpandLine(condition.substr(position + op->sign.size()), scope, Trimming::kTrim);
    if (!left || !right) return ConditionResult::kTooLong;
    return op->holds(Normalize(std::move(*left)), Normalize(std::move(*right))) ? ConditionResult::kTrue
                                                                                : ConditionResult::kFalse;
}

}  // namespace kinsort
