// "messagebox", "messageboxok" and "messageboxyn", as statements and as functions.
#include <array>
#include <optional>

#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/commands/Statements.h"
#include "script/functions/Functions.h"
#include "text/AsciiCase.h"
#include "text/Numbers.h"

namespace kinsort {
namespace {

constexpr int32_t kWarningWithOk = 48;
constexpr int32_t kQuestionWithYesNo = 36;

// How many buttons each value of MessageButtons has; a style with any other number shows the first kind.
constexpr std::array<unsigned, 7> kButtonCounts = {1, 2, 3, 3, 2, 2, 3};

// The parts of a style: which buttons, which icon, which button is the default one.
MessageRequest RequestOf(int32_t style) {
    MessageRequest request;
    const auto bits = static_cast<uint32_t>(style);
    const uint32_t buttons = (bits & 0xF) < kButtonCounts.size() ? bits & 0xF : 0;
    const uint32_t icon = bits & 0xF0;
    const uint32_t defaultButton = bits >> 8 & 0xF;
    request.buttons = static_cast<MessageButtons>(buttons);
    if (icon <= static_cast<uint32_t>(MessageIcon::kInformation)) request.icon = static_cast<MessageIcon>(icon);
    if (defaultButton < kButtonCounts[buttons]) request.defaultButton = defaultButton;
    return request;
}

struct Box {
    int32_t style;
    std::u16string_view text;  // yet to be expanded
};

// "style,message".
Box ReadBox(std::u16string_view arguments) {
    ArgumentReader reader(arguments);
    const std::u16string_view style = reader.Next();
    const bool namesItsBase = AsciiLower(style).find(u'x') != std::u16string::npos;
    return {namesItsBase ? ReadInt32AnyBase(style) : ReadInt32(style), reader.Rest()};
}

// The button that was pressed; nothing when the text would become too long.
std::optional<MessageAnswer> Show(ScriptRun& run, const Box& box) {
    const std::optional<std::u16string> expanded = ExpandLine(box.text, run.scope, Trimming::kTrim);
    if (!expanded) return std::nullopt;
    MessageRequest request = RequestOf(box.style);
    request.text = *expanded;
    request.title = u"Vel";
    request.owner = run.services.windows.FindTopLevel(kHostWindowClass);
    return run.services.ui.ShowMessage(request);
}

LineOutcome ShowAndGoOn(ScriptRun& run, const StatementCall& call, const Box& box) {
    return Show(run, box) ? LineOutcome::kNextLine : run.FailTooLong(call.line.statement);
}

FunctionResult ShowForAnswer(ScriptRun& run, const FunctionCall& call, const Box& box) {
    const std::optional<MessageAnswer> answer = Show(run, box);
    if (answer) return FunctionResult::Plain(FormatInteger(static_cast<int64_t>(*answer)));
    run.FailTooLong(call.statement);
    return FunctionResult::Ended();
}

}  // namespace

LineOutcome RunMessageBox(ScriptRun& run, const StatementCall& call) {
    const bool hasMessage = call.value.find(u',') != std::u16string_view::npos;
    return hasMessage ? ShowAndGoOn(run, call, ReadBox(call.value)) : LineOutcome::kNextLine;
}

LineOutcome RunMessageBoxOk(ScriptRun& run, const StatementCall& call) {
    return ShowAndGoOn(run, call, {kWarningWithOk, call.value});
}

LineOutcome RunMessageBoxYesNo(ScriptRun& run, const StatementCall& call) {
    const std::optional<MessageAnswer> answer = Show(run, {kQuestionWithYesNo, call.value});
    if (!answer) return run.FailTooLong(call.line.statement);
    return *answer == MessageAnswer::kNo ? run.Decline() : LineOutcome::kNextLine;
}

FunctionResult CallMessageBox(ScriptRun& run, const FunctionCall& call) {
    return ShowForAnswer(run, call, ReadBox(call.arguments));
}

FunctionResult CallMessageBoxOk(ScriptRun& run, const FunctionCall& call) {
    return ShowForAnswer(run, call, {kWarningWithOk, call.arguments});
}

FunctionResult CallMessageBoxYesNo(ScriptRun& run, const FunctionCall& call) {
    return ShowForAnswer(run, call, {kQuestionWithYesNo, call.arguments});
}

}  // namespace kinsort
