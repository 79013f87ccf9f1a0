#include "cli/VerbTable.h"

#include <algorithm>
#include <array>

namespace kinsort {
namespace {

using enum OptionId;

constexpr OptionId kPlanOptions[] = {kTo, kFilesFrom, kScores, kMinScore, kThreads, kJson, kQuiet, kHelp};
constexpr OptionId kSortOptions[] = {kTo,       kCopy,    kMove,       kOnConflict, kDryRun, kFilesFrom, kScores,
                                     kMinScore, kThreads, kDurability, kJson,       kQuiet,  kHelp};
constexpr OptionId kOpenOptions[] = {kTo, kOtherTab, kCopy, kMove, kFilesFrom, kNoWait, kQuiet, kHelp};
constexpr OptionId kUndoOptions[] = {kNotify, kJson, kQuiet, kHelp};
constexpr OptionId kHistoryOptions[] = {kJson, kHelp};
constexpr OptionId kRecoverOptions[] = {kFinish, kUndo, kLeave, kJson, kQuiet, kHelp};
constexpr OptionId kSettingsOptions[] = {kType, kJson, kQuiet, kHelp};
constexpr OptionId kScriptOptions[] = {kSelect, kCwd, kOther, kSet, kYes, kNo, kTrace, kDryRun, kJson, kHelp};
constexpr OptionId kScriptRunOptions[] = {kSelect, kCwd, kOther, kSet, kYes, kNo, kTrace, kDryRun};
constexpr OptionId kIntegrateOptions[] = {kRemove, kDryRun, kQuiet, kHelp};
constexpr OptionId kHostOptions[] = {kClass, kOpen, kJson, kQuiet, kHelp};
constexpr OptionId kHelpOptions[] = {kHelp};
constexpr OptionId kJsonOnly[] = {kJson};
constexpr OptionId kTypeOnly[] = {kType};

constexpr ActionSpec kSettingsActions[] = {
    {"get", "NAME", 1, 1, false, kJsonOnly, "Print a setting; its default when it is not set."},
    {"set", "NAME VALUE", 2, 2, true, kTypeOnly, "Set it."},
    {"unset", "NAME", 1, 1, false, {}, "Go back to the default."},
    {"list", "[KEY]", 0, 1, false, kJsonOnly,
     "List the named settings and all other values, or what is stored below KEY."},
    {"export", "[KEY]", 0, 1, false, kJsonOnly, "Print everything, or what is stored below KEY, as JSON for import."},
    {"import",
     "FILE",
     1,
     1,
     true,
     {},
     "Take over all values from what export has printed, or none when something is wrong with it; - reads standard "
     "input."},
};

constexpr ActionSpec kScriptActions[] = {
    {"run", "FILE", 1, 1, true, kScriptRunOptions,
     "Run the script, as the dialog runs the entries of its folder menu."},
    {"check", "FILE...", 1, SIZE_MAX, true, kJsonOnly,
     "Read scripts without running them and tell what would go wrong, as file:line:column: message, or with --json as "
     "an array."},
};

constexpr ActionSpec kHostActions[] = {
    {"listen", "", 0, 0, false, kHostOptions, "Be the host's window: print each message that arrives, until Ctrl-C."},
};

constexpr std::array kVerbs = {
    VerbSpec{"plan",
             OperandKind::kItems,
             "Show which folder each item would go to",
             "Compares the name of each item with the names of the folders directly in DIR and shows the folder whose "
             "name looks most like it. Nothing is changed.\n\n"
             "Names are compared without regard to case, to the kind of kana and to full or half width; digits, blanks "
             "and brackets do not count. The score is the number of two-character pieces of the item's name that occur "
             "in the folder's name. Of folders with the same score the first by name is taken; an item that shares "
             "nothing with any folder has no candidate.",
             kPlanOptions,
             RunPlan,
             false,
             {},
             VerbNeeds::kFolder},
    VerbSpec{"sort",
             OperandKind::kItems,
             "Copy or move each item into the folder its name looks most like",
             "Carries out what 'kinsort plan' shows, as one batch that 'kinsort undo' takes back. Items without a "
             "candidate stay where they are and are listed. An item that cannot be copied or moved never stops the "
             "others.\n\n"
             "Ctrl-C stops cleanly: every item is then either wholly done or untouched, and what was done can be "
             "undone.",
             kSortOptions,
             RunSort,
             false,
             {},
             VerbNeeds::kFolderAndMode},
    VerbSpec{
        "open", OperandKind::kItems, "Show the dialog for the items",
        "Hands the items over to the dialog as a file manager does and waits until it is closed. In the dialog you "
        "choose the folder, look through the plan, change it and carry it out.\n\n"
        "In front of the items, /c or /m lets the dialog begin with copying or moving (as --copy and --move do); "
        "/2c and /2m do so in two steps: the items first, then the folder, which is the first --other-tab or the "
        "next one that is dropped on the dialog. An item of such a path is written file:///c.\n\n"
        "Without a display nothing is shown and the exit code is 3. Otherwise the exit code is the dialog's own, "
        "or 1 when some items do not exist.",
        kOpenOptions, RunOpen, false},
    VerbSpec{"undo", OperandKind::kBatch, "Take back a batch: the newest one, or the one with the number ID",
             "Moved items go back to where they were, copies are removed, and files that were replaced come back. An "
             "item that was changed since is left alone and named. An undone batch can be redone.",
             kUndoOptions, RunUndo, false},
    VerbSpec{"redo", OperandKind::kBatch, "Do an undone batch again: the newest one, or the one with the number ID",
             "Carries out again what 'kinsort undo' took back. An item that was changed since is left alone and named.",
             kUndoOptions, RunRedo, false},
    VerbSpec{"history", OperandKind::kNone, "List the batches that can be undone or redone",
             "Lists every batch that is kept, newest first, with its number, its time and its state.", kHistoryOptions,
             RunHistory, false},
    VerbSpec{"recover", OperandKind::kBatch, "Finish or take back a batch that was interrupted",
             "A batch that was torn by a crash or a power cut is found again here. Without an option you are asked "
             "what to do with it; without a terminal to ask on it is finished. With an ID only that batch is looked "
             "at.",
             kRecoverOptions, RunRecover, false},
    VerbSpec{
        "settings", OperandKind::kAction, "Show and change the settings of the dialog and of its host",
        "NAME is one of NLS (language of the dialog: .ja-JP or .en-US), UserDirMode (user folder: 0 is Vel in your "
        "local data folder, 1 is below the program's folder, 2 is UserDir), UserDir (that folder), LangOut (1 lets "
        "dialogs write their texts out for translating) and Confirmation (1 lets the dialog ask about conflicts). "
        "Case does not count.\n\n"
        "Any other value is named by its full path, for example Software/TEV_Soft/Vel/Main001/Settings/NLS; the "
        "names of a path are separated by backslashes, or by slashes when there is no backslash.",
        kSettingsOptions, RunSettings, false, kSettingsActions},
    VerbSpec{
        "script", OperandKind::kAction, "Run or check a script of the ExCommand language",
        "Scripts are text files in UTF-16. Their messages and questions appear on the terminal; where nobody can "
        "be asked, a question counts as cancelled, unless --yes or --no says more. --dry-run works everything "
        "out, but prints what the script would write, start, send or store instead of doing it. Ctrl-C stops the "
        "script before its next line.\n\n"
        "The exit code is 0 when the script came to its end or ended itself, 1 when an error, a limit, a No or "
        "Ctrl-C ended it, 2 when the command line makes no sense and 3 when the script cannot be read. check gives 0 "
        "when it found nothing, 1 when it found something and 3 when a file cannot be read.",
        kScriptOptions, RunScriptVerb, false, kScriptActions},
    VerbSpec{"integrate", OperandKind::kIntegrations, "Put Kinsort into the menus of the desktop and its file managers",
             "NAME is menu (the menu of programs, with an action that undoes the last sorting), kde (service menu), "
             "nemo (action), nautilus, caja (script) or thunar (custom action). Without a name, menu and the file "
             "managers that are installed here are integrated; with --remove, all of them are cleaned.\n\n"
             "Only files of your own are written, below ~/.local/share and ~/.config. What others have written stays: "
             "a list that is shared keeps its other entries, and a file that is not Kinsort's is named and left alone. "
             "Do it again when the program has moved.",
             kIntegrateOptions, RunIntegrate, false},
    VerbSpec{"host", OperandKind::kAction, "Stand in for the host that scripts talk to",
             "Scripts and the dialog send messages to the host's main window. Here you see what they send, each "
             "message on a line as it comes, and with --open what they want to be shown comes up in your file manager. "
             "Every message is answered with 1. With --json each line is one JSON object.",
             kHostOptions, RunHost, false, kHostActions},
    VerbSpec{"help", OperandKind::kVerb, "Show the help of a command", "Without a command, shows the list of commands.",
             kHelpOptions, RunHelp, false},
    VerbSpec{"completion", OperandKind::kShell, "Print the completion script for bash, zsh or fish",
             "For bash: source <(kinsort completion bash). Packages install these scripts already.", kHelpOptions,
             RunCompletion, false},
    VerbSpec{"manual", OperandKind::kNone, "Print the manual page", "Prints the manual page in the man format.",
             kHelpOptions, RunManual, true},
};

}  // namespace

std::span<const VerbSpec> Verbs() {
    return kVerbs;
}

const VerbSpec* FindVerb(std::string_view name) {
    const auto* const found =
        std::find_if(kVerbs.begin(), kVerbs.end(), [name](const VerbSpec& verb) { return verb.name == name; });
    return found == kVerbs.end() ? nullptr : &*found;
}

const ActionSpec* FindAction(const VerbSpec& verb, std::string_view name) {
    const auto found = std::find_if(verb.actions.begin(), verb.actions.end(),
                                    [name](const ActionSpec& action) { return action.name == name; });
    return found == verb.actions.end() ? nullptr : &*found;
}

bool TakesOption(const ActionSpec& action, OptionId option) {
    return option == kQuiet || option == kHelp ||
           std::find(action.options.begin(), action.options.end(), option) != action.options.end();
}

std::string ActionNames(const VerbSpec& verb, std::string_view separator) {
    std::string names;
    for (const ActionSpec& action : verb.actions)
        names.append(names.empty() ? "" : separator).append(action.name);
    return names;
}

std::string OperandText(const VerbSpec& verb) {
    switch (verb.operand) {
        case OperandKind::kNone:
            return "";
        case OperandKind::kItems:
            return "[ITEM...]";
        case OperandKind::kBatch:
            return "[ID]";
        case OperandKind::kVerb:
            return "[COMMAND]";
        case OperandKind::kShell:
            return "SHELL";
        case OperandKind::kAction:
            return "ACTION [ARGUMENT...]";
        case OperandKind::kIntegrations:
            return "[NAME...]";
    }
    return "";
}

}  // namespace kinsort
