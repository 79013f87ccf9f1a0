#include "script/StatementTable.h"

#include "script/SortedTable.h"
#include "script/commands/HostMessages.h"
#include "script/commands/Statements.h"

namespace kinsort {
namespace {

using enum ValueUse;
using enum Delivery;

constexpr ArgumentCount kOne = {1, 1};
constexpr ArgumentCount kOneOrTwo = {1, 2};
constexpr ArgumentCount kThree = {3, 3};
constexpr ArgumentCount kAnyNumber = {0, kAnyCount};
constexpr ArgumentCount kOneOrMore = {1, kAnyCount};
constexpr ArgumentCount kTwoOrMore = {2, kAnyCount};
constexpr ArgumentCount kThreeOrMore = {3, kAnyCount};

// In any order.
constexpr StatementRow kRows[] = {
    {u"messagebox", kExpanded, RunMessageBox, kTwoOrMore, "style,message",
     "Shows a message; the style is the sum of its buttons, its icon and its default button."},
    {u"messageboxok", kExpanded, RunMessageBoxOk, kAnyNumber, "message", "Shows a warning with an OK button."},
    {u"messageboxyn", kExpanded, RunMessageBoxYesNo, kAnyNumber, "message", "Asks with Yes and No; No ends the run."},
    {u"include", kExpanded, RunInclude, kOneOrMore, "script",
     "Runs another script with the same variables, options and items."},
    {u"fileopenmode", kExpanded, RunFileOpenMode, kOne, "switch",
     "Lets the next fileopen empty the file first, unless the value is 0."},
    {u"fileopen", kExpanded, RunFileOpen, kOneOrMore, "path", "Opens a file for writing at its end."},
    {u"bomout", kExpanded, RunBomOut, kOne, "switch",
     "Puts a byte-order mark before the next line of filewritew, unless the value is 0 or off."},
    {u"filewritew", kRawLine, RunFileWriteW, kAnyNumber, "text", "Writes a line in UTF-16."},
    {u"filewritea", kExpanded, RunFileWriteA, kAnyNumber, "text",
     "Writes a line in the eight-bit encoding of the user's language."},
    {u"setcodepage", kExpanded, RunSetCodePage, kOne, "number",
     "Sets the code page of the files that fileread and fileallread open."},
    {u"setclipboardtext", kExpanded, RunSetClipboardText, kAnyNumber, "text", "Puts a text on the clipboard."},
    {u"writeregnum", kRaw, RunWriteRegNum, kThree, "key,name,number",
     "Writes a number below the host's key of the registry; nothing is expanded."},
    {u"writeregstring", kRaw, RunWriteRegString, kThreeOrMore, "key,name,text",
     "Writes a text below the host's key of the registry; nothing is expanded."},
    {u"speechflag", kExpanded, RunSpeech, kOne, "number", "Is accepted; there is no voice here."},
    {u"speechvolume", kExpanded, RunSpeech, kOne, "number", "Is accepted; there is no voice here."},
    {u"speechratespeed", kExpanded, RunSpeech, kOne, "number", "Is accepted; there is no voice here."},
    {u"speechpitch", kExpanded, RunSpeech, kOne, "number", "Is accepted; there is no voice here."},
    {u"speachflag", kExpanded, RunSpeech, kOne, "number", "Another spelling of speechflag."},
    {u"speachvolume", kExpanded, RunSpeech, kOne, "number", "Another spelling of speechvolume."},
    {u"speachratespeed", kExpanded, RunSpeech, kOne, "number", "Another spelling of speechratespeed."},
    {u"speachpitch", kExpanded, RunSpeech, kOne, "number", "Another spelling of speechpitch."},
    {u"folderjump", kExpanded, RunFolderJump, kTwoOrMore, "mode,path",
     "Has the host show a folder, in one of its ways 0 to 3."},
    {u"filejump", kExpanded, RunFileJump, kTwoOrMore, "mode,path",
     "Has the host show a file in its folder, in one of its ways 0 to 3."},
    {u"favoritejump", kExpanded, RunFavoriteJump, kTwoOrMore, "number,path",
     "Has the host show a folder as its favourite of that number, 0 to 9."},
    {u"ubjump", kExpanded, RunUbJump, kOneOrMore, "number,text",
     "Sends the host a text for its place of that number, 1 to 10."},
    {u"appendselectitem", kExpanded, RunAppendSelectItem, kAnyNumber, "item", "Adds an item to the selected ones."},
    {u"appendcsvselectitem", kExpanded, RunAppendCsvSelectItem, kAnyNumber, "item,item...",
     "Adds items to the selected ones."},
    {u"getselectitems", kExpanded, RunGetSelectItems, kOneOrMore, "folder or pattern",
     "Adds what a folder holds, or what matches a pattern, until there are more than 1000 items."},
    {u"removeselectitems", kRaw, RunRemoveSelectItemsLike, kAnyNumber, "pattern;pattern...",
     "Takes the items off that match a pattern; with ! in front, those that match none. Nothing is expanded."},
    {u"call", kExpanded, RunCall, kOneOrMore, "command line",
     "Starts a program and waits for its end; after the time-out, asks whether to end it."},
    {u"exec", kExpanded, RunExec, kOneOrMore, "command line", "Starts a program without waiting."},
    {u"wait", kExpanded, RunWait, kOne, "milliseconds", "Pauses the script."},
    {u"shell", kExpanded, RunShell, kOneOrMore, "target",
     "Starts a program or opens a document; what becomes of a folder is what openmode says."},
    {u"run", kRaw, RunShell, kOneOrMore, "target", "The same as shell, but nothing is expanded."},
    {u"exrun", kRaw, RunExRun, kOneOrMore, "program|program...",
     "Starts a program for each selected item at the end of the script; of several, the user chooses one."},
    {u"fullstateopen", kRaw, SendText<205>, kAnyNumber, "text",
     "Sends the host a text with the code 205, as it is written."},
    {u"fullstateopenex", kExpanded, SendText<205>, kAnyNumber, "text", "Sends the host a text with the code 205."},
    {u"select", kExpanded, SendText<800>, kAnyNumber, "text",
     "Sends the host a text with the code 800: what to select."},
    {u"listinnerparam", kExpanded, SendText<910>, kAnyNumber, "text", "Sends the host a text with the code 910."},
    {u"operationmode", kRaw, SendText<911>, kAnyNumber, "text",
     "Sends the host a text with the code 911, as it is written."},
    {u"tabletmode", kRaw, SendText<912>, kAnyNumber, "text",
     "Sends the host a text with the code 912, as it is written."},
    {u"backgroundimage", kExpanded, SendText<1200>, kAnyNumber, "text",
     "Sends the host a text with the code 1200: an image."},
    {u"system_command", kExpanded, RunSystemCommand, kOneOrMore, "code,text",
     "Sends the host a text with a code of your own."},
    {u"postmessage", kRawLine, SendNumbers<0x0111, kPosted>, kOneOrTwo, "number,number",
     "Posts a command to the host: its number, and a second number."},
    {u"sendmessage", kRawLine, SendNumbers<0x0111, kSent>, kOneOrTwo, "number,number",
     "Sends a command to the host and waits until it has dealt with it."},
    {u"postmessageall", kRawLine, SendNumbers<0x8008, kPosted>, kOneOrTwo, "number,number",
     "Posts two numbers to the host as message 0x8008."},
    {u"sendmessageall", kRawLine, SendNumbers<0x8008, kSent>, kOneOrTwo, "number,number",
     "Sends two numbers to the host as message 0x8008 and waits until it has dealt with them."},
    {u"postmessage1", kRawLine, SendNumbers<0x8009, kPosted>, kOneOrTwo, "number,number",
     "Posts two numbers to the host as message 0x8009."},
    {u"postmessage2", kRawLine, SendNumbers<0x800A, kPosted>, kOneOrTwo, "number,number",
     "Posts two numbers to the host as message 0x800A."},
    {u"postwait", kRawLine, SendNumbers<0x800B, kPosted>, kOneOrTwo, "number,number",
     "Posts two numbers to the host as message 0x800B."},
    {u"postmessagebar", kRawLine, SendNumbers<0x800C, kPosted>, kOneOrTwo, "number,number",
     "Posts two numbers to the host as message 0x800C."},
    {u"postmessagetab", kRawLine, RunPostMessageTab, kOneOrTwo, "number,number", "Is always an error."},
};
constexpr auto kStatements = SortedRows(&StatementRow::keyword, kRows);
static_assert(IsSoundTable(kStatements, &StatementRow::keyword), "a keyword occurs twice, or a row is incomplete");

}  // namespace

std::span<const StatementRow> Statements() {
    return kStatements;
}

const StatementRow* FindStatement(std::u16string_view keyword) {
    return FindRow(kStatements, &StatementRow::keyword, keyword);
}

}  // namespace kinsort
