#include "cli/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <charconv>

#include "cli/HelpTexts.h"
#include "cli/Integration.h"

namespace kinsort {
namespace {

// The library's spelling of an option: "-t,--to".
std::string LibraryName(const OptionSpec& spec) {
    std::string name = "--" + std::string(spec.name);
    return spec.letter == 0 ? name : std::string("-") + spec.letter + "," + name;
}

std::string Dashed(const OptionSpec& spec) {
    return "--" + std::string(spec.name);
}

template <typename T>
std::optional<T> ReadNumber(std::string_view text) {
    T number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

bool IsChoice(std::string_view choices, std::string_view value) {
    while (!choices.empty()) {
        const size_t bar = std::min(choices.find('|'), choices.size());
        if (choices.substr(0, bar) == value) return true;
        choices.remove_prefix(std::min(bar + 1, choices.size()));
    }
    return false;
}

// What is wrong with an option's value; empty when nothing is.
std::string CheckValue(const OptionSpec& spec, const std::string& value) {
    switch (spec.kind) {
        case ValueKind::kNone:
        case ValueKind::kText:
            return {};
        case ValueKind::kFolder:
        case ValueKind::kFile:
            if (value.empty())
                return Dashed(spec) + " is empty: name a " + (spec.kind == ValueKind::kFolder ? "folder" : "file");
            return {};
        case ValueKind::kNumber: {
            const std::optional<int> number = ReadNumber<int>(value);
            if (number && *number >= spec.minimum) return {};
            return Dashed(spec) + " takes a number from " + std::to_string(spec.minimum) + ", not '" + value + "'";
        }
        case ValueKind::kChoice:
            if (IsChoice(spec.value, value)) return {};
            return Dashed(spec) + " takes " + ListOfChoices(spec.value) + ", not '" + value + "'";
    }
    return {};
}

std::string CheckAction(const CommandLine& line) {
    const std::string choices = ListOfChoices(ActionNames(*line.verb, "|"));
    if (line.operands.empty()) return line.Has(OptionId::kHelp) ? "" : "say what to do: " + choices;
    const ActionSpec* const action = FindAction(*line.verb, line.operands[0]);
    if (action == nullptr) return "takes " + choices + ", not '" + line.operands[0] + "'";
    for (const OptionId id : line.verb->options)
        if (line.Has(id) && !line.Has(OptionId::kHelp) && !TakesOption(*action, id))
            return std::string(action->name) + " takes no " + Dashed(SpecOf(id));
    const size_t count = line.operands.size() - 1;
    if (line.Has(OptionId::kHelp) || (count >= action->minOperands && count <= action->maxOperands)) return {};
    const std::string name(action->name);
    if (count < action->minOperands) return name + " takes " + std::string(action->operands);
    const std::string& extra = line.operands[action->maxOperands + 1];
    if (action->maxOperands == 0) return name + " takes no '" + extra + "'";
    return name + " takes " + std::string(action->operands) + " and nothing behind it: leave out '" + extra + "'";
}

std::string CheckOperands(const CommandLine& line) {
    const size_t count = line.operands.size();
    switch (line.verb->operand) {
        case OperandKind::kNone:
            return count == 0 ? "" : "takes no '" + line.operands[0] + "'";
        case OperandKind::kItems:
            return {};
        case OperandKind::kBatch: {
            if (count > 1) return "takes one batch number";
            if (count == 0 || line.Batch() != 0) return {};
            return "'" + line.operands[0] + "' is not a batch number; 'kinsort history' lists them";
        }
        case OperandKind::kVerb:
        case OperandKind::kShell:
            if (count > 1) return "takes one name";
            if (count == 0 || line.verb->operand == OperandKind::kVerb || IsChoice(kCompletionShells, line.operands[0]))
                return {};
            return "takes " + ListOfChoices(kCompletionShells) + ", not '" + line.operands[0] + "'";
        case OperandKind::kAction:
            return CheckAction(line);
        case OperandKind::kIntegrations:
            for (const std::string& name : line.operands) {
                if (!IsIntegration(name))
                    return "takes " + ListOfChoices(IntegrationNames("|")) + ", not '" + name + "'";
            }
            return {};
    }
    return {};
}

// The library's message begins with the option's name; what can go wrong there is that a value is missing.
std::string ErrorText(const VerbSpec& verb, std::string_view message) {
    for (const OptionId id : verb.options) {
        const OptionSpec& spec = SpecOf(id);
        if (spec.kind == ValueKind::kNone || !message.starts_with(Dashed(spec) + ":")) continue;
        return Dashed(spec) + " needs a value: " + Dashed(spec) + "=" + std::string(spec.value);
    }
    return std::string(message);
}

// Lets the library read the options. Operands come back as what it did not recognise, so that it never interprets a
// file's name (it would split "[a,b]").
std::string ReadOptions(std::vector<std::string> arguments, CommandLine& line) {
    CLI::App app;
    app.set_help_flag();
    app.allow_extras();
    std::array<std::string, kOptions.size()> values;
    std::array<CLI::Option*, kOptions.size()> options{};
    for (const OptionId id : line.verb->options) {
        const auto index = static_cast<size_t>(id);
        const OptionSpec& spec = kOptions[index];
        options[index] = spec.kind == ValueKind::kNone ? app.add_flag(LibraryName(spec))
                                                       : app.add_option(LibraryName(spec), values[index]);
        options[index]->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    }
    // The library would take the next argument as the value of "--to=".
    for (const OptionId id : line.verb->options) {
        if (std::find(arguments.begin(), arguments.end(), Dashed(SpecOf(id)) + "=") == arguments.end()) continue;
        return Dashed(SpecOf(id)) + " is empty: give it a value or leave it out";
    }
    std::reverse(arguments.begin(), arguments.end());  // as the library wants them
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        return ErrorText(*line.verb, error.what());
    }
    for (const OptionId id : line.verb->options) {
        const auto index = static_cast<size_t>(id);
        if (options[index]->count() == 0) continue;
        const bool isFlag = kOptions[index].kind == ValueKind::kNone;
        if (isFlag && options[index]->results().back() != "true") return Dashed(kOptions[index]) + " takes no value";
        const std::vector<std::string>& given = options[index]->results();
        for (const std::string& value : kOptions[index].isRepeatable ? given : std::vector{values[index]}) {
            if (const std::string wrong = CheckValue(kOptions[index], value); !wrong.empty()) return wrong;
        }
        line.values[index] = values[index];
        if (kOptions[index].isRepeatable) line.repeated[index] = given;
    }
    for (std::string& extra : app.remaining()) {
        if (extra.size() > 1 && extra[0] == '-') return "there is no option '" + extra + "'";
        line.operands.push_back(std::move(extra));
    }
    return {};
}

// Options that cannot stand together or are missing; rules that the tables do not hold.
std::string CheckTogether(const CommandLine& line) {
    const auto countOf = [&line](std::initializer_list<OptionId> ids) {
        return std::count_if(ids.begin(), ids.end(), [&line](OptionId id) { return line.Has(id); });
    };
    if (line.Has(OptionId::kHelp)) return {};
    if (line.verb->needs != VerbNeeds::kNothing && !line.Has(OptionId::kTo)) {
        return "name the folder whose sub-folders the items go into: --to DIR";
    }
    if (countOf({OptionId::kCopy, OptionId::kMove}) > 1) return "choose one of --copy and --move";
    if (line.verb->needs == VerbNeeds::kFolderAndMode &&
        countOf({OptionId::kCopy, OptionId::kMove, OptionId::kDryRun}) == 0) {
        return "say what to do with the items: --copy or --move";
    }
    if (countOf({OptionId::kFinish, OptionId::kUndo, OptionId::kLeave}) > 1) {
        return "choose one of --finish, --undo and --leave";
    }
    if (countOf({OptionId::kYes, OptionId::kNo}) > 1) return "choose one of --yes and --no";
    return {};
}

}  // namespace

std::string ListOfChoices(std::string_view choices) {
    std::string text(choices);
    for (size_t bar = text.find('|'); bar != std::string::npos; bar = text.find('|')) {
        const bool isLast = text.find('|', bar + 1) == std::string::npos;
        text.replace(bar, 1, isLast ? " or " : ", ");
    }
    return text;
}

int CommandLine::Number(OptionId id, int otherwise) const {
    return Has(id) ? ReadNumber<int>(Value(id)).value_or(otherwise) : otherwise;
}

uint64_t CommandLine::Batch() const {
    return operands.empty() ? 0 : ReadNumber<uint64_t>(operands[0]).value_or(0);
}

ParsedLine ParseCommandLine(std::span<const std::string> arguments) {
    ParsedLine parsed;
    CommandLine& line = parsed.line;
    if (arguments.empty() || arguments[0] == "--help" || arguments[0] == "-h" || arguments[0] == "--version") {
        line.verb = FindVerb("help");
        if (!arguments.empty() && arguments[0] == "--version") line.operands = {"--version"};
        return parsed;
    }
    line.verb = FindVerb(arguments[0]);
    if (line.verb == nullptr) {
        parsed.error = "there is no command '" + arguments[0] + "'; 'kinsort help' lists them";
        return parsed;
    }
    const auto rest = arguments.subspan(1);
    const auto marker = std::find(rest.begin(), rest.end(), "--");
    parsed.error = ReadOptions({rest.begin(), marker}, line);
    if (marker != rest.end()) line.operands.insert(line.operands.end(), marker + 1, rest.end());
    if (parsed.error.empty()) parsed.error = CheckOperands(line);
    if (parsed.error.empty()) parsed.error = CheckTogether(line);
    if (!parsed.error.empty()) {
        parsed.error = std::string(line.verb->name) + ": " + parsed.error + "\nTry 'kinsort help " +
                       std::string(line.verb->name) + "'.";
    }
    return parsed;
}

}  // namespace kinsort
