// Functions that read what is on this machine: files, code pages, clipboard, message boxes.
#pragma once

#include <array>

#include "script/FunctionTable.h"

namespace kinsort {

// commands/Clipboard.cpp
FunctionResult CallGetClipboardText(ScriptRun& run, const FunctionCall& call);

// commands/MessageBoxes.cpp
FunctionResult CallMessageBox(ScriptRun& run, const FunctionCall& call);
FunctionResult CallMessageBoxOk(ScriptRun& run, const FunctionCall& call);
FunctionResult CallMessageBoxYesNo(ScriptRun& run, const FunctionCall& call);

// commands/PathQuestions.cpp
FunctionResult CallExist(ScriptRun& run, const FunctionCall& call);
FunctionResult CallIsDirectory(ScriptRun& run, const FunctionCall& call);
FunctionResult CallIsFile(ScriptRun& run, const FunctionCall& call);
FunctionResult CallRandom(ScriptRun& run, const FunctionCall& call);

// commands/ReadFile.cpp
FunctionResult CallFileRead(ScriptRun& run, const FunctionCall& call);
FunctionResult CallFileAllRead(ScriptRun& run, const FunctionCall& call);
FunctionResult CallDetectCodePage(ScriptRun& run, const FunctionCall& call);

// commands/SystemMetrics.cpp
FunctionResult CallGetSystemMetrics(ScriptRun& run, const FunctionCall& call);

// In any order.
inline constexpr std::array kLocalFunctions = {
    FunctionRow{u"GetClipboardText", 1, TooFewPieces::kOrdinaryValue, CallGetClipboardText, "",
                "The text on the clipboard."},
    FunctionRow{u"messagebox", 3, TooFewPieces::kOrdinaryValue, CallMessageBox, "style,message",
                "Shows a message; the number of the button pressed: 1 OK, 2 Cancel, 6 Yes, 7 No."},
    FunctionRow{u"messageboxok", 2, TooFewPieces::kOrdinaryValue, CallMessageBoxOk, "message",
                "Shows a warning with an OK button; always 1."},
    FunctionRow{u"messageboxyn", 2, TooFewPieces::kOrdinaryValue, CallMessageBoxYesNo, "message",
                "Asks with Yes and No: 6 for Yes, 7 for No."},
    FunctionRow{u"random", 2, TooFewPieces::kOrdinaryValue, CallRandom, "folder or pattern",
                "One entry of a folder, or one that matches a pattern, picked at random; empty when there is none."},
    FunctionRow{u"detectcodepage", 2, TooFewPieces::kOrdinaryValue, CallDetectCodePage, "path",
                "The number of the code page that a text file is most likely written in, or ERROR."},
    FunctionRow{u"detectcodepagejpn", 2, TooFewPieces::kOrdinaryValue, CallDetectCodePage, "path",
                "Another name of detectcodepage."},
    FunctionRow{u"Exist", 2, TooFewPieces::kOrdinaryValue, CallExist, "path", "1 when the path exists, else 0."},
    FunctionRow{u"IsDirectory", 2, TooFewPieces::kOrdinaryValue, CallIsDirectory, "path",
                "1 for a folder, 0 for a file; the run ends when the path does not exist."},
    FunctionRow{u"IsFile", 2, TooFewPieces::kOrdinaryValue, CallIsFile, "path",
                "1 for a file, 0 for a folder; the run ends when the path does not exist."},
    FunctionRow{u"fileread", 2, TooFewPieces::kOrdinaryValue, CallFileRead, "path",
                "The next line of a text file, ERROR at its end; the code page is that of setcodepage."},
    FunctionRow{u"fileallread", 2, TooFewPieces::kOrdinaryValue, CallFileAllRead, "path",
                "The whole text of a file in the code page of setcodepage."},
    FunctionRow{
        u"GetSystemMetrics", 2, TooFewPieces::kOrdinaryValue, CallGetSystemMetrics, "index",
        "A measure of the screen: 0 and 1 its width and height, 80 how many there are; 0 for one unknown here."},
};

}  // namespace kinsort
