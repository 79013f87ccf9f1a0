// The statement commands of the language ("keyword=value"), one row each. The engine, `kinsort script check` and the
// help read this table.
//
// To add a command: its function, the line of that in commands/Statements.h and its row in StatementTable.cpp. Nothing
// else.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "script/LineOutcome.h"

namespace kinsort {

struct ScriptLine;
struct ScriptRun;

// How a command gets the text behind the first "=".
enum class ValueUse : uint8_t {
    kExpanded,  // expanded by ExpandLine, trimmed
    kRaw,       // as written, blanks for tabs, trimmed
    kRawLine,   // as written, tabs kept, trimmed
};

struct StatementCall {
    std::u16string_view value;
    const ScriptLine& line;  // `raw` and `statement` are what messages quote
};

// Does what the command says. What it returns decides how the run goes on: normally kNextLine; ScriptRun::Fail tells
// the user and gives what ends the run.
using StatementFunction = LineOutcome (*)(ScriptRun& run, const StatementCall& call);

// How many arguments a value may hold, counted between commas; for `kinsort script check`, the engine does not look.
struct ArgumentCount {
    size_t minimum = 1;  // 0: the value may be empty
    size_t maximum = 1;  // kAnyCount: the last argument is the rest of the text, commas included
};
constexpr size_t kAnyCount = SIZE_MAX;

struct StatementRow {
    std::u16string_view keyword;  // lower case
    ValueUse use;
    StatementFunction function;
    ArgumentCount arguments;
    std::string_view synopsis;  // "mode,path"
    std::string_view help;      // one sentence
};

// By keyword.
std::span<const StatementRow> Statements();
// Null when no command has exactly this (lower-case) keyword.
const StatementRow* FindStatement(std::u16string_view keyword);

}  // namespace kinsort
