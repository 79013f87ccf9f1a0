// The text of one script: its lines, its labels, and each line taken apart when it is run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/TextFile.h"
#include "script/ExpandLine.h"
#include "script/ScriptLine.h"

namespace kinsort {

class ScriptSource {
  public:
    explicit ScriptSource(FileSystem& files) : file_(files) {}

    // Reads the whole script as UTF-16, without guessing another encoding. A line of 32,767 units or more ends it.
    // False when the file cannot be read.
    bool Open(std::u16string_view path);

    // Finds the labels: lines that end with ":", up to a line "EOF". Nothing when all is well, else the statement that
    // repeats a label.
    std::optional<std::u16string> CollectLabels();

    // Lines that hold something: empty ones and comments are left out.
    size_t size() const { return lines_.size(); }
    // The line, taken apart when it is first asked for; `tokens` must be the same every time. Valid until another line
    // is asked for.
    const ScriptLine& LineAt(size_t index, const RunTokens& tokens);
    // The index of the label's line; nothing when there is no such label. Case-sensitive.
    std::optional<size_t> FindLabel(std::u16string_view name) const;

  private:
    // Kept taken apart; loops that are worth it are smaller. A script of millions of lines would take much memory.
    static constexpr size_t kMaxParsedLines = 50'000;

    struct Line {
        std::u16string_view text;  // in file_
        int32_t number;
        std::unique_ptr<ScriptLine> parsed;
    };

    CTextFile file_;  // keeps writers out and the text in memory as long as the script runs
    std::vector<Line> lines_;
    std::vector<size_t> parsedLines_;  // those of lines_ that are
    std::map<std::u16string, size_t, std::less<>> labels_;
};

// What a statement names that ends with ":": the text before it, trimmed. Empty for every other one.
std::u16string LabelName(std::u16string_view statement);

}  // namespace kinsort
