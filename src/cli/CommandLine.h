// The command line, read by the verb and option tables.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "cli/VerbTable.h"

namespace kinsort {

// A line that made sense. Bytes are kept as they came.
struct CommandLine {
    const VerbSpec* verb = nullptr;
    std::array<std::optional<std::string>, kOptions.size()> values;  // "" for a flag that is set
    std::vector<std::string> operands;
    // What a repeatable option was given, in order.
    std::array<std::vector<std::string>, kOptions.size()> repeated;

    bool Has(OptionId id) const { return values[static_cast<size_t>(id)].has_value(); }
    std::string Value(OptionId id, std::string_view otherwise = {}) const {
        return values[static_cast<size_t>(id)].value_or(std::string(otherwise));
    }
    const std::vector<std::string>& Values(OptionId id) const { return repeated[static_cast<size_t>(id)]; }
    int Number(OptionId id, int otherwise) const;
    // The batch number that stands as operand; 0 when there is none.
    uint64_t Batch() const;
};

struct ParsedLine {
    CommandLine line;
    std::string error;  // what is wrong and what to do, for one message; empty when the line makes sense
};

// `arguments` is what follows the program's name. "--help" and "--version" instead of a verb, and no argument at all,
// give the verb "help" (with the operand "--version" for the version).
ParsedLine ParseCommandLine(std::span<const std::string> arguments);

// "ask|skip|replace" as "ask, skip or replace".
std::string ListOfChoices(std::string_view choices);

}  // namespace kinsort
