#include "script/check/ValueCheck.h"

#include <algorithm>
#include <array>

#include "script/ArithmeticEvaluator.h"
#include "script/ExpandLine.h"
#include "script/FunctionTable.h"
#include "script/NumberText.h"
#include "script/StatementTable.h"
#include "text/AsciiCase.h"
#include "text/EditDistance.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

// Tokens that others fill in.
constexpr std::array<std::u16string_view, 4> kForeignTokens = {u"?any?", u"?anyfile?", u"?anydir?", u"?ErrorLine?"};

// Two tokens that are sums by their looks, with an example of each.
constexpr std::array<std::pair<std::u16string_view, std::u16string_view>, 2> kSumTokens = {
    {{u"?Date?", u"2025-01-05"}, {u"?Time?", u"09-07-03"}}};

bool IsLetter(char16_t unit) {
    return AsciiLower(unit) >= u'a' && AsciiLower(unit) <= u'z';
}

size_t CountPieces(std::u16string_view value) {
    return 1 + static_cast<size_t>(std::count(value.begin(), value.end(), u','));
}

std::u16string CountText(size_t count) {
    return FormatInteger(static_cast<int64_t>(count)) + (count == 1 ? u" argument" : u" arguments");
}

std::u16string ArgumentsText(std::u16string_view name, std::string_view verb, size_t count, std::string_view synopsis) {
    return Quoted(name) + u" " + FromUtf8(verb) + u" " + CountText(count) + u" (" + FromUtf8(synopsis) + u")";
}

NameList FunctionNames() {
    NameList names;
    AddNames(names, Functions(), &FunctionRow::name);
    return names;
}

NameList TokenNames() {
    NameList names;
    AddNames(names, ListTokens(), &TokenHelp::token);
    return names;
}

// "2024-1-5", or with slashes.
bool LooksLikeDate(std::u16string_view text) {
    const char16_t separator = text.find(u'/') != text.npos ? u'/' : u'-';
    const std::vector<std::u16string> parts = Split(text, separator);
    const auto isPart = [](const std::u16string& part) {
        return !part.empty() && part.size() <= 4 && std::all_of(part.begin(), part.end(), IsDigit);
    };
    const bool hasYear = parts.size() == 3 && (parts[0].size() == 4 || parts[2].size() == 4);
    return hasYear && std::all_of(parts.begin(), parts.end(), isPart);
}

}  // namespace

std::optional<std::u16string_view> FindMeant(std::u16string_view typed, const NameList& names) {
    std::optional<std::u16string_view> best;
    size_t fewest = SIZE_MAX;
    for (const std::u16string_view name : names) {
        if (!LooksLikeTypo(typed, name)) continue;
        const size_t distance = EditDistance(typed, name);
        if (distance >= fewest) continue;
        best = name;
        fewest = distance;
    }
    return best;
}

std::u16string DidYouMean(std::optional<std::u16string_view> meant) {
    return meant ? u"; did you mean " + Quoted(*meant) + u"?" : std::u16string();
}

bool ValueCheck::IsOpen(std::u16string_view text) const {
    return text.find_first_of(u"?%") != text.npos || variables_.HoldsNameWithin(text);
}

void ValueCheck::VisitAssigned(const ScriptLine& line, std::u16string_view value) {
    value = TrimView(value);
    VisitTokens(line, value);
    if (value.empty() || value.front() == u'&') return;
    const size_t comma = value.find(u',');
    if (comma == value.npos)
        VisitSum(line, value);
    else
        VisitCall(line, value, comma);
}

void ValueCheck::VisitCall(const ScriptLine& line, std::u16string_view value, size_t comma) {
    const std::u16string_view name = TrimView(value.substr(0, comma));
    const FunctionRow* const row = FindFunction(name);
    if (row == nullptr) {
        const bool isWord = std::all_of(name.begin(), name.end(), IsLetter) && !variables_.HoldsNameWithin(name);
        const std::optional<std::u16string_view> meant = isWord ? FindMeant(name, FunctionNames()) : std::nullopt;
        if (meant) findings_.Add(line, name, "function", Quoted(name) + u" is no function" + DidYouMean(meant));
        return;
    }
    if (variables_.HoldsNameWithin(name)) {
        findings_.Add(line, name, "name-inside",
                      u"a variable is filled in inside of " + Quoted(name) + u" before the function is looked for");
        return;
    }
    const size_t given = CountPieces(value) - 1;
    const size_t needed = row->minimumPieces - 1;
    if (needed == 0) {
        findings_.Add(line, value, "arguments", Quoted(name) + u" takes no arguments: the text itself is stored");
    } else if (given < needed && !variables_.HoldsNameWithin(value)) {
        findings_.Add(line, value, "arguments",
                      ArgumentsText(name, "needs", needed, row->synopsis) + u"; here is " +
                          FormatInteger(static_cast<int64_t>(given)));
    }
}

