#include "script/Condition.h"

#include <algorithm>
#include <optional>
#include <string>

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

Found FindOperator(std::u16string_view condition) {
    const auto sign = std::find_if(condition.begin(), condition.end(), [](char16_t unit) {
        return unit == u'=' || unit == u'!' || unit == u'^' || unit == u'<' || unit == u'>';
    });
    const auto first = static_cast<size_t>(sign - condition.begin());
    for (const Operator& op : kOperators) {
        const size_t position = condition.find(op.sign, first);
        if (position != condition.npos) return {&op, position};
    }
    return {};
}

}  // namespace

ConditionOperator FindConditionOperator(std::u16string_view condition) {
    const Found found = FindOperator(condition);
    return found.op == nullptr ? ConditionOperator{} : ConditionOperator{found.position, found.op->sign.size()};
}

ConditionResult EvaluateCondition(std::u16string_view condition, const ExpansionScope& scope) {
    const auto [op, position] = FindOperator(condition);
    if (op == nullptr) return ConditionResult::kNoOperator;
    const auto left = ExpandLine(condition.substr(0, position), scope, Trimming::kTrim);
    const auto right = ExpandLine(condition.substr(position + op->sign.size()), scope, Trimming::kTrim);
    if (!left || !right) return ConditionResult::kTooLong;
    return op->holds(NormalizeNumber(*left), NormalizeNumber(*right)) ? ConditionResult::kTrue
                                                                      : ConditionResult::kFalse;
}

}  // namespace kinsort
