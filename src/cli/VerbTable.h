// Every verb of the command line. To add one: a file verbs/FooVerb.cpp with its run function, a declaration below and a
// row in VerbTable.cpp; parsing, help, completion and the manual page follow.
#pragma once

#include <span>
#include <string_view>

#include "cli/ExitCode.h"
#include "cli/OptionTable.h"

namespace kinsort {

class CliContext;
struct CommandLine;

enum class OperandKind : uint8_t { kNone, kItems, kBatch, kVerb, kShell };

struct VerbSpec {
    std::string_view name;
    OperandKind operand;
    std::string_view summary;      // one line, for the list of verbs
    std::string_view description;  // paragraphs separated by an empty line
    std::span<const OptionId> options;
    ExitCode (*run)(CliContext& context, const CommandLine& line);
    bool isHidden;  // for the build, not for people
};

std::span<const VerbSpec> Verbs();
// Null when there is no such verb.
const VerbSpec* FindVerb(std::string_view name);

// How an operand is written in help: "[ITEM...]", "[ID]".
std::string_view OperandText(OperandKind kind);

ExitCode RunPlan(CliContext& context, const CommandLine& line);
ExitCode RunSort(CliContext& context, const CommandLine& line);
ExitCode RunUndo(CliContext& context, const CommandLine& line);
ExitCode RunRedo(CliContext& context, const CommandLine& line);
ExitCode RunHistory(CliContext& context, const CommandLine& line);
ExitCode RunRecover(CliContext& context, const CommandLine& line);
ExitCode RunHelp(CliContext& context, const CommandLine& line);
ExitCode RunCompletion(CliContext& context, const CommandLine& line);
ExitCode RunManual(CliContext& context, const CommandLine& line);

}  // namespace kinsort
