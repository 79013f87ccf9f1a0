// Statements that touch what is on this machine: files, clipboard, registry, message boxes, other scripts.
#pragma once

#include <array>

#include "script/StatementTable.h"

namespace kinsort {

LineOutcome RunMessageBox(ScriptRun& run, const StatementCall& call);
LineOutcome RunMessageBoxOk(ScriptRun& run, const StatementCall& call);
LineOutcome RunMessageBoxYesNo(ScriptRun& run, const StatementCall& call);
LineOutcome RunInclude(ScriptRun& run, const StatementCall& call);
LineOutcome RunFileOpenMode(ScriptRun& run, const StatementCall& call);
LineOutcome RunFileOpen(ScriptRun& run, const StatementCall& call);
LineOutcome RunBomOut(ScriptRun& run, const StatementCall& call);
LineOutcome RunFileWriteW(ScriptRun& run, const StatementCall& call);
LineOutcome RunFileWriteA(ScriptRun& run, const StatementCall& call);
LineOutcome RunSetCodePage(ScriptRun& run, const StatementCall& call);
LineOutcome RunSetClipboardText(ScriptRun& run, const StatementCall& call);
LineOutcome RunWriteRegNum(ScriptRun& run, const StatementCall& call);
LineOutcome RunWriteRegString(ScriptRun& run, const StatementCall& call);
LineOutcome RunSpeech(ScriptRun& run, const StatementCall& call);

// How many arguments the rows below take.
inline constexpr ArgumentCount kOneArgument = {1, 1};
inline constexpr ArgumentCount kThreeArguments = {3, 3};
inline constexpr ArgumentCount kStyleAndMessage = {2, kAnyCount};
inline constexpr ArgumentCount kKeyNameAndText = {3, kAnyCount};
inline constexpr ArgumentCount kSomeText = {1, kAnyCount};
inline constexpr ArgumentCount kAnyText = {0, kAnyCount};

// In any order.
inline constexpr std::array kLocalStatements = {
    StatementRow{u"messagebox", ValueUse::kExpanded, RunMessageBox, kStyleAndMessage, "style,message",
                 "Shows a message; the style is the sum of its buttons, its icon and its default button."},
    StatementRow{u"messageboxok", ValueUse::kExpanded, RunMessageBoxOk, kAnyText, "message",
                 "Shows a warning with an OK button."},
    StatementRow{u"messageboxyn", ValueUse::kExpanded, RunMessageBoxYesNo, kAnyText, "message",
                 "Asks with Yes and No; No ends the run."},
    StatementRow{u"include", ValueUse::kExpanded, RunInclude, kSomeText, "script",
                 "Runs another script with the same variables, options and items."},
    StatementRow{u"fileopenmode", ValueUse::kExpanded, RunFileOpenMode, kOneArgument, "switch",
                 "Lets the next fileopen empty the file first, unless the value is 0."},
    StatementRow{u"fileopen", ValueUse::kExpanded, RunFileOpen, kSomeText, "path",
                 "Opens a file for writing at its end."},
    StatementRow{u"bomout", ValueUse::kExpanded, RunBomOut, kOneArgument, "switch",
                 "Puts a byte-order mark before the next line of filewritew, unless the value is 0 or off."},
    StatementRow{u"filewritew", ValueUse::kRawLine, RunFileWriteW, kAnyText, "text", "Writes a line in UTF-16."},
    StatementRow{u"filewritea", ValueUse::kExpanded, RunFileWriteA, kAnyText, "text",
                 "Writes a line in the eight-bit encoding of the user's language."},
    StatementRow{u"setcodepage", ValueUse::kExpanded, RunSetCodePage, kOneArgument, "number",
                 "Sets the code page of the files that fileread and fileallread open."},
    StatementRow{u"setclipboardtext", ValueUse::kExpanded, RunSetClipboardText, kAnyText, "text",
                 "Puts a text on the clipboard."},
    StatementRow{u"writeregnum", ValueUse::kRaw, RunWriteRegNum, kThreeArguments, "key,name,number",
                 "Writes a number below the host's key of the registry; nothing is expanded."},
    StatementRow{u"writeregstring", ValueUse::kRaw, RunWriteRegString, kKeyNameAndText, "key,name,text",
                 "Writes a text below the host's key of the registry; nothing is expanded."},
    StatementRow{u"speechflag", ValueUse::kExpanded, RunSpeech, kOneArgument, "number",
                 "Is accepted; there is no voice here."},
    StatementRow{u"speechvolume", ValueUse::kExpanded, RunSpeech, kOneArgument, "number",
                 "Is accepted; there is no voice here."},
    StatementRow{u"speechratespeed", ValueUse::kExpanded, RunSpeech, kOneArgument, "number",
                 "Is accepted; there is no voice here."},
    StatementRow{u"speechpitch", ValueUse::kExpanded, RunSpeech, kOneArgument, "number",
                 "Is accepted; there is no voice here."},
    StatementRow{u"speachflag", ValueUse::kExpanded, RunSpeech, kOneArgument, "number",
                 "Another spelling of speechflag."},
    StatementRow{u"speachvolume", ValueUse::kExpanded, RunSpeech, kOneArgument, "number",
                 "Another spelling of speechvolume."},
    StatementRow{u"speachratespeed", ValueUse::kExpanded, RunSpeech, kOneArgument, "number",
                 "Another spelling of speechratespeed."},
    StatementRow{u"speachpitch", ValueUse::kExpanded, RunSpeech, kOneArgument, "number",
                 "Another spelling of speechpitch."},
};

}  // namespace kinsort
