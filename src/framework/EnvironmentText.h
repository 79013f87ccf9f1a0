// "%NAME%" in a text, replaced by the value of that variable.
#pragma once

#include <string>
#include <string_view>

#include "platform/Environment.h"
#include "platform/PathCodec.h"

namespace kinsort {

// Each "%NAME%" whose variable is set, the name as written or else in upper case, becomes its value; a value that is an
// absolute native path becomes a path of the inner language. Everything else stays, a "%" without its partner and the
// names of unknown variables included; a value is not looked into again.
std::u16string ExpandEnvironment(std::u16string_view text, const Environment& environment, const PathCodec& codec);

}  // namespace kinsort
