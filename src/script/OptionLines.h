// Lines that set an option of the run: "timeout=2000".
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "script/LineOutcome.h"

namespace kinsort {

struct ScriptLine;
struct ScriptRun;

// What a line of one option stores.
struct OptionText {
    enum class Kind : uint8_t {
        kStored,
        kIgnored,
        kTooLong,  // ExpandLine gave nothing
    };
    Kind kind = Kind::kIgnored;
    std::u16string text;
};

struct OptionLineRow {
    std::u16string_view name;
    OptionText (*text)(ScriptRun& run, const ScriptLine& line);
    bool isFreeOfOpenMode;  // the line does not bring back a forced open mode
    std::string_view help;  // one sentence
};

std::span<const OptionLineRow> OptionLines();
// Null when no option has exactly this (lower-case) name.
const OptionLineRow* FindOptionLine(std::u16string_view name);

// Stores the option in the table of the run and in its record.
LineOutcome RunOptionLine(ScriptRun& run, const ScriptLine& line);

// Brings the open mode back to the one that the caller of the run forced, if any.
void KeepForcedOpenMode(ScriptRun& run);

}  // namespace kinsort
