// The manual page, from the same tables as the help.
#include "cli/HelpTexts.h"
#include "cli/Texts.h"

namespace kinsort {
namespace {

struct Field {
    std::string_view name;
    std::string_view text;
};

constexpr Field kPlanFields[] = {
    {"item", "The item's path (string)."},
    {"folder", "The full path of the target folder (string), null when the item has no candidate."},
    {"score", "The score of that folder (number), 0 when there is none."},
    {"runner_up, runner_up_score", "With --scores: the second best folder and its score, or null and 0."},
};

constexpr Field kOutcomeFields[] = {
    {"batch", "The batch's number for undo and redo (number), null when nothing was begun."},
    {"action", "What was done: copy, move, undo, redo, finish (string)."},
    {"done, skipped, failed, not_reached, no_candidate", "How many items (numbers)."},
    {"cancelled", "Whether it was stopped (boolean)."},
    {"error", "Why the batch as a whole stopped (string), null when it did not."},
    {"warnings", "What could not be kept, said once each (array of strings)."},
    {"items",
     "One object for each item that was not plainly done: item, target (string or null), outcome (done, skipped, "
     "failed, not-reached, no-candidate), reason (one of the keywords below), message (a sentence for people)."},
};

constexpr Field kHistoryFields[] = {
    {"batch", "The batch's number."},
    {"state", "done, undone, unfinished, running, damaged or foreign (from a later version)."},
    {"action", "copy or move."},
    {"started", "When, in UTC (YYYY-MM-DDThh:mm:ssZ)."},
    {"cancelled", "Whether it was stopped."},
    {"done, failed, skipped", "How many items."},
    {"undone", "How many of the items done are taken back at the moment."},
    {"folder", "The folder that the items were sorted into."},
    {"first_item", "The name of the first item."},
};

constexpr Field kSettingsFields[] = {
    {"name", "The setting's name, or the full path of another value."},
    {"key, value_name", "Where the value lies."},
    {"is_set", "Whether it is stored (boolean)."},
    {"type", "string, dword, binary, or the number of another type. Absent when it is not set."},
    {"value", "A text for string, a number for dword."},
    {"hex", "The bytes as hexadecimal digits, for every other type and for data that is no proper text or number."},
    {"path", "Of UserDir: the native path."},
    {"default", "What counts when a named setting is not set."},
};

// A backslash, and a dot or quote at the start of a line, mean something to the formatter.
std::string Escaped(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        const bool startsLine = escaped.empty() || escaped.back() == '\n';
        if (startsLine && (c == '.' || c == '\'')) escaped += "\\&";
        if (c == '\\') {
            escaped += "\\e";
        } else if (c == '-') {
            escaped += "\\-";
        } else {
            escaped += c;
        }
    }
    return escaped;
}

std::string Paragraphs(std::string_view text) {
    std::string page = Escaped(text) + "\n";
    for (size_t gap = page.find("\n\n"); gap != std::string::npos; gap = page.find("\n\n")) {
        page.replace(gap, 2, "\n.PP\n");
    }
    return page;
}

std::string Tagged(std::string_view tag, std::string_view text) {
    return ".TP\n.B " + Escaped(tag) + "\n" + Escaped(text) + "\n";
}

std::string Section(std::string_view title) {
    return ".SH " + std::string(title) + "\n";
}

template <size_t kCount>
std::string Fields(const Field (&fields)[kCount]) {
    std::string text;
    for (const Field& field : fields)
        text += Tagged(field.name, field.text);
    return text;
}

// Every word that "reason" can hold, from the table of texts.
std::string ReasonKeywords() {
    std::string words = "no-candidate";
    ItemReport report;
    for (int i = static_cast<int>(ItemReason::kSourceGone); i <= static_cast<int>(ItemReason::kCancelled); ++i) {
        report.reason = static_cast<ItemReason>(i);
        words += ", " + std::string(ReasonKeyword(report));
    }
    for (int i = static_cast<int>(StatusCode::kNotFound); i <= static_cast<int>(StatusCode::kOther); ++i) {
        words += ", " + std::string(StatusKeyword(static_cast<StatusCode>(i)));
    }
    return words;
}

std::string CommandSection() {
    std::string page = Section("COMMANDS");
    for (const VerbSpec& verb : Verbs()) {
        if (verb.isHidden) continue;
        page += ".SS " + Escaped(SynopsisOf(verb)) + "\n" + Escaped(verb.summary) + ".\n.PP\n" +
                Paragraphs(verb.description);
        if (verb.operand == OperandKind::kItems) page += ".PP\n" + Paragraphs(kItemsText);
        for (const ActionSpec& action : verb.actions)
            page += Tagged(std::string(verb.name) + " " + ActionText(action), action.summary);
        for (const OptionId id : verb.options)
            page += Tagged(OptionText(SpecOf(id)), OptionHelp(verb, SpecOf(id)));
    }
    return page;
}

std::string JsonSection() {
    std::string page = Section("JSON OUTPUT");
    page +=
        "The names below stay as they are; new ones may be added. Paths are native and absolute. A path that is not "
        "valid UTF\\-8 is shown with U+FFFD for each wrong byte, and the same object then holds the exact path as a "
        "file:// address under the name with \"_uri\" added, for example item_uri. Such an address is accepted as an "
        "item.\n";
    page +=
        ".SS plan \\-\\-json\nAn array with one object for each item, in the order in which they were "
        "given. Items that do not exist are left out and named on standard error.\n" +
        Fields(kPlanFields);
    page +=
        ".SS sort, undo, redo, recover \\-\\-json\nOne object; recover prints an array of them. With \\-\\-dry\\-run, "
        "sort prints what plan prints.\n" +
        Fields(kOutcomeFields) + ".PP\nReasons: " + Escaped(ReasonKeywords()) + ".\n";
    page += ".SS history \\-\\-json\nAn array, newest batch first.\n" + Fields(kHistoryFields);
    page += ".SS settings get, settings list \\-\\-json\nOne object, or an array of them.\n" + Fields(kSettingsFields);
    return page;
}

}  // namespace

