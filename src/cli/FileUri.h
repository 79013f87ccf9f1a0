// file:// addresses of local files (RFC 8089), as file managers hand them over.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kinsort {

// Whether `text` is meant as a file address: it begins with "file:/".
bool IsFileUri(std::string_view text);

// The native path, "%41" resolved to its byte. Nothing when it names another machine, holds a bad or NUL escape, or has
// a query or fragment.
std::optional<std::string> PathOfFileUri(std::string_view uri);

// The address of an absolute native path; any byte that is not an unreserved ASCII character is escaped, so every path
// survives the round trip.
std::string FileUriOfPath(std::string_view nativePath);

}  // namespace kinsort
