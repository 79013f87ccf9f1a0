#include "script/FunctionTable.h"

#include "script/ScriptRun.h"
#include "script/SortedTable.h"
#include "script/functions/Functions.h"

namespace kinsort {
namespace {

using enum TooFewPieces;

// In any order.
constexpr FunctionRow kRows[] = {
    {u"GetPath", 2, kOrdinaryValue, GetPathFolder, "path",
     "The folder of a path, with its separator; the whole path when it has none."},
    {u"GetName", 2, kOrdinaryValue, GetPathName, "path",
     "The last name of a path, whether a separator follows it or not."},
    {u"GetExt", 2, kOrdinaryValue, GetPathExtension, "path", "The extension of a path, with its point."},
    {u"RemoveLastSeparator", 2, kOrdinaryValue, RemoveLastSeparator, "path",
     "The path without one separator at its end."},
    {u"Length", 2, kOrdinaryValue, CountUnits, "text", "How many characters the text has, commas and blanks included."},
    {u"SubString", 4, kSyntaxError, TakeSubString, "start,count,text",
     "So many characters of the text, counted from 0."},
    {u"left", 3, kSyntaxError, TakeLeft, "count,text", "The first characters of the text."},
    {u"right", 3, kSyntaxError, TakeRight, "count,text", "The last characters of the text."},
    {u"find", 3, kSyntaxError, FindText, "needle,text",
     "Where the needle stands first in the text, counted from 0; -1 when it does not."},
    {u"replace", 4, kSyntaxError, ReplaceText, "old,new,text",
     "The text with every occurrence of one text replaced by another."},
    {u"csv", 3, kSyntaxError, TakeCsvField, "index,text",
     "One field of a text, counted from 0 between commas, without the blanks around it."},
    {u"string", 2, kOrdinaryValue, KeepText, "text",
     "The text exactly as it stands: blanks, commas, and sums that are not worked out."},
    {u"padding", 3, kSyntaxError, PadWithZeros, "width,text",
     "The text with zeros in front up to a width; a longer text loses its front."},
    {u"trimright", 3, kSyntaxError, TrimCharacterRight, "character,text",
     "The text without that character at its end, however often it stands there."},
    {u"trimleft", 3, kSyntaxError, TrimCharacterLeft, "character,text",
     "The text without that character at its beginning, however often it stands there."},
    {u"double", 2, kOrdinaryValue, EvaluateDouble, "expression",
     "The value of a sum with up to six decimals; exponents and hexadecimal numbers may occur."},
    {u"MainWindowPosition", 2, kOrdinaryValue, KeepWindowPosition, "text",
     "The text itself, worked out when it is a sum."},
    {u"GetClipboardText", 1, kOrdinaryValue, CallGetClipboardText, "", "The text on the clipboard."},
    {u"messagebox", 3, kOrdinaryValue, CallMessageBox, "style,message",
     "Shows a message; the number of the button pressed: 1 OK, 2 Cancel, 6 Yes, 7 No."},
    {u"messageboxok", 2, kOrdinaryValue, CallMessageBoxOk, "message", "Shows a warning with an OK button; always 1."},
    {u"messageboxyn", 2, kOrdinaryValue, CallMessageBoxYesNo, "message", "Asks with Yes and No: 6 for Yes, 7 for No."},
    {u"random", 2, kOrdinaryValue, CallRandom, "folder or pattern",
     "One entry of a folder, or one that matches a pattern, picked at random; empty when there is none."},
    {u"detectcodepage", 2, kOrdinaryValue, CallDetectCodePage, "path",
     "The number of the code page that a text file is most likely written in, or ERROR."},
    {u"detectcodepagejpn", 2, kOrdinaryValue, CallDetectCodePage, "path", "Another name of detectcodepage."},
    {u"Exist", 2, kOrdinaryValue, CallExist, "path", "1 when the path exists, else 0."},
    {u"IsDirectory", 2, kOrdinaryValue, CallIsDirectory, "path",
     "1 for a folder, 0 for a file; the run ends when the path does not exist."},
    {u"IsFile", 2, kOrdinaryValue, CallIsFile, "path",
     "1 for a file, 0 for a folder; the run ends when the path does not exist."},
    {u"fileread", 2, kOrdinaryValue, CallFileRead, "path",
     "The next line of a text file, ERROR at its end; the code page is that of setcodepage."},
    {u"fileallread", 2, kOrdinaryValue, CallFileAllRead, "path",
     "The whole text of a file in the code page of setcodepage."},
    {u"GetSystemMetrics", 2, kOrdinaryValue, CallGetSystemMetrics, "index",
     "A measure of the screen: 0 and 1 its width and height, 80 how many there are; 0 for one unknown here."},
    {u"Call", 2, kOrdinaryValue, CallCall, "command line",
     "Starts a program, waits for its end and gives its exit code."},
    {u"Exec", 2, kOrdinaryValue, CallExec, "command line",
     "Starts a program without waiting and gives 259, or its exit code if it has ended already."},
};
constexpr auto kFunctions = SortedRows(&FunctionRow::name, kRows);
static_assert(IsSoundTable(kFunctions, &FunctionRow::name), "a name occurs twice, or a row is incomplete");

}  // namespace

std::span<const FunctionRow> Functions() {
    return kFunctions;
}

const FunctionRow* FindFunction(std::u16string_view name) {
    return FindRow(kFunctions, &FunctionRow::name, name);
}

FunctionResult CallFunction(ScriptRun& run, const FunctionCall& call) {
    const FunctionRow* const row = FindFunction(call.name);
    if (row == nullptr) return FunctionResult::Unknown();
    // A function without arguments is its bare name; with anything behind it, it is a value like any other.
    if (row->minimumPieces == 1 && call.pieces > 1) return FunctionResult::Unknown();
    if (call.pieces < row->minimumPieces) {
        if (row->tooFew == TooFewPieces::kOrdinaryValue) return FunctionResult::Unknown();
        run.Fail(ScriptError::kSyntax, call.value);
        return FunctionResult::Ended();
    }
    return row->function(run, call);
}

std::u16string_view ArgumentReader::Next() {
    const size_t comma = rest_.find(u',');
    if (comma == std::u16string_view::npos) return rest_;
    const std::u16string_view argument = rest_.substr(0, comma);
    rest_.remove_prefix(comma + 1);
    return argument;
}

}  // namespace kinsort