std::string ManualPage(std::string_view version) {
    std::string page = ".TH KINSORT 1 \"\" \"Kinsort " + std::string(version) + "\" \"User Commands\"\n";
    page += Section("NAME") + "kinsort \\- " + std::string(kProgramSummary) + "\n" + Section("SYNOPSIS");
    for (const VerbSpec& verb : Verbs()) {
        if (!verb.isHidden) page += ".B " + Escaped(SynopsisOf(verb)) + "\n.br\n";
    }
    page += ".B kinsort \\-\\-version\n" + Section("DESCRIPTION");
    page +=
        "Kinsort takes files and a folder, finds for each file the sub\\-folder whose name looks most like the file's, "
        "shows the plan, and copies or moves everything as one batch that can be undone. Results go to standard "
        "output, messages and progress to standard error.\n";
    page += CommandSection() + Section("EXIT STATUS");
    for (const NamedText& code : kExitCodes)
        page += Tagged(code.name, code.text);
    page += JsonSection() + Section("ENVIRONMENT");
    page += Tagged("NO_COLOR", "When set and not empty, nothing is coloured.");
    page += Tagged("XDG_CONFIG_HOME", "Where the settings are kept; ~/.config when not set.");
    page += Tagged("XDG_STATE_HOME", "Where the undo journal is kept; ~/.local/state when not set.");
    page += Section("FILES") + Tagged("$XDG_STATE_HOME/vel/undo", "The undo journal: one file for each batch.");
    page += Tagged("$XDG_CONFIG_HOME/vel/registry.db",
                   "The settings, an SQLite file. A damaged one is kept as registry.db.damaged-1 and a new one begun.");
    page +=
        Section("EXAMPLES") +
        "Look first, then move everything in Downloads, then think better of it:\n.PP\n.nf\n"
        "kinsort plan \\-\\-to ~/Pictures ~/Downloads/*\n"
        "kinsort sort \\-\\-to ~/Pictures \\-\\-move ~/Downloads/*\n"
        "kinsort undo\n.fi\n.PP\nA selection that is too large for a command line:\n.PP\n.nf\n"
        "find . \\-name '*.jpg' \\-print0 | kinsort sort \\-\\-to ~/Pictures \\-\\-copy \\-\\-files\\-from \\-\n.fi\n";
    return page;
}

}  // namespace kinsort
