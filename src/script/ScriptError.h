// The errors of the script language, with their texts.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/UserInterface.h"

namespace kinsort {

enum class ScriptError : uint8_t {
    kIllegalFunctionCall = 0,  // an index out of range
    kSyntax = 1,               // a part is missing
    kLabelInUse = 2,           // a second label of the same name
    kAlreadyDeclared = 3,      // "var" of a name that exists
    kNameOverlaps = 4,         // "var" of a name that is part of an existing one, or the other way round
    kNotFound = 5,             // a path that must exist does not
    kFailed = 6,
    kUndefinedLabel = 7,
    kDivisionByZero = 8,
};

// The text of the error, a line feed at its end.
std::u16string_view ScriptErrorText(ScriptError error);

// A box with an OK button: the error's text and right behind it `text`, normally the line that has it. Inside of a run
// say it with ScriptRun::Fail, which also keeps that there was one.
void ShowScriptError(UserInterface& ui, ScriptError error, std::u16string_view text);

// A block statement without its opener, as the text before the line: "'next' was used without 'for'\n".
std::u16string MissingOpenerText(std::u16string_view word, std::u16string_view opener);

}  // namespace kinsort
