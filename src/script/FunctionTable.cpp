#include "script/FunctionTable.h"

#include "script/ScriptRun.h"
#include "script/SortedTable.h"
#include "script/functions/LocalFunctions.h"
#include "script/functions/ProcessFunctions.h"
#include "script/functions/ValueFunctions.h"

namespace kinsort {
namespace {

// To add a family of functions: its slice, here.
constexpr auto kFunctions = JoinSlices(&FunctionRow::name, kLocalFunctions, kValueFunctions, kProcessFunctions);
static_assert(IsSoundTable(kFunctions, &FunctionRow::name), "a name occurs twice, or a row is incomplete");

}  // namespace

std::span<const FunctionRow> Functions() {
    return kFunctions;
}

const FunctionRow* FindFunction(std::u16string_view name) {
    return FindRow(kFunctions, &FunctionRow::name, name);
}

FunctionResult CallFunction(ScriptRun& run, const FunctionCall& call) {
    const FunctionRow* const row = FindFunction(call.name);
    if (row == nullptr) return FunctionResult::Unknown();
    // A function without arguments is its bare name; with anything behind it, it is a value like any other.
    if (row->minimumPieces == 1 && call.pieces > 1) return FunctionResult::Unknown();
    if (call.pieces < row->minimumPieces) {
        if (row->tooFew == TooFewPieces::kOrdinaryValue) return FunctionResult::Unknown();
        run.Fail(ScriptError::kSyntax, call.value);
        return FunctionResult::Ended();
    }
    return row->function(run, call);
}

std::u16string_view ArgumentReader::Next() {
    const size_t comma = rest_.find(u',');
    if (comma == std::u16string_view::npos) return rest_;
    const std::u16string_view argument = rest_.substr(0, comma);
    rest_.remove_prefix(comma + 1);
    return argument;
}

}  // namespace kinsort
