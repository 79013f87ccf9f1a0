// The completion scripts of three shells, from the verb and option tables.
#include "cli/HelpTexts.h"
#include "cli/Integration.h"

namespace kinsort {
namespace {

std::string Words(std::string_view choices) {
    std::string words(choices);
    for (char& c : words) {
        if (c == '|') c = ' ';
    }
    return words;
}

std::string VisibleVerbs() {
    std::string names;
    for (const VerbSpec& verb : Verbs()) {
        if (verb.isHidden) continue;
        if (!names.empty()) names += ' ';
        names += verb.name;
    }
    return names;
}

std::string FileActions(const VerbSpec& verb, std::string_view separator) {
    std::string names;
    for (const ActionSpec& action : verb.actions) {
        if (action.takesFiles) names.append(names.empty() ? "" : separator).append(action.name);
    }
    return names;
}

// Inside single quotes of any shell.
std::string Quoted(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text)
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    return quoted + "'";
}

std::string BashScript() {
    std::string script =
        "# bash completion for kinsort\n"
        "_kinsort() {\n"
        "    local current=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} verb=${COMP_WORDS[1]}\n"
        "    COMPREPLY=()\n"
        "    [[ $current == = ]] && current=\n"
        "    [[ $before == = ]] && before=${COMP_WORDS[COMP_CWORD-2]}\n"
        "    if ((COMP_CWORD == 1)); then\n"
        "        mapfile -t COMPREPLY < <(compgen -W '" +
        VisibleVerbs() +
        " --help --version' -- \"$current\")\n"
        "        return\n"
        "    fi\n"
        "    compopt -o filenames 2>/dev/null\n"
        "    case $before in\n";
    for (const OptionSpec& option : kOptions) {
        if (option.kind == ValueKind::kNone) continue;
        script += "    --" + std::string(option.name);
        if (option.letter != 0) script += std::string(" | -") + option.letter;
        script += ")\n        ";
        if (option.kind == ValueKind::kChoice) {
            script += "mapfile -t COMPREPLY < <(compgen -W '" + Words(option.value) + "' -- \"$current\")\n        ";
        } else if (option.kind == ValueKind::kFolder || option.kind == ValueKind::kFile) {
            script += "mapfile -t COMPREPLY < <(compgen -" +
                      std::string(option.kind == ValueKind::kFolder ? "d" : "f") + " -- \"$current\")\n        ";
        }
        script += "return ;;\n";
    }
    script += "    esac\n    case $verb in\n";
    for (const VerbSpec& verb : Verbs()) {
        if (verb.isHidden) continue;
        std::string words;
        for (const OptionId id : verb.options)
            words += " --" + std::string(SpecOf(id).name);
        script += "    " + std::string(verb.name) + ")\n        if [[ $current == -* ]]; then\n" +
                  "            mapfile -t COMPREPLY < <(compgen -W '" + words.substr(1) + "' -- \"$current\")\n";
        if (verb.operand == OperandKind::kIntegrations) {
            script += "        else\n            mapfile -t COMPREPLY < <(compgen -W '" + IntegrationNames(" ") +
                      "' -- \"$current\")\n";
        }
        if (verb.operand == OperandKind::kItems) {
            script += "        else\n            mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n";
        } else if (verb.operand == OperandKind::kAction) {
            script += "        elif ((COMP_CWORD == 2)); then\n            mapfile -t COMPREPLY < <(compgen -W '" +
                      ActionNames(verb, " ") + "' -- \"$current\")\n";
            const std::string withFiles = FileActions(verb, "|");
            if (!withFiles.empty()) {
                script += "        elif [[ ${COMP_WORDS[2]} == @(" + withFiles +
                          ") ]]; then\n            mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n";
            }
        } else if (verb.operand == OperandKind::kVerb || verb.operand == OperandKind::kShell) {
            script += "        else\n            mapfile -t COMPREPLY < <(compgen -W '" +
                      (verb.operand == OperandKind::kVerb ? VisibleVerbs() : "bash zsh fish") + "' -- \"$current\")\n";
        }
        script += "        fi ;;\n";
    }
    return script + "    esac\n}\ncomplete -F _kinsort kinsort\n";
}

// One argument of zsh's _arguments for an option.
std::string ZshOption(const OptionSpec& option) {
    std::string help;
    for (const char c : option.help) {
        if (c == '[' || c == ']' || c == ':') help += '\\';
        help += c;
    }
    std::string action;
    switch (option.kind) {
        case ValueKind::kNone:
            break;
        case ValueKind::kFolder:
            action = ":folder:_files -/";
            break;
        case ValueKind::kFile:
            action = ":file:_files";
            break;
        case ValueKind::kNumber:
            action = ":number:";
            break;
        case ValueKind::kText:
            action = ":text:";
            break;
        case ValueKind::kChoice:
            action = ":choice:(" + Words(option.value) + ")";
            break;
    }
    const std::string name = "--" + std::string(option.name) + (option.kind == ValueKind::kNone ? "" : "=");
    const std::string tail = Quoted("[" + help + "]" + action);
    if (option.letter == 0) return name + tail;
    const std::string letter = std::string("-") + option.letter;
    return "'(" + letter + " --" + std::string(option.name) + ")'{" + letter + "," + name + "}" + tail;
}

std::string ZshScript() {
    std::string script = "#compdef kinsort\n_kinsort() {\n    local -a verbs\n    verbs=(\n";
    for (const VerbSpec& verb : Verbs()) {
        if (!verb.isHidden)
            script += "        " + Quoted(std::string(verb.name) + ":" + std::string(verb.summary)) + "\n";
    }
    script +=
        "    )\n    if ((CURRENT == 2)); then\n        _describe command verbs\n        return\n    fi\n"
        "    local verb=$words[2]\n    shift words\n    ((CURRENT--))\n    case $verb in\n";
    for (const VerbSpec& verb : Verbs()) {
        if (verb.isHidden) continue;
        script += "    " + std::string(verb.name) + ")\n        _arguments -s";
        for (const OptionId id : verb.options)
            script += " \\\n            " + ZshOption(SpecOf(id));
        if (verb.operand == OperandKind::kItems) script += " \\\n            '*:item:_files'";
        if (verb.operand == OperandKind::kIntegrations)
            script += " \\\n            '*:name:(" + IntegrationNames(" ") + ")'";
        if (verb.operand == OperandKind::kVerb) script += " \\\n            '1:command:(" + VisibleVerbs() + ")'";
        if (verb.operand == OperandKind::kShell) script += " \\\n            '1:shell:(bash zsh fish)'";
        if (verb.operand == OperandKind::kAction) {
            script += " \\\n            '1:action:(" + ActionNames(verb, " ") + ")'";
            if (!FileActions(verb, "|").empty()) script += " \\\n            '*:file:_files'";
        }
        script += "\n        ;;\n";
    }
    return script + "    esac\n}\n_kinsort \"$@\"\n";
}

std::string FishScript() {
    std::string script = "# fish completion for kinsort\ncomplete -c kinsort -n __fish_use_subcommand -f\n";
    for (const VerbSpec& verb : Verbs()) {
        if (verb.isHidden) continue;
        const std::string name(verb.name);
        script += "complete -c kinsort -n __fish_use_subcommand -a " + name + " -d " + Quoted(verb.summary) + "\n";
        const std::string prefix = "complete -c kinsort -n '__fish_seen_subcommand_from " + name + "'";
        if (verb.operand != OperandKind::kItems) script += prefix + " -f\n";
        if (verb.operand == OperandKind::kVerb) script += prefix + " -a '" + VisibleVerbs() + "'\n";
        if (verb.operand == OperandKind::kIntegrations) script += prefix + " -a '" + IntegrationNames(" ") + "'\n";
        if (verb.operand == OperandKind::kShell) script += prefix + " -a 'bash zsh fish'\n";
        if (verb.operand == OperandKind::kAction) {
            const std::string actions = ActionNames(verb, " ");
            script += "complete -c kinsort -n '__fish_seen_subcommand_from " + name +
                      "; and not __fish_seen_subcommand_from " + actions + "' -a '" + actions + "'\n";
            const std::string withFiles = FileActions(verb, " ");
            if (!withFiles.empty()) {
                script += "complete -c kinsort -n '__fish_seen_subcommand_from " + name +
                          "; and __fish_seen_subcommand_from " + withFiles + "' -F\n";
            }
        }
        for (const OptionId id : verb.options) {
            const OptionSpec& option = SpecOf(id);
            script += prefix + " -l " + std::string(option.name);
            if (option.letter != 0) script += std::string(" -s ") + option.letter;
            if (option.kind == ValueKind::kFolder) script += " -x -a '(__fish_complete_directories)'";
            if (option.kind == ValueKind::kFile) script += " -r -F";
            if (option.kind == ValueKind::kNumber || option.kind == ValueKind::kText) script += " -x";
            if (option.kind == ValueKind::kChoice) script += " -x -a '" + Words(option.value) + "'";
            script += " -d " + Quoted(option.help) + "\n";
        }
    }
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
