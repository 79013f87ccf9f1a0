// "setcodepage", "fileread", "fileallread" and "detectcodepage": the files that a script reads. One stays open between
// lines, so that each "fileread" of the same path gives the next line.
#include "framework/TextFile.h"
#include "script/ScriptRun.h"
#include "script/commands/Statements.h"
#include "script/functions/Functions.h"
#include "text/Numbers.h"

namespace kinsort {
namespace {

constexpr std::u16string_view kError = u"ERROR";

// Opens the file in the run's read code page, which the file then keeps as its own. False when it cannot be opened. A
// code page that nobody knows leaves the bytes as they are.
bool OpenIn(const ScriptRun& run, CTextFile& file, std::u16string_view path) {
    if (file.Open(path) == 0) return false;
    file.SetCodePage(run.readCodePage);
    if (run.readCodePage != kCodePageUtf16) file.ConvertToUnicode(run.services.codePages, run.readCodePage);
    return true;
}

// The run's read file at `path`. False, and the run ends, when it cannot be opened.
bool OpenReadFile(ScriptRun& run, std::u16string_view path) {
    if (run.readFile.isOpen() && run.readFile.path() == path) return true;
    if (OpenIn(run, run.readFile, path)) return true;
    run.FailWith(u"File is not open.");
    return false;
}

}  // namespace

LineOutcome RunSetCodePage(ScriptRun& run, const StatementCall& call) {
    run.readCodePage = static_cast<uint16_t>(ReadInt32(call.value));
    return LineOutcome::kNextLine;
}

FunctionResult CallFileRead(ScriptRun& run, const FunctionCall& call) {
    if (!OpenReadFile(run, call.arguments)) return FunctionResult::Ended();
    std::u16string_view line;
    if (!run.readFile.ReadLine(line)) return FunctionResult::Plain(std::u16string(kError));
    return FunctionResult::Text(std::u16string(line));
}

FunctionResult CallFileAllRead(ScriptRun& run, const FunctionCall& call) {
    if (!OpenReadFile(run, call.arguments)) return FunctionResult::Ended();
    const bool isInOtherCodePage = run.readCodePage != kCodePageUtf16 && run.readFile.codePage() != run.readCodePage;
    if (!isInOtherCodePage) return FunctionResult::Text(std::u16string(run.readFile.GetText()));
    // Read again: "fileread" goes on with its lines as they are.
    CTextFile whole(run.services.files);
    if (OpenIn(run, whole, call.arguments)) return FunctionResult::Text(std::u16string(whole.GetText()));
    run.FailWith(u"File is not open.");
    return FunctionResult::Ended();
}

FunctionResult CallDetectCodePage(ScriptRun& run, const FunctionCall& call) {
    CTextFile file(run.services.files);
    if (file.Open(call.arguments) == 0) {
        run.Fail(ScriptError::kNotFound, call.arguments);
        return FunctionResult::Ended();
    }
    uint32_t codePage = 0;
    const bool isKnown = file.DetectCodePage(run.services.codePages, codePage);
    return FunctionResult::Plain(isKnown ? FormatInteger(codePage) : std::u16string(kError));
}

}  // namespace kinsort
