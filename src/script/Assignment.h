// Giving a declared variable its value: a text, a sum, an operation on the old value ("x=+1", "x=&tail"), or what a
// built-in function gives ("x=left,2,abc").
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "script/ExpandLine.h"
#include "script/VariableTable.h"

namespace kinsort {

// "name,arguments" on the right side of an assignment. The views live as long as the call.
struct FunctionCall {
    std::u16string_view name;       // trimmed, in the case that it was written in
    std::u16string_view arguments;  // all that follows the first comma, untouched
    size_t pieces = 0;              // between commas, the name and empty ones included
    std::u16string_view value;      // the whole right side: some errors quote it
    std::u16string_view statement;  // the whole line: others quote that
};

struct FunctionResult {
    enum class Kind : uint8_t {
        kText,       // `value` is stored exactly
        kPlain,      // hexadecimal numbers are replaced and a sum is evaluated before `value` is stored
        kUnknown,    // there is no function of this name: the whole right side is an ordinary value
        kUnchanged,  // the variable keeps its value; the function has said why
        kEnded,      // the function has said what was wrong; the run ends and nothing is stored
    };
    Kind kind = Kind::kUnknown;
    std::u16string value;

    static FunctionResult Text(std::u16string value) { return {Kind::kText, std::move(value)}; }
    static FunctionResult Plain(std::u16string value) { return {Kind::kPlain, std::move(value)}; }
    static FunctionResult Unknown() { return {}; }
    static FunctionResult Unchanged() { return {Kind::kUnchanged, {}}; }
    static FunctionResult Ended() { return {Kind::kEnded, {}}; }
};

// The functions that assignments may call.
class FunctionCaller {
  public:
    virtual ~FunctionCaller() = default;

    // Is called for a right side of two pieces or more, and for the single piece "GetClipboardText".
    virtual FunctionResult Call(const FunctionCall& call) = 0;
};

// The plain result that a function gives for an empty value: a plain result that is empty means "as if I were not
// there".
constexpr std::u16string_view kEmptyPlainResult = u"\t空文字\n\r置換\t";

enum class AssignmentResult : uint8_t {
    kAssigned,
    kNotAssignment,   // the left side names no declared variable: try the line as something else
    kSyntaxError,     // a sum that is none; say so with the statement, the run ends normally
    kDivisionByZero,  // likewise
    kTooLong,         // ExpandLine gave nothing
    kEnded,           // a function ended the run
};

// Gives `target` (trimmed) what stands right of the "=" (with its blanks), when it names a variable; the index of an
// array element is expanded first. `statement` is the whole line, which functions quote in their messages.
AssignmentResult AssignVariable(std::u16string_view target, std::u16string_view right, std::u16string_view statement,
                                VariableTable& variables, const ExpansionScope& scope, FunctionCaller& functions);

}  // namespace kinsort
