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

class NameCheck {
  public:
    NameCheck(const CheckedScript& script, const BlockCheck& blocks, FindingList& findings);

    // Each line in turn, after `blocks` has seen it.
    void Visit(const ScriptLine& line);

  private:
    struct DeclaredAt {
        int32_t line;
        bool isInIf;
    };

    void VisitDeclaration(const ScriptLine& line);
    void Declare(const ScriptLine& line, std::u16string_view name);
    bool SaysWhyNot(const ScriptLine& line, std::u16string_view part, std::u16string_view name);
    void VisitStatement(const ScriptLine& line);
    void VisitAssignment(const ScriptLine& line);
    void VisitUnknown(const ScriptLine& line);
    void VisitCondition(const ScriptLine& line);
    void VisitGoto(const ScriptLine& line);
    bool IsVariable(std::u16string_view target) const;

    const CheckedScript& script_;
    const BlockCheck& blocks_;
    FindingList& findings_;
    VariableTable variables_;
    std::vector<DeclaredAt> declared_;  // for each entry of variables_
    ValueCheck values_;
};

}  // namespace kinsort
