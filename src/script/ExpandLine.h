// Filling in what a text of a script only names: variables, environment variables and directory macros, the date and
// time, the folders of the run and, inside of a loop over the selected items, the parts of the current one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Clock.h"
#include "platform/SystemInfo.h"
#include "script/ItemTokens.h"
#include "script/VariableTable.h"

namespace kinsort {

class VelFolders;

// What expansion reads; everything is looked up afresh in every call.
struct ExpansionScope {
    const VariableTable& variables;
    VelFolders& folders;
    const SystemInfo& system;
    Clock& clock;
    std::u16string currentFolder;
    std::u16string otherFolder;
    const std::vector<std::u16string>& selectedItems;
    int32_t forIndex = -1;  // the current item of a running `for`; -1 outside of one
};

enum class Trimming : uint8_t { kKeep, kTrim };

// The text with, in this order: variables; environment variables and directory macros; "?Date?" and its kind;
// "?NowDir?" and its kind; inside of a loop "?SelFile?" and its kind, which outside of one stay as they are. What a
// later step put in is not looked at by an earlier one. Tokens are case-sensitive.
//
// Nothing when the variables would make the text longer than kMaxExpandedLength (say kExpandedTooLongMessage and end
// the run: with the text cut, a command might reach the wrong file).
std::optional<std::u16string> ExpandLine(std::u16string_view text, const ExpansionScope& scope, Trimming trimming);

// The form for options that name folders and programs: only environment, macros, date and folders. Neither variables
// nor items, no trimming.
std::u16string ExpandPathText(std::u16string_view text, const ExpansionScope& scope);

// The three tokens of the run itself, filled into every line before anything looks at it: "?SelectedCount?",
// "?ScriptName?" and "?ScriptPath?".
class RunTokens {
  public:
    RunTokens(std::u16string_view scriptPath, size_t selectedCount);
    std::u16string Replace(std::u16string_view line) const;

  private:
    std::u16string selectedCount_;
    std::u16string scriptName_;
    std::u16string scriptPath_;
};

// Every token that ExpandLine and RunTokens know, for lists and checks: "?Date?".
std::vector<TokenHelp> ListTokens();

}  // namespace kinsort
