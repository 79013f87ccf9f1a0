// Sizes, durations and moments as people read them; the same in every language.
#pragma once

#include <cstdint>
#include <string>

namespace kinsort {

// "12.3 MB", decimal units
std::string FormatSize(double bytes);
// "0:35", "2:05:09"
std::string FormatDuration(double seconds);
// The local time of a moment in nanoseconds since 1970 UTC, "2024-05-31 14:03". Not for several threads at a time.
std::string FormatLocalTime(int64_t ns);

}  // namespace kinsort
