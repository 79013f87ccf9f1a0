// "fileopenmode", "fileopen", "bomout", "filewritew", "filewritea": the file that a script writes.
#include "script/commands/OutputFile.h"

#include <optional>
#include <span>
#include <utility>

#include "framework/Paths.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/commands/Statements.h"
#include "text/AsciiCase.h"

namespace kinsort {
namespace {

void TellNotOpen(ScriptRun& run) {
    run.Tell(u"File is not open.");
}

// What follows may rely on the file, and every further line would fail alike: the run ends.
LineOutcome EndAfterFailedWrite(ScriptRun& run, const Status& failure) {
    run.output.reset();
    run.processes.lastError = failure;
    ShowLastError(run.processes, failure.path());
    run.session.ending = ScriptEnding::kError;
    return LineOutcome::kEndWithZero;
}

template <typename Text>
LineOutcome Write(ScriptRun& run, const Text& text) {
    const Status status = run.output->Write(std::as_bytes(std::span(text)));
    return status.ok() ? LineOutcome::kNextLine : EndAfterFailedWrite(run, status);
}

}  // namespace

void CloseOutputFile(ScriptRun& run) {
    if (run.output == nullptr) return;
    run.processes.lastError = run.output->Close();
    run.output.reset();
    ShowLastError(run.processes, run.processes.lastError.path());
}

LineOutcome RunFileOpenMode(ScriptRun& run, const StatementCall& call) {
    run.overwritesNextFile = call.value != u"0";
    return LineOutcome::kNextLine;
}

LineOutcome RunFileOpen(ScriptRun& run, const StatementCall& call) {
    CloseOutputFile(run);
    const bool overwrites = std::exchange(run.overwritesNextFile, false);
    Result<std::unique_ptr<OutputFile>> file = run.services.files.OpenOutput(
        ToLongPathForm(call.value), overwrites ? OutputStart::kEmpty : OutputStart::kAppend);
    if (file.ok()) {
        run.output = std::move(*file);
    } else {
        run.processes.lastError = file.status();
        ShowLastError(run.processes, call.value);
    }
    return LineOutcome::kNextLine;
}

LineOutcome RunBomOut(ScriptRun& run, const StatementCall& call) {
    run.writesByteOrderMark = call.value != u"0" && !EqualNoCase(call.value, u"off");
    return LineOutcome::kNextLine;
}

LineOutcome RunFileWriteW(ScriptRun& run, const StatementCall& call) {
    const bool withMark = std::exchange(run.writesByteOrderMark, false);
    if (run.output == nullptr) {
        TellNotOpen(run);
        return LineOutcome::kNextLine;
    }
    // Not trimmed again: blanks at the ends that come out of variables belong to the text.
    const std::optional<std::u16string> text = ExpandLine(call.value, run.scope, Trimming::kKeep);
    if (!text) return run.FailTooLong(call.line.statement);
    return Write(run, (withMark ? u"\uFEFF" + *text : *text) + u"\r\n");
}

LineOutcome RunFileWriteA(ScriptRun& run, const StatementCall& call) {
    if (run.output == nullptr) {
        TellNotOpen(run);
        return LineOutcome::kNextLine;
    }
    const CodePages& codePages = run.services.codePages;
    const Result<std::string> bytes =
        codePages.FromUnicode(codePages.AnsiCodePage(), std::u16string(call.value) + u"\r\n");
    return bytes.ok() ? Write(run, *bytes) : EndAfterFailedWrite(run, bytes.status());
}

}  // namespace kinsort
