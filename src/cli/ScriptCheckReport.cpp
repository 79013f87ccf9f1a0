#include "cli/ScriptCheckReport.h"

#include <algorithm>

#include "cli/CommandLine.h"
#include "cli/JsonWriter.h"
#include "cli/NamedPaths.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "script/ScriptCheck.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

// As much of the line as a terminal can show, tabs as blanks so that the mark stands in its place.
std::string ShownPart(std::u16string_view text) {
    std::u16string spaced(text);
    std::replace(spaced.begin(), spaced.end(), u'\t', u' ');
    return ShownText(ToUtf8(spaced));
}

// "a.txt:3:5: message", the line, and "^~~~" below the part.
void PrintFinding(CliContext& context, const std::string& file, const ScriptFinding& finding) {
    const Terminal& terminal = context.services.terminal;
    const std::u16string_view text = finding.text;
    context.console.Print(ShownText(file) + ":" + std::to_string(finding.line) + ":" + std::to_string(finding.column) +
                          ": " + ShownText(ToUtf8(finding.message)) + "\n");
    if (text.empty()) return;
    const size_t before = ColumnsOf(terminal, ShownPart(text.substr(0, finding.column - 1)));
    const size_t meant = ColumnsOf(terminal, ShownPart(text.substr(finding.column - 1, finding.length)));
    context.console.Print("    " + ShownPart(text) + "\n    " + std::string(before, ' ') + "^" +
                          std::string(std::max<size_t>(meant, 1) - 1, '~') + "\n");
}

void WriteFinding(JsonWriter& json, const std::string& file, const ScriptFinding& finding) {
    json.BeginObject();
    json.Path("file", file);
    json.Number("line", static_cast<uint64_t>(finding.line));
    json.Number("column", finding.column);
    json.Number("length", finding.length);
    json.String("rule", finding.rule);
    json.String("message", ToUtf8(finding.message));
    json.EndObject();
}

}  // namespace

ExitCode ReportScriptCheck(CliContext& context, const CommandLine& line) {
    const bool isJson = line.Has(OptionId::kJson);
    JsonWriter json(context.console);
    bool isUnread = false;
    size_t findings = 0;
    if (isJson) json.BeginArray();
    for (size_t i = 1; i < line.operands.size(); ++i) {
        const std::string& file = line.operands[i];
        const Result<std::u16string> path = FindFileToRead(context, file);
        const auto found = path.ok() ? CheckScript(context.services.files, *path) : std::nullopt;
        if (!found) {
            isUnread = true;
            const std::string why = path.ok() ? "it cannot be read" : StatusText(path.status());
            context.console.Say("script: " + ShownText(file) + ": " + why);
            continue;
        }
        findings += found->size();
        for (const ScriptFinding& finding : *found) {
            // An included script is named by its path, this one as it was typed.
            const std::string shown = finding.file == *path ? file : context.services.codec.PathForPeople(finding.file);
            if (isJson)
                WriteFinding(json, shown, finding);
            else
                PrintFinding(context, shown, finding);
        }
    }
    if (isJson) {
        json.EndArray();
        json.Finish();
    }
    if (isUnread) return ExitCode::kNothing;
    return findings == 0 ? ExitCode::kDone : ExitCode::kPartly;
}

}  // namespace kinsort
