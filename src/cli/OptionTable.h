// Every option of the command line, whichever verbs take it. Parsing, help, completion and the manual page read this
// table. To add one: an id, a row in the same order, and its id in the rows of the verbs that take it (VerbTable.cpp).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kinsort {

enum class OptionId : uint8_t {
    kTo,
    kOtherTab,
    kCopy,
    kMove,
    kOnConflict,
    kDryRun,
    kFilesFrom,
    kScores,
    kMinScore,
    kThreads,
    kDurability,
    kFinish,
    kUndo,
    kLeave,
    kType,
    kNoWait,
    kSelect,
    kCwd,
    kOther,
    kSet,
    kYes,
    kNo,
    kTrace,
    kRemove,
    kNotify,
    kClass,
    kOpen,
    kJson,
    kQuiet,
    kHelp,
    kCount,
};

enum class ValueKind : uint8_t { kNone, kFolder, kFile, kNumber, kChoice, kText };

struct OptionSpec {
    OptionId id;
    std::string_view name;  // without the dashes
    char letter;            // its short form; 0 when it has none
    ValueKind kind;
    std::string_view value;  // what the value is called, or the choices separated by "|"
    int minimum;             // of a number
    std::string_view help;
    bool isRepeatable = false;  // each time counts, not only the last one
};

inline constexpr std::array<OptionSpec, static_cast<size_t>(OptionId::kCount)> kOptions = {{
    {OptionId::kTo, "to", 't', ValueKind::kFolder, "DIR", 0, "The folder whose sub-folders the items are sorted into."},
    {OptionId::kOtherTab, "other-tab", 0, ValueKind::kFolder, "DIR", 0,
     "A folder to offer as that of another tab of the file manager; can be given several times. With /2c and /2m the "
     "first one is where to sort to.",
     true},
    {OptionId::kCopy, "copy", 'c', ValueKind::kNone, "", 0, "Copy the items; the originals stay."},
    {OptionId::kMove, "move", 'm', ValueKind::kNone, "", 0, "Move the items."},
    {OptionId::kOnConflict, "on-conflict", 0, ValueKind::kChoice, "ask|skip|replace|keep-both", 0,
     "What to do when the name is taken in the target folder. The default is ask; without a terminal to ask on, it "
     "skips. A replaced file is kept for undo."},
    {OptionId::kDryRun, "dry-run", 'n', ValueKind::kNone, "", 0, "Show what would be done and change nothing."},
    {OptionId::kFilesFrom, "files-from", 'f', ValueKind::kFile, "FILE", 0,
     "Read more items from FILE, or from standard input when FILE is -. One item a line, or, when the file holds a NUL "
     "byte, each ended by NUL."},
    {OptionId::kScores, "scores", 's', ValueKind::kNone, "", 0, "Show the score and the runner-up of each item."},
    {OptionId::kMinScore, "min-score", 0, ValueKind::kNumber, "N", 1,
     "Leave an item without a folder when its best score is below N. The default is 1."},
    {OptionId::kThreads, "threads", 'j', ValueKind::kNumber, "N", 0,
     "Work on up to N threads. The default, 0, fits the machine."},
    {OptionId::kDurability, "durability", 0, ValueKind::kChoice, "journal|content", 0,
     "What survives a power cut: content, the default, makes copied files durable before their names appear; journal "
     "makes only the undo journal durable and is faster."},
    {OptionId::kFinish, "finish", 0, ValueKind::kNone, "", 0, "Do what was planned and not yet done."},
    {OptionId::kUndo, "undo", 0, ValueKind::kNone, "", 0, "Take back what was done."},
    {OptionId::kLeave, "leave", 0, ValueKind::kNone, "", 0, "Leave everything as it is."},
    {OptionId::kType, "type", 0, ValueKind::kChoice, "string|dword|binary", 0,
     "The type of a new value that is none of the named settings. The default is string; binary takes pairs of "
     "hexadecimal digits."},
    {OptionId::kNoWait, "no-wait", 0, ValueKind::kNone, "", 0,
     "Return as soon as the dialog has taken the items over, not when it is closed."},
    {OptionId::kSelect, "select", 0, ValueKind::kFile, "ITEM", 0,
     "An item that the script works on; can be given several times.", true},
    {OptionId::kCwd, "cwd", 0, ValueKind::kFolder, "DIR", 0,
     "The script's current folder. The default is the one you are in."},
    {OptionId::kOther, "other", 0, ValueKind::kFolder, "DIR", 0, "The folder of the host's other pane."},
    {OptionId::kSet, "set", 0, ValueKind::kText, "NAME=VALUE", 0,
     "Declare a variable of the script; can be given several times.", true},
    {OptionId::kYes, "yes", 'y', ValueKind::kNone, "", 0, "Answer every question with Yes, OK or the first choice."},
    {OptionId::kNo, "no", 0, ValueKind::kNone, "", 0, "Answer every question with No or Cancel."},
    {OptionId::kTrace, "trace", 0, ValueKind::kNone, "", 0,
     "Print each line that is run to standard error, with its number and with its variables filled in."},
    {OptionId::kRemove, "remove", 0, ValueKind::kNone, "", 0, "Take away what was integrated, and nothing else."},
    {OptionId::kNotify, "notify", 0, ValueKind::kNone, "", 0,
     "Say what became of it in a notification of the desktop, too."},
    {OptionId::kClass, "class", 0, ValueKind::kText, "NAME", 0,
     "Listen as a window of this class instead of the host's own."},
    {OptionId::kOpen, "open", 0, ValueKind::kNone, "", 0, "Show folder and file jumps in your file manager."},
    {OptionId::kJson, "json", 0, ValueKind::kNone, "", 0, "Print JSON for programs instead of text for people."},
    {OptionId::kQuiet, "quiet", 'q', ValueKind::kNone, "", 0,
     "Print results and failures only: no progress, no advice."},
    {OptionId::kHelp, "help", 'h', ValueKind::kNone, "", 0, "Show the help of this command."},
}};

consteval bool OptionTableIsInOrder() {
    for (size_t i = 0; i < kOptions.size(); ++i) {
        if (kOptions[i].id != static_cast<OptionId>(i)) return false;
    }
    return true;
}
static_assert(OptionTableIsInOrder(), "rows stand in the order of their ids");

constexpr const OptionSpec& SpecOf(OptionId id) {
    return kOptions[static_cast<size_t>(id)];
}

}  // namespace kinsort
