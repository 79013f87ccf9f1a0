// Functions that only work out a value: text, numbers, paths. Arguments are used as they stand, blanks included;
// numbers among them are read by text/Numbers.h.
#pragma once

#include <array>

#include "script/FunctionTable.h"

namespace kinsort {

// PathFunctions.cpp
FunctionResult GetPathFolder(ScriptRun& run, const FunctionCall& call);
FunctionResult GetPathName(ScriptRun& run, const FunctionCall& call);
FunctionResult GetPathExtension(ScriptRun& run, const FunctionCall& call);
FunctionResult RemoveLastSeparator(ScriptRun& run, const FunctionCall& call);

// TextFunctions.cpp
FunctionResult CountUnits(ScriptRun& run, const FunctionCall& call);
FunctionResult TakeSubString(ScriptRun& run, const FunctionCall& call);
FunctionResult TakeLeft(ScriptRun& run, const FunctionCall& call);
FunctionResult TakeRight(ScriptRun& run, const FunctionCall& call);
FunctionResult FindText(ScriptRun& run, const FunctionCall& call);
FunctionResult ReplaceText(ScriptRun& run, const FunctionCall& call);
FunctionResult TakeCsvField(ScriptRun& run, const FunctionCall& call);
FunctionResult KeepText(ScriptRun& run, const FunctionCall& call);
FunctionResult PadWithZeros(ScriptRun& run, const FunctionCall& call);
FunctionResult TrimCharacterRight(ScriptRun& run, const FunctionCall& call);
FunctionResult TrimCharacterLeft(ScriptRun& run, const FunctionCall& call);

// NumberFunctions.cpp
FunctionResult EvaluateDouble(ScriptRun& run, const FunctionCall& call);
FunctionResult KeepWindowPosition(ScriptRun& run, const FunctionCall& call);

// In any order.
inline constexpr std::array kValueFunctions = {
    FunctionRow{u"GetPath", 2, TooFewPieces::kOrdinaryValue, GetPathFolder, "path",
                "The folder of a path, with its separator; the whole path when it has none."},
    FunctionRow{u"GetName", 2, TooFewPieces::kOrdinaryValue, GetPathName, "path",
                "The last name of a path, whether a separator follows it or not."},
    FunctionRow{u"GetExt", 2, TooFewPieces::kOrdinaryValue, GetPathExtension, "path",
                "The extension of a path, with its point."},
    FunctionRow{u"RemoveLastSeparator", 2, TooFewPieces::kOrdinaryValue, RemoveLastSeparator, "path",
                "The path without one separator at its end."},
    FunctionRow{u"Length", 2, TooFewPieces::kOrdinaryValue, CountUnits, "text",
                "How many characters the text has, commas and blanks included."},
    FunctionRow{u"SubString", 4, TooFewPieces::kSyntaxError, TakeSubString, "start,count,text",
                "So many characters of the text, counted from 0."},
    FunctionRow{u"left", 3, TooFewPieces::kSyntaxError, TakeLeft, "count,text", "The first characters of the text."},
    FunctionRow{u"right", 3, TooFewPieces::kSyntaxError, TakeRight, "count,text", "The last characters of the text."},
    FunctionRow{u"find", 3, TooFewPieces::kSyntaxError, FindText, "needle,text",
                "Where the needle stands first in the text, counted from 0; -1 when it does not."},
    FunctionRow{u"replace", 4, TooFewPieces::kSyntaxError, ReplaceText, "old,new,text",
                "The text with every occurrence of one text replaced by another."},
    FunctionRow{u"csv", 3, TooFewPieces::kSyntaxError, TakeCsvField, "index,text",
                "One field of a text, counted from 0 between commas, without the blanks around it."},
    FunctionRow{u"string", 2, TooFewPieces::kOrdinaryValue, KeepText, "text",
                "The text exactly as it stands: blanks, commas, and sums that are not worked out."},
    FunctionRow{u"padding", 3, TooFewPieces::kSyntaxError, PadWithZeros, "width,text",
                "The text with zeros in front up to a width; a longer text loses its front."},
    FunctionRow{u"trimright", 3, TooFewPieces::kSyntaxError, TrimCharacterRight, "character,text",
                "The text without that character at its end, however often it stands there."},
    FunctionRow{u"trimleft", 3, TooFewPieces::kSyntaxError, TrimCharacterLeft, "character,text",
                "The text without that character at its beginning, however often it stands there."},
    FunctionRow{u"double", 2, TooFewPieces::kOrdinaryValue, EvaluateDouble, "expression",
                "The value of a sum with up to six decimals; exponents and hexadecimal numbers may occur."},
    FunctionRow{u"MainWindowPosition", 2, TooFewPieces::kOrdinaryValue, KeepWindowPosition, "text",
                "The text itself, worked out when it is a sum."},
};

}  // namespace kinsort
