// Sums.
#include "script/ArithmeticEvaluator.h"
#include "script/ScriptRun.h"
#include "script/functions/Functions.h"

namespace kinsort {

FunctionResult EvaluateDouble(ScriptRun& run, const FunctionCall& call) {
    ArithmeticEvaluator evaluator;
    const ArithmeticEvaluator::Status status = evaluator.Evaluate(call.arguments);
    if (status == ArithmeticEvaluator::Status::kSuccess) return FunctionResult::Plain(evaluator.result());
    const bool isZero = status == ArithmeticEvaluator::Status::kDivisionByZero;
    run.Fail(isZero ? ScriptError::kDivisionByZero : ScriptError::kSyntax, call.statement);
    return FunctionResult::Ended();
}

// Where the main window stands is the host's to know: a script that asks gets its own text back.
FunctionResult KeepWindowPosition(ScriptRun&, const FunctionCall& call) {
    return FunctionResult::Plain(std::u16string(call.arguments));
}

}  // namespace kinsort
