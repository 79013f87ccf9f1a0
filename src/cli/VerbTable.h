// Every verb of the command line. To add one: a file verbs/FooVerb.cpp with its run function, a declaration below and a
// row in VerbTable.cpp; parsing, help, completion and the manual page follow.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "cli/ExitCode.h"
#include "cli/OptionTable.h"

namespace kinsort {

class CliContext;
struct CommandLine;

// kAction: the first operand is one of the verb's actions, which say what follows it.
enum class OperandKind : uint8_t { kNone, kItems, kBatch, kVerb, kShell, kAction, kIntegrations };

// What a verb like "settings" can do: "kinsort settings get NAME".
struct ActionSpec {
    std::string_view name;
    std::string_view operands;  // as help shows them: "NAME VALUE", "[FILE]"
    size_t minOperands;         // behind the action
    size_t maxOperands;
    bool takesFiles;                    // completion offers the names of files
    std::span<const OptionId> options;  // those of the verb that mean something here, beside --quiet and --help
    std::string_view summary;
};

// What a line must say beside the operands.
enum class VerbNeeds : uint8_t { kNothing, kFolder, kFolderAndMode };

struct VerbSpec {
    std::string_view name;
    OperandKind operand;
    std::string_view summary;      // one line, for the list of verbs
    std::string_view description;  // paragraphs separated by an empty line
    std::span<const OptionId> options;
    ExitCode (*run)(CliContext& context, const CommandLine& line);
    bool isHidden;  // for the build, not for people
    std::span<const ActionSpec> actions = {};
    VerbNeeds needs = VerbNeeds::kNothing;
};

std::span<const VerbSpec> Verbs();
// Null when there is no such verb.
const VerbSpec* FindVerb(std::string_view name);

// Null when the verb has no such action.
const ActionSpec* FindAction(const VerbSpec& verb, std::string_view name);
// Whether the option means something together with the action.
bool TakesOption(const ActionSpec& action, OptionId option);
// "get|set|list": the names of the verb's actions with `separator` between them.
std::string ActionNames(const VerbSpec& verb, std::string_view separator);

// How an operand is written in help: "[ITEM...]", "[ID]".
std::string OperandText(const VerbSpec& verb);

ExitCode RunPlan(CliContext& context, const CommandLine& line);
ExitCode RunSort(CliContext& context, const CommandLine& line);
ExitCode RunUndo(CliContext& context, const CommandLine& line);
ExitCode RunRedo(CliContext& context, const CommandLine& line);
ExitCode RunHistory(CliContext& context, const CommandLine& line);
ExitCode RunRecover(CliContext& context, const CommandLine& line);
ExitCode RunOpen(CliContext& context, const CommandLine& line);
ExitCode RunScriptVerb(CliContext& context, const CommandLine& line);
ExitCode RunIntegrate(CliContext& context, const CommandLine& line);
ExitCode RunSettings(CliContext& context, const CommandLine& line);
ExitCode RunHost(CliContext& context, const CommandLine& line);
ExitCode RunHelp(CliContext& context, const CommandLine& line);
ExitCode RunCompletion(CliContext& context, const CommandLine& line);
ExitCode RunManual(CliContext& context, const CommandLine& line);

}  // namespace kinsort
