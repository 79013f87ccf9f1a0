// The built-in functions ("x=name,arguments"), one row each. The engine, `kinsort script check` and the help read this
// table.
//
// To add a function: it, its line in functions/Functions.h and its row in FunctionTable.cpp. Nothing else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "script/Assignment.h"

namespace kinsort {

struct ScriptRun;

// Works out the value. An argument that is out of range: ScriptRun::Fail, then FunctionResult::Ended().
using BuiltInFunction = FunctionResult (*)(ScriptRun& run, const FunctionCall& call);

// What fewer pieces than a function needs mean.
enum class TooFewPieces : uint8_t {
    kSyntaxError,    // the run ends with "Syntax error!" and the whole right side
    kOrdinaryValue,  // the right side is no call at all
};

struct FunctionRow {
    std::u16string_view name;  // as people write it; found without regard to case
    size_t minimumPieces;      // between commas, the name included: what `call.pieces` is at least
    TooFewPieces tooFew;
    BuiltInFunction function;
    std::string_view synopsis;  // "start,count,text"
    std::string_view help;      // one sentence
};

// By name, without regard to case.
std::span<const FunctionRow> Functions();
// Without regard to case; null when there is none.
const FunctionRow* FindFunction(std::u16string_view name);

// Looks the function up, checks the number of pieces and calls it.
FunctionResult CallFunction(ScriptRun& run, const FunctionCall& call);

// Arguments taken off the front one at a time: each is the text up to the next comma. When no comma is left, an
// argument is the whole rest, and the rest stays: the last argument may hold commas, and can be taken twice.
//
//     ArgumentReader arguments(u"2,a,b,c");
//     arguments.Next();   // "2"
//     arguments.Rest();   // "a,b,c"
class ArgumentReader {
  public:
    explicit ArgumentReader(std::u16string_view arguments) : rest_(arguments) {}

    std::u16string_view Next();
    std::u16string_view Rest() const { return rest_; }

  private:
    std::u16string_view rest_;
};

}  // namespace kinsort
