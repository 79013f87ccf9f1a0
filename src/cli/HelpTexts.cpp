#include "cli/HelpTexts.h"

#include <algorithm>

namespace kinsort {
namespace {

constexpr size_t kColumns = 80;
constexpr size_t kIndent = 2;
constexpr size_t kHelpColumn = 24;

// "  --to=DIR              The folder ...", the help beginning on its own line when the name is long.
std::string Entry(const std::string& name, std::string_view help) {
    std::string text = std::string(kIndent, ' ') + name;
    const std::string body = WrapText(help, kHelpColumn, kColumns);
    if (text.size() + 2 > kHelpColumn) return text + "\n" + body;
    text.resize(kHelpColumn, ' ');
    return text + body.substr(kHelpColumn);
}

std::string ExitCodeHelp() {
    std::string text = "Exit codes:\n";
    for (const NamedText& code : kExitCodes)
        text += Entry(std::string(code.name), code.text);
    return text;
}

}  // namespace

std::string WrapText(std::string_view text, size_t indent, size_t columns) {
    std::string wrapped;
    std::string line;
    const auto endLine = [&] {
        wrapped += std::string(indent, ' ') + line + "\n";
        line.clear();
    };
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of(" \n"), text.size());
        const std::string_view word = text.substr(0, end);
        if (!line.empty() && indent + line.size() + 1 + word.size() > columns) endLine();
        if (!word.empty() && !line.empty()) line += ' ';
        line += word;
        if (end < text.size() && text[end] == '\n') {
            if (!line.empty()) {
                endLine();
            } else {
                wrapped += "\n";
            }
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (!line.empty()) endLine();
    return wrapped;
}

std::string SynopsisOf(const VerbSpec& verb) {
    std::string text = "kinsort " + std::string(verb.name);
    if (verb.needs != VerbNeeds::kNothing) text += " --to DIR";
    if (verb.needs == VerbNeeds::kFolderAndMode) text += " --copy|--move";
    if (verb.options.size() > 1) text += " [OPTION...]";
    const std::string operand = OperandText(verb);
    return operand.empty() ? text : text + " " + operand;
}

std::string ActionText(const ActionSpec& action) {
    return std::string(action.name) + (action.operands.empty() ? "" : " ") + std::string(action.operands);
}

std::string OptionText(const OptionSpec& option) {
    std::string text = option.letter == 0 ? "" : std::string("-") + option.letter + ", ";
    text += "--" + std::string(option.name);
    return option.value.empty() ? text : text + "=" + std::string(option.value);
}

std::string OptionHelp(const VerbSpec& verb, const OptionSpec& option) {
    std::string takers;
    size_t count = 0;
    for (const ActionSpec& action : verb.actions) {
        if (!TakesOption(action, option.id)) continue;
        ++count;
        takers.append(takers.empty() ? "" : ", ").append(action.name);
    }
    const std::string help(option.help);
    return count == verb.actions.size() ? help : help + " Only with " + takers + ".";
}

std::string ProgramHelp() {
    std::string text = "kinsort: " + std::string(kProgramSummary) + "\n\nUsage:\n";
    for (const VerbSpec& verb : Verbs()) {
        if (!verb.isHidden) text += "  " + SynopsisOf(verb) + "\n";
    }
    text += "\nCommands:\n";
    for (const VerbSpec& verb : Verbs()) {
        if (!verb.isHidden) text += Entry(std::string(verb.name), verb.summary);
    }
    text += "\nOther:\n" + Entry("--version", "Show the version.") + Entry("--help", "Show this list.") + "\n";
    text += ExitCodeHelp();
    text +=
        "\nFor example, look first, then move everything, then think better of it:\n"
        "  kinsort plan --to ~/Pictures ~/Downloads/*\n"
        "  kinsort sort --to ~/Pictures --move ~/Downloads/*\n"
        "  kinsort undo\n"
        "\n'kinsort help COMMAND' shows more about a command.\n";
    return text;
}

std::string VerbHelp(const VerbSpec& verb) {
    std::string text = "Usage: " + SynopsisOf(verb) + "\n\n" + WrapText(verb.description, 0, kColumns);
    if (verb.operand == OperandKind::kItems) text.append("\n").append(WrapText(kItemsText, 0, kColumns));
    if (!verb.actions.empty()) text += "\nActions:\n";
    for (const ActionSpec& action : verb.actions)
        text += Entry(ActionText(action), action.summary);
    text += "\nOptions:\n";
    for (const OptionId id : verb.options)
        text += Entry(OptionText(SpecOf(id)), OptionHelp(verb, SpecOf(id)));
    return text + "\n" + ExitCodeHelp();
}

}  // namespace kinsort