void ValueCheck::VisitSum(const ScriptLine& line, std::u16string_view value) {
    if (variables_.HoldsNameWithin(value)) return;
    std::u16string example(value);
    for (const auto& [token, text] : kSumTokens)
        example = Replace(example, token, text);
    const bool isFilledIn = example != value;
    example = ReplaceHexLiterals(example);
    if (example.empty() || !IsArithmeticText(example)) return;
    const bool isCompound = std::u16string_view(u"+-*/%").find(example.front()) != std::u16string_view::npos;
    if (isCompound && example.size() > 1 && IsIntegerText(std::u16string_view(example).substr(1))) return;

    ArithmeticEvaluator evaluator;
    const ArithmeticEvaluator::Status status = evaluator.Evaluate(example);
    if (isFilledIn || LooksLikeDate(example)) {
        findings_.Add(line, value, "sum",
                      u"this is worked out as a sum (" + example + u" gives " + evaluator.result() +
                          u"); write string," + std::u16string(value));
    } else if (status == ArithmeticEvaluator::Status::kDivisionByZero) {
        findings_.Add(line, value, "sum", u"this sum divides by zero");
    } else if (status == ArithmeticEvaluator::Status::kSyntaxError) {
        findings_.Add(line, value, "sum", u"this is worked out as a sum, but is none");
    }
}

void ValueCheck::VisitArguments(const ScriptLine& line) {
    const StatementRow& row = *line.command;
    VisitTokens(line, line.value);
    if (row.use == ValueUse::kExpanded && IsOpen(line.value)) return;
    const size_t given = line.value.empty() ? 0 : CountPieces(line.value);
    const std::u16string_view part = line.value.empty() ? line.target : line.value;
    const std::u16string hereIs = u"; here is " + FormatInteger(static_cast<int64_t>(given));
    if (given < row.arguments.minimum) {
        findings_.Add(line, part, "arguments",
                      ArgumentsText(line.target, "needs", row.arguments.minimum, row.synopsis) + hereIs);
    } else if (given > row.arguments.maximum) {
        findings_.Add(line, part, "arguments",
                      ArgumentsText(line.target, "takes", row.arguments.maximum, row.synopsis) + hereIs);
    }
}

void ValueCheck::VisitTokens(const ScriptLine& line, std::u16string_view text) {
    for (size_t begin = text.find(u'?'); begin != text.npos;) {
        size_t end = begin + 1;
        while (end < text.size() && IsLetter(text[end]))
            ++end;
        if (end == text.size()) return;
        const bool isToken = text[end] == u'?' && end > begin + 1;
        if (isToken) VisitToken(line, text.substr(begin, end + 1 - begin));
        begin = text.find(u'?', isToken ? end + 1 : end);
    }
}

void ValueCheck::VisitToken(const ScriptLine& line, std::u16string_view token) {
    static const NameList known = TokenNames();
    if (std::find(known.begin(), known.end(), token) != known.end()) {
        if (!variables_.HoldsNameWithin(token)) return;
        findings_.Add(line, token, "name-inside", u"a variable is filled in inside of " + Quoted(token) + u" first");
        return;
    }
    const bool isForeign = std::any_of(kForeignTokens.begin(), kForeignTokens.end(),
                                       [token](std::u16string_view foreign) { return EqualNoCase(token, foreign); });
    if (isForeign || variables_.HoldsNameWithin(token)) return;
    const std::optional<std::u16string_view> meant = FindMeant(token, known);
    if (meant) findings_.Add(line, token, "token", Quoted(token) + u" stands for nothing" + DidYouMean(meant));
}

}  // namespace kinsort
