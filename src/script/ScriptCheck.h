// Reads a script without running it and tells what would go wrong: names that nothing is called by, blocks that do not
// match, labels that are missing, arguments that are not there. It knows commands, functions, options and tokens from
// the tables that also run them.
//
// A script is checked by itself. What only a run can know is given the benefit of the doubt: labels, indices and
// arguments that variables fill in, and, in a script that includes others, variables that may come from there.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/FileSystem.h"
#include "script/check/ScriptFinding.h"

namespace kinsort {

// So many and no more: a file that is no script at all has something wrong with every line.
constexpr size_t kMaxFindings = 1000;

// By line and column; of more than kMaxFindings, the first that were found and one that says so. Nothing when the file
// cannot be read.
std::optional<std::vector<ScriptFinding>> CheckScript(FileSystem& files, std::u16string_view path);

}  // namespace kinsort
