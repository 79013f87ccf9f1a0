// The path language over a Linux file system: "Z:\" is "/", every other drive is a link in the drives folder ("c:"),
// "\\server\share" is the entry unc/server/share below it.
//
// Names: well-formed UTF-8 is itself. A byte that is not part of it becomes the lone surrogate U+DC00 + byte
// (U+DC80..U+DCFF); "\" and the control characters become U+F000 + code, since the language has other uses for them;
// the characters U+F000..U+F07F, which would then be ambiguous, are escaped byte by byte like bytes that are not text.
#pragma once

#include <memory>
#include <string>

#include "platform/PathCodec.h"

namespace kinsort {

// `drivesFolder`: stored path of the folder that holds the drives; it need not exist. Empty: there is only Z:.
std::unique_ptr<PathCodec> MakeLinuxPathCodec(std::string drivesFolder);

}  // namespace kinsort
