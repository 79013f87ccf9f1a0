// Texts that the help and the manual page share and that belong to no single verb.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "cli/VerbTable.h"

namespace kinsort {

inline constexpr std::string_view kProgramSummary = "sort files into the sub-folders their names look like";

struct NamedText {
    std::string_view name;
    std::string_view text;
};

inline constexpr std::array<NamedText, 4> kExitCodes = {{
    {"0", "Everything was done."},
    {"1", "Some items failed, were left because nobody could be asked, or have no candidate."},
    {"2", "The command line makes no sense; nothing was looked at."},
    {"3", "Nothing was done."},
}};

// Everything about the items of plan and sort that is not an option.
inline constexpr std::string_view kItemsText =
    "Items are files and folders, given as paths or as file:// addresses. A path that begins with ~/ is below your "
    "home "
    "folder. When neither ITEM nor --files-from is given, the items that the file manager selected are taken, if one "
    "started the program.";

// "kinsort plan --to DIR [OPTIONS] [ITEM...]"
std::string SynopsisOf(const VerbSpec& verb);
// "set NAME VALUE"
std::string ActionText(const ActionSpec& action);
// "--on-conflict=ask|skip|replace|keep-both"
std::string OptionText(const OptionSpec& option);
// What the option does, and which actions of the verb take it when not all do.
std::string OptionHelp(const VerbSpec& verb, const OptionSpec& option);

// For a terminal, 80 columns at most.
std::string ProgramHelp();
std::string VerbHelp(const VerbSpec& verb);

// `text` broken at blanks into lines of at most `columns`, each behind `indent` blanks.
std::string WrapText(std::string_view text, size_t indent, size_t columns);

// The manual page in the man format; `version` is the program's.
std::string ManualPage(std::string_view version);

inline constexpr std::string_view kCompletionShells = "bash|zsh|fish";
// The completion script for one of them; empty for another shell.
std::string CompletionScript(std::string_view shell);

}  // namespace kinsort
