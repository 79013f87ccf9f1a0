// Whether the right side of a line is what its command, its function or its sum needs.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "script/ScriptLine.h"
#include "script/VariableTable.h"
#include "script/check/ScriptFinding.h"

namespace kinsort {

class ValueCheck {
  public:
    // `variables` are those that are declared so far.
    ValueCheck(const VariableTable& variables, FindingList& findings) : variables_(variables), findings_(findings) {}

    // `value` is a piece of line.text: what is assigned, what a command gets.
    void VisitAssigned(const ScriptLine& line, std::u16string_view value);
    void VisitArguments(const ScriptLine& line);
    // Tokens in any text.
    void VisitTokens(const ScriptLine& line, std::u16string_view text);

    // True when a run may fill in something: a variable, a token, the environment.
    bool IsOpen(std::u16string_view text) const;

  private:
    void VisitCall(const ScriptLine& line, std::u16string_view value, size_t comma);
    void VisitSum(const ScriptLine& line, std::u16string_view value);
    void VisitToken(const ScriptLine& line, std::u16string_view token);

    const VariableTable& variables_;
    FindingList& findings_;
};

// Names of rows and entries, which outlive the list.
using NameList = std::vector<std::u16string_view>;
template <typename Rows, typename Name>
void AddNames(NameList& names, const Rows& rows, Name name) {
    for (const auto& row : rows)
        names.push_back(row.*name);
}

// Of the names that `typed` looks like a slip of the pen of, the nearest; nothing when there is none.
std::optional<std::u16string_view> FindMeant(std::u16string_view typed, const NameList& names);
// "; did you mean ...?", or nothing.
std::u16string DidYouMean(std::optional<std::u16string_view> meant);

}  // namespace kinsort
