// One line of a script, taken apart once and kept for every time that it is run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "script/Condition.h"

namespace kinsort {

struct OptionLineRow;
struct StatementRow;

// In the order in which a line is tried.
enum class LineKind : uint8_t {
    kNothing,    // empty, a comment, "debug", "updatestate"
    kEndOfFile,  // "EOF"
    kFileClose,
    kRemoveSelectItems,  // without a value
    kElse,               // these two mean something inside of an if-block only
    kEndIf,
    kExitAll,
    kExit,
    kFor,
    kNext,
    kDo,
    kWhile,
    kContinue,
    kBreak,
    kGoto,
    kIf,
    kVar,
    kStatement,  // an option, an assignment, a command, a label, or nothing that anybody knows
};

// "	Name = a, b " gives raw = the same, text = " Name = a, b ", statement = "Name = a, b", target = "Name",
// key = "name", right = " a, b ", value = "a, b"; "if x == 1" gives operand = "x == 1". The views point into `text`; a
// line never moves.
struct ScriptLine {
    std::u16string raw;             // as in the file, with ?SelectedCount?, ?ScriptName? and ?ScriptPath? replaced
    std::u16string text;            // the same with blanks for tabs
    std::u16string_view statement;  // trimmed
    LineKind kind = LineKind::kStatement;
    std::u16string_view operand;  // what stands behind the word of a line of kFor to kVar, trimmed
    int32_t number = 0;           // in the file, from 1
    bool isPlainNext = false;     // the statement is "next" and nothing else
    bool hasValue = false;        // there is a "="
    std::u16string_view target;   // before the first "=", trimmed; of kVar the name, with a "=" or without
    std::u16string key;           // the same in lower case
    std::u16string_view right;    // behind the first "="; what is declared has no blanks at its end
    std::u16string_view value;    // the same, trimmed
    Condition condition;          // of kIf and kWhile

    // What the key names; null when it names nothing of the kind.
    const OptionLineRow* option = nullptr;
    const StatementRow* command = nullptr;

    ScriptLine() = default;
    ScriptLine(const ScriptLine&) = delete;
    ScriptLine& operator=(const ScriptLine&) = delete;
};

// The first piece of a statement between blanks.
std::u16string_view HeadOf(std::u16string_view statement);

// The words that are a statement, or that begin one, without a "=".
std::vector<std::u16string_view> StatementWords();

// Takes a line apart. `raw` has the tokens of the run replaced.
std::unique_ptr<ScriptLine> ParseScriptLine(std::u16string raw, int32_t number);

}  // namespace kinsort
