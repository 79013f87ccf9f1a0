// The engine: takes each line through the steps that may claim it, in their order.
#include "script/Script.h"

#include <array>

#include "framework/MessageNumbers.h"
#include "framework/Messages.h"
#include "script/Assignment.h"
#include "script/ControlFlow.h"
#include "script/FunctionTable.h"
#include "script/OptionLines.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/StatementTable.h"
#include "script/commands/OutputFile.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"

namespace kinsort {
namespace {

class RunFunctions final : public FunctionCaller {
  public:
    explicit RunFunctions(ScriptRun& run) : run_(run) {}
    FunctionResult Call(const FunctionCall& call) override { return CallFunction(run_, call); }

  private:
    ScriptRun& run_;
};

// "script.txt, line 12:" and the statement, behind the messages of the limits.
std::u16string PlaceOf(ScriptRun& run) {
    const ScriptLine& line = run.source.LineAt(run.flow.current, run.tokens);
    return run.call.scriptPath + u", line " + FormatInteger(line.number) + u":\n" + std::u16string(line.statement);
}

// Ends the run and all that include it: a script that has run wild would only do so again one level up.
LineOutcome StopAtLimit(ScriptRun& run, std::u16string_view message) {
    run.Tell(std::u16string(message) + PlaceOf(run));
    run.session.ending = ScriptEnding::kLimit;
    return LineOutcome::kEndWithMinusOne;
}

// --- the lines before the filters ------------------------------------------------------------------------------------

LineOutcome RunEndOfFile(ScriptRun&, const ScriptLine&) {
    return LineOutcome::kEndNormally;
}

LineOutcome RunFileClose(ScriptRun& run, const ScriptLine&) {
    CloseOutputFile(run);
    return LineOutcome::kNextLine;
}

LineOutcome RunRemoveSelectItems(ScriptRun& run, const ScriptLine&) {
    if (run.scope.forIndex != -1) return run.FailWith(u"RemoveSelectItems can not be executed within the loop.");
    run.selectedItems.clear();
    return LineOutcome::kNextLine;
}

// --- statements ------------------------------------------------------------------------------------------------------

// What the line became; nothing when it is no assignment.
std::optional<LineOutcome> TryAssign(ScriptRun& run, const ScriptLine& line) {
    RunFunctions functions(run);
    switch (AssignVariable(line.target, line.right, line.statement, run.variables, run.scope, functions)) {
        case AssignmentResult::kAssigned:
            return LineOutcome::kNextLine;
        case AssignmentResult::kNotAssignment:
            return std::nullopt;
        case AssignmentResult::kSyntaxError:
            run.Fail(ScriptError::kSyntax, line.statement);
            return LineOutcome::kEndNormally;
        case AssignmentResult::kDivisionByZero:
            run.Fail(ScriptError::kDivisionByZero, line.statement);
            return LineOutcome::kEndNormally;
        case AssignmentResult::kTooLong:
            return run.FailTooLong(line.statement);
        case AssignmentResult::kEnded:
            break;  // the function has said why
    }
    return LineOutcome::kEndWithZero;
}

LineOutcome RunCommand(ScriptRun& run, const ScriptLine& line) {
    const StatementRow& row = *line.command;
    switch (row.use) {
        case ValueUse::kRaw:
            return row.function(run, {line.value, line});
        case ValueUse::kRawLine:
            return row.function(run, {TrimView(std::u16string_view(line.raw).substr(line.raw.find(u'=') + 1)), line});
        case ValueUse::kExpanded:
            break;
    }
    const std::optional<std::u16string> value = ExpandLine(line.value, run.scope, Trimming::kTrim);
    if (!value) return run.FailTooLong(line.statement);
    return row.function(run, {*value, line});
}

// The command that the user wants to see the line with, an editor for example, after a No.
void StartGrammarCommand(ScriptRun& run, const ScriptLine& line) {
    const std::u16string command = Replace(run.options.checkGrammar, u"?ErrorLine?", FormatInteger(line.number));
    const auto started = StartCommandLine(run.processes, command, {}, kShowNormal);
    if (started.ok()) return;
    run.Tell(run.services.messages.GetMessageText(kMsgCannotStart) + u"\n" + command);
}

LineOutcome AskAboutUnknownLine(ScriptRun& run, const ScriptLine& line) {
    const std::u16string& mode = run.options.checkGrammar;
    if (mode.empty() || mode == u"0") return LineOutcome::kNextLine;
    MessageRequest question;
    question.text = u"This is the line that I do not understand.\nDo you want to continue?\n" +
                    FormatInteger(line.number) + u":" + std::u16string(line.statement);
    question.buttons = MessageButtons::kYesNo;
    if (run.services.ui.ShowMessage(question) == MessageAnswer::kYes) return LineOutcome::kNextLine;
    if (mode != u"1") StartGrammarCommand(run, line);
    return run.Decline();
}

LineOutcome RunUnclaimed(ScriptRun& run, const ScriptLine& line) {
    const std::u16string label = LabelName(line.statement);
    if (!label.empty() && run.source.FindLabel(label)) return LineOutcome::kNextLine;
    return AskAboutUnknownLine(run, line);
}

LineOutcome RunStatement(ScriptRun& run, const ScriptLine& line) {
    if (line.key == u"icon") return LineOutcome::kNextLine;
    if (line.option == nullptr || !line.option->isFreeOfOpenMode) KeepForcedOpenMode(run);
    if (line.option != nullptr) return RunOptionLine(run, line);
    if (line.hasValue) {
        if (const std::optional<LineOutcome> outcome = TryAssign(run, line)) return *outcome;
    }
    if (line.command != nullptr) return RunCommand(run, line);
    return RunUnclaimed(run, line);
}

// "var x", "var x = 5".
LineOutcome RunVar(ScriptRun& run, const ScriptLine& line) {
    if (line.operand.empty()) return run.Fail(ScriptError::kSyntax, line.statement);
    const Declaration made = DeclareVariable(run.variables, line.target);
    if (made.created == 0) {
        if (!made.message.empty()) run.Tell(made.message);
        run.session.ending = ScriptEnding::kError;
        return LineOutcome::kEndWithZero;
    }
    if (!line.hasValue) return LineOutcome::kNextLine;
    if (const std::optional<LineOutcome> outcome = TryAssign(run, line)) return *outcome;
    return RunUnclaimed(run, line);  // an array as a whole
}

// --- one line, all lines ---------------------------------------------------------------------------------------------

LineOutcome RunNothing(ScriptRun&, const ScriptLine&) {
    return LineOutcome::kNextLine;
}

struct KindRow {
    LineKind kind;
    bool isBeforeFilters;  // counts even in a branch or loop that is skipped
    LineOutcome (*function)(ScriptRun& run, const ScriptLine& line);
};

// To add a statement that is no "keyword=value": a kind, its word in ScriptLine.cpp and its row here, in the order of
// the kinds.
constexpr std::array<KindRow, 18> kKinds = {{
    {LineKind::kNothing, true, RunNothing},
    {LineKind::kEndOfFile, true, RunEndOfFile},
    {LineKind::kFileClose, true, RunFileClose},
    {LineKind::kRemoveSelectItems, true, RunRemoveSelectItems},
    {LineKind::kElse, false, RunStatement},
    {LineKind::kEndIf, false, RunStatement},
    {LineKind::kExitAll, false, RunExitAll},
    {LineKind::kExit, false, RunExit},
    {LineKind::kFor, false, RunFor},
    {LineKind::kNext, false, RunNext},
    {LineKind::kDo, false, RunDo},
    {LineKind::kWhile, false, RunWhile},
    {LineKind::kContinue, false, RunContinue},
    {LineKind::kBreak, false, RunBreak},
    {LineKind::kGoto, false, RunGoto},
    {LineKind::kIf, false, RunIf},
    {LineKind::kVar, false, RunVar},
    {LineKind::kStatement, false, RunStatement},
}};

consteval bool KindsAreInOrder() {
    for (size_t i = 0; i < kKinds.size(); ++i)
        if (kKinds[i].kind != static_cast<LineKind>(i)) return false;
    return true;
}
static_assert(KindsAreInOrder(), "rows stand in the order of their kinds");

LineOutcome RunLine(ScriptRun& run, const ScriptLine& line) {
    const KindRow& row = kKinds[static_cast<size_t>(line.kind)];
    if (!row.isBeforeFilters && (IsTakenByIfBlock(run, line) || IsTakenByLoopSkip(run, line)))
        return LineOutcome::kNextLine;
    if (run.services.observer != nullptr && line.kind != LineKind::kNothing) run.services.observer->OnLine(run, line);
    return row.function(run, line);
}

LineOutcome RunLines(ScriptRun& run) {
    FlowState& flow = run.flow;
    while (flow.next < run.source.size() && !run.isCancelled()) {
        flow.current = flow.next++;
        const LineOutcome outcome = RunLine(run, run.source.LineAt(flow.current, run.tokens));
        if (outcome != LineOutcome::kNextLine && outcome != LineOutcome::kMoved) return outcome;
        if (run.variables.units() > run.services.maxVariableUnits)
            return StopAtLimit(run, u"The variables take too much memory (more than 256 MB).\n");
    }
    if (run.isCancelled()) {
        run.session.ending = ScriptEnding::kCancelled;
        return LineOutcome::kEndWithMinusOne;
    }
    return LineOutcome::kEndNormally;
}

LineOutcome RunFile(ScriptRun& run) {
    if (!run.source.Open(run.call.scriptPath)) {
        run.Tell(u"Cannot read " + run.call.scriptPath);
        run.session.ending = run.session.depth == 0 ? ScriptEnding::kUnreadable : ScriptEnding::kError;
        return LineOutcome::kEndWithZero;
    }
    if (const std::optional<std::u16string> repeated = run.source.CollectLabels())
        return run.Fail(ScriptError::kLabelInUse, *repeated);
    const LineOutcome outcome = RunLines(run);
    if (outcome == LineOutcome::kEndNormally) CarryOutDeferredRuns(run);
    CloseOutputFile(run);
    return outcome;
}

int32_t RunCall(ScriptSession& session, const ScriptCall& call) {
    VariableTable ownVariables;
    OptionTable ownOptions;
    if (call.options == nullptr) ownOptions = CreateDefaultOptions();
    ScriptRun run(session, call, call.variables == nullptr ? ownVariables : *call.variables,
                  call.options == nullptr ? ownOptions : *call.options);
    return RunFile(run) == LineOutcome::kEndWithMinusOne ? -1 : 0;
}

}  // namespace

ScriptResult RunScript(const ScriptServices& services, const ScriptCall& call) {
    ScriptSession session{services};
    const int32_t code = RunCall(session, call);
    return {code, session.ending};
}

LineOutcome RunIncludedScript(ScriptRun& outer, std::u16string_view scriptPath) {
    if (outer.session.depth >= kMaxIncludeDepth)
        return StopAtLimit(outer, u"Scripts include each other too deeply (more than 100 times).\n");
    ScriptCall call = outer.call;
    call.scriptPath = scriptPath;
    call.hostWindow = outer.hostWindow;
    call.reserved = 0;
    call.variables = &outer.variables;
    call.options = &outer.optionTable;
    ++outer.session.depth;
    const int32_t code = RunCall(outer.session, call);
    --outer.session.depth;
    if (code == -1) return LineOutcome::kEndWithMinusOne;
    ReadOptions(outer.optionTable, outer.options);
    return LineOutcome::kNextLine;
}

}  // namespace kinsort
