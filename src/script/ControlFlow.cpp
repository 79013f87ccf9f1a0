#include "script/ControlFlow.h"

#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "text/Numbers.h"

namespace kinsort {
namespace {

int32_t& ForIndex(ScriptRun& run) {
    return run.scope.forIndex;
}

template <typename T>
void PopIfAny(std::vector<T>& stack) {
    if (!stack.empty()) stack.pop_back();
}

LineOutcome MoveTo(ScriptRun& run, size_t line) {
    run.flow.next = line;
    return LineOutcome::kMoved;
}

bool HasItemAt(const ScriptRun& run, int32_t index) {
    return static_cast<size_t>(index) < run.selectedItems.size();
}

void Say(ScriptRun& run, std::u16string_view word, std::u16string_view opener, const ScriptLine& line) {
    run.Tell(MissingOpenerText(word, opener).append(line.statement));
}

// What ends the run when a condition is neither true nor false.
LineOutcome FailCondition(ScriptRun& run, ConditionResult result, const ScriptLine& line) {
    if (result == ConditionResult::kTooLong) return run.FailTooLong(line.statement);
    return run.Fail(ScriptError::kSyntax, line.statement);
}

void CloseDoLoop(FlowState& flow) {
    PopIfAny(flow.loops);
    PopIfAny(flow.doBodies);
}

}  // namespace

bool IsTakenByIfBlock(ScriptRun& run, const ScriptLine& line) {
    std::vector<IfState>& ifs = run.flow.ifs;
    if (ifs.empty()) return false;
    const IfState top = ifs.back();
    const bool isSkipping = top != IfState::kElseRunning && top != IfState::kThenRunning;
    if (line.kind == LineKind::kEndIf) {
        ifs.pop_back();
        return true;
    }
    if (line.kind == LineKind::kElse) {
        if (top == IfState::kElseRunning) return false;
        if (top == IfState::kThenRunning) ifs.back() = IfState::kRestSkipping;
        if (top == IfState::kThenSkipping) ifs.back() = IfState::kElseRunning;
        return true;
    }
    if (isSkipping && line.kind == LineKind::kIf)
        ifs.push_back(top == IfState::kRestSkipping ? IfState::kRestSkipping : IfState::kNestedSkipping);
    return isSkipping;
}

bool IsTakenByLoopSkip(ScriptRun& run, const ScriptLine& line) {
    FlowState& flow = run.flow;
    if (flow.skipsToNext) {
        if (line.isPlainNext) {
            ForIndex(run) = -1;
            flow.skipsToNext = false;
            PopIfAny(flow.loops);
        }
        return true;
    }
    if (flow.skipsToWhile) {
        if (line.kind == LineKind::kWhile) {
            flow.skipsToWhile = false;
            CloseDoLoop(flow);
        }
        return true;
    }
    return false;
}

LineOutcome RunIf(ScriptRun& run, const ScriptLine& line) {
    if (line.operand.empty()) return run.Fail(ScriptError::kSyntax, line.statement);
    const ConditionResult result = EvaluateCondition(line.condition, run.scope);
    if (result != ConditionResult::kTrue && result != ConditionResult::kFalse) return FailCondition(run, result, line);
    run.flow.ifs.push_back(result == ConditionResult::kTrue ? IfState::kThenRunning : IfState::kThenSkipping);
    return LineOutcome::kNextLine;
}

LineOutcome RunFor(ScriptRun& run, const ScriptLine&) {
    run.flow.loops.push_back(LoopKind::kFor);
    if (run.selectedItems.empty()) {
        run.flow.skipsToNext = true;
        ForIndex(run) = -1;
    } else {
        ForIndex(run) = 0;
        run.flow.forBody = run.flow.next;
    }
    return LineOutcome::kNextLine;
}

LineOutcome RunNext(ScriptRun& run, const ScriptLine& line) {
    if (ForIndex(run) == -1) return run.FailWith(MissingOpenerText(u"next", u"for").append(line.statement));
    // Counted anew each time: a command may have added items.
    if (HasItemAt(run, ++ForIndex(run))) {
        run.flow.skipsToNext = false;
        return MoveTo(run, run.flow.forBody);
    }
    PopIfAny(run.flow.loops);
    ForIndex(run) = -1;
    return LineOutcome::kNextLine;
}

LineOutcome RunDo(ScriptRun& run, const ScriptLine&) {
    run.flow.loops.push_back(LoopKind::kDo);
    run.flow.doBodies.push_back(run.flow.next);
    return LineOutcome::kNextLine;
}

LineOutcome RunWhile(ScriptRun& run, const ScriptLine& line) {
    FlowState& flow = run.flow;
    if (line.operand.empty()) return run.Fail(ScriptError::kSyntax, line.statement);
    if (flow.doBodies.empty()) return run.FailWith(MissingOpenerText(u"while", u"do").append(line.statement));
    const ConditionResult result = EvaluateCondition(line.condition, run.scope);
    if (result == ConditionResult::kTrue) return MoveTo(run, flow.doBodies.back());
    if (result != ConditionResult::kFalse) return FailCondition(run, result, line);
    CloseDoLoop(flow);
    return LineOutcome::kNextLine;
}

LineOutcome RunContinue(ScriptRun& run, const ScriptLine& line) {
    FlowState& flow = run.flow;
    if (flow.loops.empty()) {
        Say(run, u"continue", u"do' or 'for", line);
        return LineOutcome::kNextLine;
    }
    if (flow.loops.back() == LoopKind::kFor && ForIndex(run) != -1) {
        if (HasItemAt(run, ++ForIndex(run))) return MoveTo(run, flow.forBody);
        flow.skipsToNext = true;
        ForIndex(run) = -1;
    } else if (flow.loops.back() == LoopKind::kDo && !flow.doBodies.empty()) {
        return MoveTo(run, flow.doBodies.back());
    }
    return LineOutcome::kNextLine;
}

LineOutcome RunBreak(ScriptRun& run, const ScriptLine& line) {
    FlowState& flow = run.flow;
    if (flow.loops.empty()) {
        Say(run, u"break", u"do' or 'for", line);
    } else if (flow.loops.back() == LoopKind::kFor && ForIndex(run) != -1) {
        flow.skipsToNext = true;
        ForIndex(run) = -1;
    } else if (flow.loops.back() == LoopKind::kDo && !flow.doBodies.empty()) {
        flow.skipsToWhile = true;
    }
    return LineOutcome::kNextLine;
}

LineOutcome RunGoto(ScriptRun& run, const ScriptLine& line) {
    FlowState& flow = run.flow;
    if (line.operand.empty()) return run.Fail(ScriptError::kSyntax, line.statement);
    const std::optional<std::u16string> name = ExpandLine(line.operand, run.scope, Trimming::kTrim);
    if (!name) return run.FailTooLong(line.statement);
    const std::optional<size_t> label = run.source.FindLabel(*name);
    if (!label) return run.Fail(ScriptError::kUndefinedLabel, line.statement);
    if (flow.current > *label) ++flow.jumpCount;
    const int32_t limit = run.options.exitLoopCount;
    if (flow.jumpCount > limit) {
        run.Tell(std::u16string(u"The number of repetitions of up too many.(") + FormatInteger(limit) + u" times)");
        run.session.ending = ScriptEnding::kLimit;
        return LineOutcome::kEndNormally;
    }
    flow.ifs.clear();
    return MoveTo(run, *label);
}

LineOutcome RunExit(ScriptRun&, const ScriptLine&) {
    return LineOutcome::kEndWithZero;
}

LineOutcome RunExitAll(ScriptRun&, const ScriptLine&) {
    return LineOutcome::kEndWithMinusOne;
}

}  // namespace kinsort
