// Whether everything that the lines of a script name is there: variables, commands, options, labels, tokens.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "script/ScriptLine.h"
#include "script/VariableTable.h"
#include "script/check/BlockCheck.h"
#include "script/check/ScriptFinding.h"
#include "script/check/ValueCheck.h"

namespace kinsort {

// The lines up to "EOF" and what stands in them as a whole.
struct CheckedScript {
    std::vector<std::u16string_view> lines;                          // in the file's text; the first is line 1
    std::map<std::u16string, int32_t, std::less<>> declarations;     // by the name behind "var", with the first line
    std::map<std::u16string, int32_t, std::less<>> labels;           // with their lines
    std::map<std::u16string, int32_t, std::less<>> labelsBehindEnd;  // which nobody finds
    bool hasGoto = false;
    bool hasInclude = false;
};

// What a script and those that it includes have declared so far.
struct DeclaredNames {
    struct Place {
        std::u16string_view file;  // as its FindingList names it
        int32_t line;
        bool isInIf;
    };

    VariableTable variables;
    std::vector<Place> places;  // for each entry of `variables`
    bool mayBeMore = false;     // a script was included that could not be read beforehand
};

class NameCheck {
  public:
    // `isInIf`: the script is included inside of an if-block.
    NameCheck(const CheckedScript& script, const BlockCheck& blocks, bool isInIf, DeclaredNames& names,
              FindingList& findings);

    // Each line in turn, after `blocks` has seen it.
    void Visit(const ScriptLine& line);

    // Of the line that was visited last.
    bool isInIf() const { return isIncludedInIf_ || blocks_.isInIf(); }

  private:
    void VisitDeclaration(const ScriptLine& line);
    void Declare(const ScriptLine& line, std::u16string_view name);
    bool SaysWhyNot(const ScriptLine& line, std::u16string_view part, std::u16string_view name);
    void VisitStatement(const ScriptLine& line);
    void VisitAssignment(const ScriptLine& line);
    void VisitUnknown(const ScriptLine& line);
    void VisitCondition(const ScriptLine& line);
    void VisitGoto(const ScriptLine& line);
    bool IsVariable(std::u16string_view target) const;
    std::u16string PlaceOf(size_t variable) const;

    const CheckedScript& script_;
    const BlockCheck& blocks_;
    const bool isIncludedInIf_;
    DeclaredNames& names_;
    VariableTable& variables_;  // of names_
    FindingList& findings_;
    ValueCheck values_;
};

}  // namespace kinsort
