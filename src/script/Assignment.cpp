#include "script/Assignment.h"

#include <algorithm>
#include <optional>

#include "script/ArithmeticEvaluator.h"
#include "script/NumberText.h"
#include "text/AsciiCase.h"
#include "text/Numbers.h"
#include "text/Trim.h"

namespace kinsort {

namespace {

constexpr std::u16string_view kClipboardFunction = u"GetClipboardText";

int64_t ReadOperand(std::u16string_view text) {
    return text.find(u'x') != text.npos ? ReadInt32AnyBase(text) : ReadInt64(text);
}

// In 64 bits that wrap; by zero is 0.
int64_t Compute(char16_t op, int64_t left, int64_t right) {
    const auto a = static_cast<uint64_t>(left);
    const auto b = static_cast<uint64_t>(right);
    switch (op) {
        case u'+':
            return static_cast<int64_t>(a + b);
        case u'-':
            return static_cast<int64_t>(a - b);
        case u'*':
            return static_cast<int64_t>(a * b);
        case u'/':
            return right == 0 ? 0 : left / right;  // `right` has no sign, so nothing overflows
        default:
            return right == 0 ? 0 : left % right;
    }
}

// What "+5" and "&tail" make of the old value; nothing when the right side is no such form. `untrimmed` is the right
// side with the blanks at its ends, which "&" keeps.
std::optional<std::u16string> ComputeCompound(const std::u16string& old, std::u16string_view right,
                                              std::u16string_view untrimmed) {
    if (right.size() < 2) return std::nullopt;
    const char16_t op = right.front();
    if (op == u'&') return old + std::u16string(untrimmed.substr(untrimmed.find(u'&') + 1));
    if (std::u16string_view(u"+-*/%").find(op) == std::u16string_view::npos) return std::nullopt;
    const std::u16string_view operand = right.substr(1);
    if (!IsIntegerText(operand)) return std::nullopt;
    return FormatInteger(Compute(op, ReadOperand(old), ReadOperand(operand)));
}

FunctionResult CallFunction(std::u16string_view right, std::u16string_view statement, FunctionCaller& functions) {
    const size_t comma = right.find(u',');
    FunctionCall call{right, {}, 1, right, statement};
    if (comma != right.npos) {
        call.arguments = right.substr(comma + 1);
        call.pieces = 1 + static_cast<size_t>(std::count(right.begin(), right.end(), u','));
    } else if (!EqualNoCase(right, kClipboardFunction)) {
        return FunctionResult::Unknown();
    }
    call.name = TrimView(right.substr(0, comma));
    return functions.Call(call);
}

// The last step for everything but exact texts: hexadecimal numbers, then sums.
AssignmentResult EvaluatePlain(std::u16string& value) {
    if (IsPlainInteger(value)) return AssignmentResult::kAssigned;
    if (value == kEmptyPlainResult) value.clear();
    if (value.find(u"0x") != value.npos) value = ReplaceHexLiterals(value);
    if (value.empty() || !IsArithmeticText(value)) return AssignmentResult::kAssigned;
    ArithmeticEvaluator evaluator;
    switch (evaluator.Evaluate(value)) {
        case ArithmeticEvaluator::Status::kSuccess:
            break;
        case ArithmeticEvaluator::Status::kDivisionByZero:
            return AssignmentResult::kDivisionByZero;
        case ArithmeticEvaluator::Status::kSyntaxError:
            return AssignmentResult::kSyntaxError;
    }
    value = evaluator.result();
    return AssignmentResult::kAssigned;
}

// What is to be stored, in `value`.
AssignmentResult FindValue(std::u16string_view untrimmed, const std::u16string& old, std::u16string_view statement,
                           FunctionCaller& functions, std::u16string& value) {
    const std::u16string_view right = TrimView(untrimmed);
    if (std::optional<std::u16string> compound = ComputeCompound(old, right, untrimmed)) {
        value = compound->empty() ? std::u16string(right) : std::move(*compound);
        return EvaluatePlain(value);
    }
    FunctionResult result = CallFunction(right, statement, functions);
    value = std::move(result.value);
    switch (result.kind) {
        case FunctionResult::Kind::kEnded:
            return AssignmentResult::kEnded;
        case FunctionResult::Kind::kUnchanged:
            value = old;
            return AssignmentResult::kAssigned;
        case FunctionResult::Kind::kText:
            return AssignmentResult::kAssigned;
        case FunctionResult::Kind::kUnknown:
            value = right;
            break;
        case FunctionResult::Kind::kPlain:
            if (value.empty()) value = right.substr(right.find(u',') + 1);
            break;
    }
    return EvaluatePlain(value);
}

// The variable that the left side names; nothing when it names none. `isTooLong` when its index is.
std::optional<size_t> FindTarget(std::u16string_view left, const VariableTable& variables, const ExpansionScope& scope,
                                 bool& isTooLong) {
    if (left.find(u'[') == left.npos) return variables.IndexOf(left);
    const IndexedName name = SplitIndexedName(left);
    if (!name.isIndexed()) return variables.IndexOf(left);
    const std::optional<std::u16string> index = ExpandLine(name.index, scope, Trimming::kTrim);
    isTooLong = !index;
    if (isTooLong) return std::nullopt;
    return variables.IndexOf(FormatIndexedName(name.base, *index));
}

}  // namespace

AssignmentResult AssignVariable(std::u16string_view target, std::u16string_view right, std::u16string_view statement,
                                VariableTable& variables, const ExpansionScope& scope, FunctionCaller& functions) {
    bool isTooLong = false;
    const std::optional<size_t> index = FindTarget(target, variables, scope, isTooLong);
    if (isTooLong) return AssignmentResult::kTooLong;
    if (!index) return AssignmentResult::kNotAssignment;
    const std::optional<std::u16string> expanded = ExpandLine(right, scope, Trimming::kKeep);
    if (!expanded) return AssignmentResult::kTooLong;

    std::u16string value;
    const AssignmentResult result =
        FindValue(*expanded, variables.entries()[*index].value, statement, functions, value);
    if (result == AssignmentResult::kAssigned) variables.AssignAt(*index, std::move(value));
    return result;
}

}  // namespace kinsort
