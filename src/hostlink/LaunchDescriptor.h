// The short text in the environment that says how the program was started and where its block is: ten fields between
// colons, "show:focus:first:second:size::::Share:". Nothing in it can hold a colon.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Environment.h"

namespace kinsort {

inline constexpr std::u16string_view kLaunchDescriptorVariable = u"VEL_ExCommand";

struct LaunchDescriptor {
    int32_t showMode = 0;
    int32_t returnFocus = 0;
    int32_t first = 0;  // the two numbers of the block's name
    int32_t second = 0;
    int32_t size = 0;  // of the block, in bytes
    bool isShared = false;

    bool operator==(const LaunchDescriptor&) const = default;
};

// The variable's value; empty when it is not set or longer than 2047 units.
std::u16string ReadLaunchDescriptor(const Environment& environment);

// Nothing unless there are exactly ten fields. Read up to the first NUL; numbers as ReadInt32 does.
std::optional<LaunchDescriptor> ParseLaunchDescriptor(std::u16string_view text);

std::u16string FormatLaunchDescriptor(const LaunchDescriptor& descriptor);

}  // namespace kinsort
