// Names as a terminal can show them: no byte of a name may move the cursor, colour the screen or turn the line around.
#pragma once

#include <string>
#include <string_view>

#include "platform/Terminal.h"

namespace kinsort {

// UTF-8 in which control characters and bytes that are not UTF-8 are written \xNN, and the characters that break or
// reverse lines \uNNNN.
std::string ShownText(std::string_view bytes);

// The columns that a ShownText takes on the terminal.
size_t ColumnsOf(const Terminal& terminal, std::string_view shown);

// `shown` cut to at most `columns` columns, the last of them "…" when something was cut off.
std::string CutToColumns(const Terminal& terminal, std::string_view shown, size_t columns);

}  // namespace kinsort
