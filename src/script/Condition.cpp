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
#include "text/Trim.h"
#include "text/Wildcard.h"

namespace kinsort {

namespace {

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
    bool (*holds)(const std::u16string& left, const std::u16string& right);
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

// The sign that begins here, as an index into kOperators; the number of operators when none does.
size_t SignAt(std::u16string_view condition, size_t position) {
    const char16_t unit = condition[position];
    if (unit != u'=' && unit != u'!' && unit != u'^' && unit != u'<' && unit != u'>') return std::size(kOperators);
    for (size_t i = 0; i < std::size(kOperators); ++i)
        if (condition.substr(position).starts_with(kOperators[i].sign)) return i;
    return std::size(kOperators);
}

std::u16string Normalize(std::u16string text) {
    return IsPlainInteger(text) ? std::move(text) : NormalizeNumber(text);
}

}  // namespace

// One look at the text: the first place of the sign that comes first in kOperators.
Condition SplitCondition(std::u16string_view text) {
    size_t best = std::size(kOperators);
    size_t place = 0;
    for (size_t i = 0; i < text.size() && best > 0; ++i) {
        const size_t sign = SignAt(text, i);
        if (sign >= best) continue;
        best = sign;
        place = i;
    }
    if (best == std::size(kOperators)) return {};
    const Operator& op = kOperators[best];
    return {TrimView(text.substr(0, place)), TrimView(text.substr(place + op.sign.size())), op.holds};
}

ConditionResult EvaluateCondition(const Condition& condition, const ExpansionScope& scope) {
    if (condition.holds == nullptr) return ConditionResult::kNoOperator;
    auto left = ExpandLine(condition.left, scope, Trimming::kTrim);
    auto right = ExpandLine(condition.right, scope, Trimming::kTrim);
    if (!left || !right) return ConditionResult::kTooLong;
    const bool holds = condition.holds(Normalize(std::move(*left)), Normalize(std::move(*right)));
    return holds ? ConditionResult::kTrue : ConditionResult::kFalse;
}

}  // namespace kinsort
