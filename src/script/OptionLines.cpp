#include "script/OptionLines.h"

#include <algorithm>
#include <array>

#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "text/Numbers.h"
#include "text/Trim.h"

namespace kinsort {
namespace {

OptionText Stored(std::u16string text) {
    return {OptionText::Kind::kStored, std::move(text)};
}
OptionText Ignored() {
    return {OptionText::Kind::kIgnored, {}};
}
OptionText TooLong() {
    return {OptionText::Kind::kTooLong, {}};
}

OptionText ExpandedText(ScriptRun& run, const ScriptLine& line) {
    std::optional<std::u16string> text = ExpandLine(line.value, run.scope, Trimming::kTrim);
    return text ? Stored(std::move(*text)) : TooLong();
}

OptionText Integer(ScriptRun& run, const ScriptLine& line) {
    OptionText result = ExpandedText(run, line);
    result.text = FormatInteger(ReadInt32(result.text));
    return result;
}

OptionText ExactlyOne(ScriptRun& run, const ScriptLine& line) {
    OptionText result = ExpandedText(run, line);
    result.text = ReadInt32(result.text) == 1 ? u"1" : u"0";
    return result;
}

// Folders and programs: variables, then the form of ExpandLine that leaves the items alone.
OptionText PathText(ScriptRun& run, const ScriptLine& line) {
    std::u16string text(line.value);
    if (!ExpandVariables(run.variables, text)) return TooLong();
    return Stored(ExpandPathText(text, run.scope));
}

OptionText TrimmedPathText(ScriptRun& run, const ScriptLine& line) {
    OptionText result = PathText(run, line);
    result.text = Trim(result.text);
    return result;
}

OptionText CommandLineOption(ScriptRun& run, const ScriptLine& line) {
    if (run.call.takesCommandLineOption == 0) return Ignored();
    return run.call.marksSelectedFile != 0 ? Stored(u"?SelFile?") : PathText(run, line);
}

OptionText CheckGrammar(ScriptRun& run, const ScriptLine& line) {
    if (line.value.empty()) return Stored(u"0");
    return ExpandedText(run, line);
}

OptionText OpenMode(ScriptRun& run, const ScriptLine& line) {
    return run.call.forcedOpenMode == kNoForcedOpenMode ? Integer(run, line) : Ignored();
}

// The names, defaults and types stand in hostlink/CommandOptions.cpp.
constexpr std::array<OptionLineRow, 14> kOptionLines = {{
    {u"commandlineoption", CommandLineOption, true, "Parameters for the programs that shell and exrun start."},
    {u"bootdir", TrimmedPathText, true, "Folder in which programs start; 1: each in its own."},
    {u"bootmode", Integer, true, "How a batch of programs is started."},
    {u"showwindow", Integer, true, "How the windows of programs open."},
    {u"timeout", Integer, true, "Milliseconds to wait for a program before asking whether to end it; -1: no limit."},
    {u"runwait", Integer, true, "Milliseconds to pause after each program."},
    {u"sendinfomode", Integer, true, "Not 0: the selected items are dropped on the program that shell starts."},
    {u"multicommandmode", ExactlyOne, true, "1: one start for all selected items."},
    {u"shiftsilentmode", ExactlyOne, true, "1: Shift drops the parameters of a program."},
    {u"filter", PathText, true, "Extensions of the items that exrun takes, separated by commas."},
    {u"exitloopcount", Integer, true, "How often goto may jump backwards."},
    {u"checkgrammar", CheckGrammar, true, "0: unknown lines are ignored; 1: you are asked; else a program for No."},
    {u"openmode", OpenMode, false, "What shell and run do with a folder."},
    {u"runas", ExpandedText, false, "Not 0: programs start elevated."},
}};

}  // namespace

std::span<const OptionLineRow> OptionLines() {
    return kOptionLines;
}

const OptionLineRow* FindOptionLine(std::u16string_view name) {
    const auto* const found = std::find_if(kOptionLines.begin(), kOptionLines.end(),
                                           [name](const OptionLineRow& row) { return row.name == name; });
    return found == kOptionLines.end() ? nullptr : found;
}

LineOutcome RunOptionLine(ScriptRun& run, const ScriptLine& line) {
    const OptionLineRow& row = *line.option;
    const OptionText result = row.text(run, line);
    if (result.kind == OptionText::Kind::kTooLong) return run.FailTooLong(line.statement);
    if (result.kind == OptionText::Kind::kStored) {
        run.optionTable.SetOption(row.name, result.text);
        ReadOption(run.optionTable, row.name, run.options);
    }
    return LineOutcome::kNextLine;
}

void KeepForcedOpenMode(ScriptRun& run) {
    if (run.call.forcedOpenMode == kNoForcedOpenMode) return;
    const auto forced = static_cast<int32_t>(run.call.forcedOpenMode);
    if (run.options.openMode == forced) return;
    run.options.openMode = forced;
    run.optionTable.SetOption(u"openmode", FormatInteger(forced));
}

}  // namespace kinsort
