// file:// addresses of local files (RFC 8089), as file managers take them.
#pragma once

#include <string>
#include <string_view>

namespace kinsort {

// The address of an absolute native path; any byte that is not an unreserved ASCII character is escaped, so every path
// survives the round trip.
std::string FileUriOfPath(std::string_view nativePath);

}  // namespace kinsort
