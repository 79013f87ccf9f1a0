#include "text/FileUri.h"

namespace kinsort {
namespace {

bool IsUnreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("-._~/").find(c) != std::string_view::npos;
}

}  // namespace

std::string FileUriOfPath(std::string_view nativePath) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string uri = "file://";
    for (const char c : nativePath) {
        if (IsUnreserved(c)) {
            uri += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            uri += {'%', kDigits[byte >> 4], kDigits[byte & 0xF]};
        }
    }
    return uri;
}

}  // namespace kinsort
