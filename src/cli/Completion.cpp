// The completion scripts of three shells, from the verb and option tables.
#include <algorithm>
#include <vector>

#include "cli/HelpTexts.h"
#include "cli/Integration.h"

namespace kinsort {
namespace {

std::string Joined(const std::vector<std::string>& words, std::string_view separator) {
    std::string text;
    for (const std::string& word : words)
        text.append(text.empty() ? "" : separator).append(word);
    return text;
}

std::string Words(std::string_view choices) {
    std::string words(choices);
    std::replace(words.begin(), words.end(), '|', ' ');
    return words;
}

// Inside single quotes of any shell.
std::string Quoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + "'";
}

std::vector<const VerbSpec*> VisibleVerbs() {
    std::vector<const VerbSpec*> verbs;
    for (const VerbSpec& verb : Verbs()) {
        if (!verb.isHidden) verbs.push_back(&verb);
    }
    return verbs;
}

std::string VerbNames() {
    std::vector<std::string> names;
    for (const VerbSpec* const verb : VisibleVerbs())
        names.emplace_back(verb->name);
    return Joined(names, " ");
}

// What can be completed behind a verb and its action; the action is null as long as none was typed.
struct Continuation {
    std::vector<const OptionSpec*> options;
    bool takesFiles = false;
    std::string words;  // separated by blanks; empty: none of a list
};

std::string OperandWords(const VerbSpec& verb) {
    switch (verb.operand) {
        case OperandKind::kNone:
        case OperandKind::kItems:
        case OperandKind::kBatch:
            return {};
        case OperandKind::kVerb:
            return VerbNames();
        case OperandKind::kShell:
            return Words(kCompletionShells);
        case OperandKind::kAction:
            return ActionNames(verb, " ");
        case OperandKind::kIntegrations:
            return IntegrationNames(" ");
    }
    return {};
}

Continuation Behind(const VerbSpec& verb, const ActionSpec* action) {
    Continuation next;
    for (const OptionId id : verb.options) {
        if (action == nullptr || TakesOption(*action, id)) next.options.push_back(&SpecOf(id));
    }
    next.takesFiles = action != nullptr ? action->takesFiles : verb.operand == OperandKind::kItems;
    if (action == nullptr) next.words = OperandWords(verb);
    return next;
}

// --- bash ------------------------------------------------------------------------------------------------------------

// "--to | -t"
std::string BashPattern(const OptionSpec& option) {
    const std::string name = "--" + std::string(option.name);
    return option.letter == 0 ? name : name + " | -" + option.letter;
}

// The options whose values are completed in the same way, as one pattern.
std::string BashValues(ValueKind kind, std::string_view operands) {
    std::vector<std::string> patterns;
    for (const OptionSpec& option : kOptions) {
        if (option.kind == kind) patterns.push_back(BashPattern(option));
    }
    return "    " + Joined(patterns, " | ") + ")" + std::string(operands) + " ;;\n";
}

std::string BashBehind(const std::string& command, const VerbSpec& verb, const ActionSpec* action) {
    const Continuation next = Behind(verb, action);
    std::vector<std::string> names;
    for (const OptionSpec* const option : next.options)
        names.push_back("--" + std::string(option->name));
    std::string line = "        " + command + ") options=" + Quoted(Joined(names, " "));
    if (next.takesFiles) line += " operands=(-f)";
    if (!next.words.empty()) line += " operands=(-W " + Quoted(next.words) + ")";
    return line + " ;;\n";
}

std::string BashScript() {
    std::string commands;
    std::vector<std::string> withAction;
    for (const VerbSpec* const verb : VisibleVerbs()) {
        commands += BashBehind(std::string(verb->name), *verb, nullptr);
        for (const ActionSpec& action : verb->actions) {
            withAction.push_back(Quoted(std::string(verb->name) + " " + std::string(action.name)));
            commands += BashBehind(withAction.back(), *verb, &action);
        }
    }
    std::string script =
        "# bash completion for kinsort\n"
        "_kinsort() {\n"
        "    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command=${COMP_WORDS[1]}\n"
        "    local word options= operands=()\n"
        "    COMPREPLY=()\n"
        "    [[ $current == = ]] && current=\n"
        "    [[ $before == = ]] && before=${COMP_WORDS[COMP_CWORD-2]}\n"
        "    if ((COMP_CWORD == 1)); then\n"
        "        mapfile -t COMPREPLY < <(compgen -W '" +
        VerbNames() +
        " --help --version' -- \"$current\")\n"
        "        return\n"
        "    fi\n"
        "    for word in \"${COMP_WORDS[@]:2:COMP_CWORD-2}\"; do\n"
        "        case \"$command $word\" in\n"
        "        " +
        Joined(withAction, " | ") +
        ") command+=\" $word\" ;;\n"
        "        esac\n"
        "    done\n"
        "    case $before in\n";
    script += BashValues(ValueKind::kFolder, " operands=(-d)") + BashValues(ValueKind::kFile, " operands=(-f)") +
              BashValues(ValueKind::kNumber, "") + BashValues(ValueKind::kText, "");
    for (const OptionSpec& option : kOptions) {
        if (option.kind != ValueKind::kChoice) continue;
        script += "    " + BashPattern(option) + ") operands=(-W " + Quoted(Words(option.value)) + ") ;;\n";
    }
    return script + "    *)\n        case $command in\n" + commands +
           "        esac\n"
           "        [[ $current == -* ]] && operands=(-W \"$options\")\n"
           "        ;;\n"
           "    esac\n"
           "    [[ ${operands[0]-} == -[df] ]] && compopt -o filenames\n"
           "    ((${#operands[@]})) && mapfile -t COMPREPLY < <(compgen \"${operands[@]}\" -- \"$current\")\n"
           "}\ncomplete -F _kinsort kinsort\n";
}

// --- zsh -------------------------------------------------------------------------------------------------------------

// The array that holds what _arguments is to know of the option.
std::string ZshName(const OptionSpec& option) {
    std::string name = "o_" + std::string(option.name);
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

// How values are completed, in the order of ValueKind.
constexpr std::string_view kZshValues[] = {"", ":folder:_files -/", ":file:_files", ":number:", ":choice:", ":text:"};

std::string ZshOption(const OptionSpec& option) {
    std::string help;
    for (const char c : option.help) {
        if (c == '[' || c == ']' || c == ':') help += '\\';
        help += c;
    }
    std::string tail = "[" + help + "]" + std::string(kZshValues[static_cast<size_t>(option.kind)]);
    if (option.kind == ValueKind::kChoice) tail += "(" + Words(option.value) + ")";
    const bool hasValue = option.kind != ValueKind::kNone;
    const std::string name = "--" + std::string(option.name);
    std::string specs;
    if (option.letter == 0) {
        specs = Quoted((option.isRepeatable ? "*" : "") + name + (hasValue ? "=" : "") + tail);
    } else {
        const std::string letter = std::string("-") + option.letter;
        const std::string either = "(" + letter + " " + name + ")";
        specs = Quoted(either + letter + (hasValue ? "+" : "") + tail) + " " +
                Quoted(either + name + (hasValue ? "=" : "") + tail);
    }
    return "    local -a " + ZshName(option) + "=(" + specs + ")\n";
}

std::string ZshBehind(const VerbSpec& verb, const ActionSpec* action) {
    const Continuation next = Behind(verb, action);
    std::string call = "_arguments -s";
    for (const OptionSpec* const option : next.options)
        call += " $" + ZshName(*option);
    const std::string_view place = verb.operand == OperandKind::kIntegrations ? "*" : "1";
    if (const std::string words = OperandWords(verb); !words.empty())
        call += " " + Quoted(std::string(place) + ":name:(" + words + ")");
    if (next.takesFiles) call += " '*:file:_files'";
    return call + " ;;\n";
}

std::string ZshScript() {
    std::string script = "#compdef kinsort\n_kinsort() {\n    local -a verbs=(\n";
    for (const VerbSpec* const verb : VisibleVerbs())
        script += "        " + Quoted(std::string(verb->name) + ":" + std::string(verb->summary)) + "\n";
    script += "    )\n    if ((CURRENT == 2)); then\n        _describe command verbs\n        return\n    fi\n";
    for (const OptionSpec& option : kOptions)
        script += ZshOption(option);
    script += "    local verb=$words[2]\n    shift words\n    ((CURRENT--))\n    case $verb in\n";
    for (const VerbSpec* const verb : VisibleVerbs()) {
        script += "    " + std::string(verb->name) + ")";
        if (verb->actions.empty()) {
            script += " " + ZshBehind(*verb, nullptr);
            continue;
        }
        script += "\n        case $words[(r)(" + ActionNames(*verb, "|") + ")] in\n";
        for (const ActionSpec& action : verb->actions)
            script += "        " + std::string(action.name) + ") " + ZshBehind(*verb, &action);
        script += "        *) " + ZshBehind(*verb, nullptr) + "        esac ;;\n";
    }
    return script + "    esac\n}\n_kinsort \"$@\"\n";
}

// --- fish ------------------------------------------------------------------------------------------------------------

std::string FishWhen(const std::string& condition) {
    return "complete -c kinsort -n " + Quoted(condition);
}

std::string FishSeen(const std::vector<std::string>& words) {
    return "__fish_seen_subcommand_from " + Joined(words, " ");
}

std::string FishOption(const OptionSpec& option) {
    std::string text = " -l " + std::string(option.name);
    if (option.letter != 0) text += std::string(" -s ") + option.letter;
    if (option.kind == ValueKind::kFolder) text += " -x -a '(__fish_complete_directories)'";
    if (option.kind == ValueKind::kFile) text += " -r -F";
    if (option.kind == ValueKind::kNumber || option.kind == ValueKind::kText) text += " -x";
    if (option.kind == ValueKind::kChoice) text += " -x -a " + Quoted(Words(option.value));
    return text + " -d " + Quoted(option.help) + "\n";
}

std::string FishOperands(const VerbSpec& verb) {
    const std::string seen = FishSeen({std::string(verb.name)});
    const std::string words = OperandWords(verb);
    if (verb.operand != OperandKind::kAction) {
        return words.empty() ? "" : FishWhen(seen) + " -a " + Quoted(words) + "\n";
    }
    const std::string script = FishWhen(seen + "; and not " + FishSeen({words})) + " -a " + Quoted(words) + "\n";
    std::vector<std::string> withFiles;
    for (const ActionSpec& action : verb.actions) {
        if (action.takesFiles) withFiles.emplace_back(action.name);
    }
    return withFiles.empty() ? script : script + FishWhen(seen + "; and " + FishSeen(withFiles)) + " -F\n";
}

// The option where it means something: a line for the verbs that take it anyhow, and one for each verb with an action
// that does not.
std::string FishTakers(const OptionSpec& option) {
    std::vector<std::string> always;
    std::string sometimes;
    for (const VerbSpec* const verb : VisibleVerbs()) {
        if (std::find(verb->options.begin(), verb->options.end(), option.id) == verb->options.end()) continue;
        std::vector<std::string> without;
        for (const ActionSpec& action : verb->actions) {
            if (!TakesOption(action, option.id)) without.emplace_back(action.name);
        }
        if (without.empty()) {
            always.emplace_back(verb->name);
        } else {
            sometimes +=
                FishWhen(FishSeen({std::string(verb->name)}) + "; and not " + FishSeen(without)) + FishOption(option);
        }
    }
    return (always.empty() ? "" : FishWhen(FishSeen(always)) + FishOption(option)) + sometimes;
}

std::string FishScript() {
    std::string script = "# fish completion for kinsort\ncomplete -c kinsort -n __fish_use_subcommand -f\n";
    for (const VerbSpec* const verb : VisibleVerbs()) {
        script += "complete -c kinsort -n __fish_use_subcommand -a " + std::string(verb->name) + " -d " +
                  Quoted(verb->summary) + "\n";
    }
    std::vector<std::string> withoutFiles;
    std::string operands;
    for (const VerbSpec* const verb : VisibleVerbs()) {
        if (verb->operand != OperandKind::kItems) withoutFiles.emplace_back(verb->name);
        operands += FishOperands(*verb);
    }
    script += FishWhen(FishSeen(withoutFiles)) + " -f\n" + operands;
    for (const OptionSpec& option : kOptions)
        script += FishTakers(option);
    return script;
}

}  // namespace

std::string CompletionScript(std::string_view shell) {
    if (shell == "bash") return BashScript();
    if (shell == "zsh") return ZshScript();
    if (shell == "fish") return FishScript();
    return {};
}

}  // namespace kinsort
