// One thing that is wrong with a script or with one that it includes, and where.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kinsort {

struct ScriptLine;

struct ScriptFinding {
    int32_t line = 0;       // from 1
    size_t column = 0;      // from 1, in UTF-16 units of the line
    size_t length = 0;      // of what is meant, in the same units; 0 at the end of a line
    std::string_view rule;  // a short name that stays the same: "unknown-name"
    std::u16string message;
    std::u16string text;  // the line as it stands in the file
    std::u16string file;  // the path of the script that it stands in
};

// Findings in one file as they are made.
class FindingList {
  public:
    explicit FindingList(std::u16string_view file) : file_(file) {}

    const std::u16string& file() const { return file_; }

    // `part` is a piece of line.text.
    void Add(const ScriptLine& line, std::u16string_view part, std::string_view rule, std::u16string message);
    // Anywhere in the file; `finding.file` is filled in.
    void Add(ScriptFinding finding);

    size_t size() const { return findings_.size(); }

    // By line and column; the list is empty afterwards.
    std::vector<ScriptFinding> Take();

  private:
    std::u16string file_;
    std::vector<ScriptFinding> findings_;
};

// The texts in quotation marks, for messages.
std::u16string Quoted(std::u16string_view text);
// "line 12".
std::u16string LineName(int32_t number);

}  // namespace kinsort
