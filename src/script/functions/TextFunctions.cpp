// Parts of a text, and texts put together.
#include <algorithm>
#include <vector>

#include "script/ScriptRun.h"
#include "script/functions/Functions.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"

namespace kinsort {
namespace {

// A start or a count: nothing below 0.
size_t ReadCount(std::u16string_view text) {
    return static_cast<size_t>(std::max(ReadInt32(text), 0));
}

FunctionResult Refuse(ScriptRun& run, ScriptError error, const FunctionCall& call) {
    run.Fail(error, call.value);
    return FunctionResult::Ended();
}

FunctionResult RefuseLength(ScriptRun& run, const FunctionCall& call) {
    run.FailTooLong(call.statement);
    return FunctionResult::Ended();
}

FunctionResult TrimCharacter(ScriptRun& run, const FunctionCall& call,
                             std::u16string (*trim)(std::u16string_view, char16_t)) {
    ArgumentReader arguments(call.arguments);
    const std::u16string_view character = arguments.Next();
    if (character.size() != 1) return Refuse(run, ScriptError::kSyntax, call);
    return FunctionResult::Text(trim(arguments.Rest(), character.front()));
}

}  // namespace

FunctionResult CountUnits(ScriptRun&, const FunctionCall& call) {
    return FunctionResult::Plain(FormatInteger(static_cast<int64_t>(call.arguments.size())));
}

FunctionResult TakeSubString(ScriptRun&, const FunctionCall& call) {
    ArgumentReader arguments(call.arguments);
    const size_t start = ReadCount(arguments.Next());
    const size_t count = ReadCount(arguments.Next());
    const std::u16string_view text = arguments.Rest();
    return FunctionResult::Text(std::u16string(text.substr(std::min(start, text.size()), count)));
}

FunctionResult TakeLeft(ScriptRun&, const FunctionCall& call) {
    ArgumentReader arguments(call.arguments);
    const size_t count = ReadCount(arguments.Next());
    return FunctionResult::Text(std::u16string(arguments.Rest().substr(0, count)));
}

FunctionResult TakeRight(ScriptRun&, const FunctionCall& call) {
    ArgumentReader arguments(call.arguments);
    const size_t count = ReadCount(arguments.Next());
    const std::u16string_view text = arguments.Rest();
    return FunctionResult::Text(std::u16string(text.substr(text.size() - std::min(count, text.size()))));
}

FunctionResult FindText(ScriptRun&, const FunctionCall& call) {
    ArgumentReader arguments(call.arguments);
    const std::u16string_view needle = arguments.Next();
    const size_t found = arguments.Rest().find(needle);
    return FunctionResult::Plain(FormatInteger(found == needle.npos ? -1 : static_cast<int64_t>(found)));
}

FunctionResult ReplaceText(ScriptRun& run, const FunctionCall& call) {
    ArgumentReader arguments(call.arguments);
    const std::u16string_view from = arguments.Next();
    const std::u16string_view to = arguments.Next();
    std::u16string text(arguments.Rest());
    if (!ReplaceWithin(text, from, to, kMaxExpandedLength)) return RefuseLength(run, call);
    return FunctionResult::Text(std::move(text));
}

FunctionResult TakeCsvField(ScriptRun& run, const FunctionCall& call) {
    ArgumentReader arguments(call.arguments);
    const int32_t index = ReadInt32(arguments.Next());
    const std::vector<std::u16string> fields = Split(arguments.Rest(), u',');
    if (index < 0 || static_cast<size_t>(index) >= fields.size())
        return Refuse(run, ScriptError::kIllegalFunctionCall, call);
    return FunctionResult::Text(Trim(fields[static_cast<size_t>(index)]));
}

FunctionResult KeepText(ScriptRun&, const FunctionCall& call) {
    return FunctionResult::Text(std::u16string(call.arguments));
}

FunctionResult PadWithZeros(ScriptRun& run, const FunctionCall& call) {
    ArgumentReader arguments(call.arguments);
    const size_t width = ReadCount(arguments.Next());
    if (width == 0) return Refuse(run, ScriptError::kSyntax, call);
    if (width > kMaxExpandedLength) return RefuseLength(run, call);
    const std::u16string_view text = arguments.Rest();
    const size_t kept = std::min(width, text.size());
    return FunctionResult::Text(std::u16string(width - kept, u'0').append(text.substr(text.size() - kept)));
}

FunctionResult TrimCharacterRight(ScriptRun& run, const FunctionCall& call) {
    return TrimCharacter(run, call, TrimEnd);
}

FunctionResult TrimCharacterLeft(ScriptRun& run, const FunctionCall& call) {
    return TrimCharacter(run, call, TrimStart);
}

}  // namespace kinsort
