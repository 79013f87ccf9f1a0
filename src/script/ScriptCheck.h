// Reads a script without running it and tells what would go wrong: names that nothing is called by, blocks that do not
// match, labels that are missing, arguments that are not there. It knows commands, functions, options and tokens from
// the tables that also run them.
//
// Scripts that it includes are looked over where they are included, each once, if their path is written out or begins
// with ?ScriptPath?. What only a run can know is given the benefit of the doubt: labels, indices and arguments that
// variables fill in, and variables that may come from an included script that could not be read.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"
#include "script/check/ScriptFinding.h"

namespace kinsort {

// So many in one file and no more: a file that is no script at all has something wrong with every line.
constexpr size_t kMaxFindings = 1000;

// By line and column, those of the script before those of the scripts that it includes; of more than kMaxFindings in
// one file, the first that were found and one that says so. Nothing when the script itself cannot be read.
std::optional<std::vector<ScriptFinding>> CheckScript(FileSystem& files, std::u16string_view path);

// True for text of one byte a character that was read with two: nearly every unit is two ASCII characters.
bool LooksLikeBytes(std::u16string_view text);
// What is said of it.
constexpr std::u16string_view kEncodingText =
    u"the file is not in UTF-16, which scripts are read as; encode it: iconv -f UTF-8 -t UTF-16";

}  // namespace kinsort
