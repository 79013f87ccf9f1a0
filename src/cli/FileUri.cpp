#include "cli/FileUri.h"

#include <charconv>

namespace kinsort {
namespace {

constexpr std::string_view kScheme = "file:";
constexpr std::string_view kLocalHost = "localhost";

bool IsUnreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("-._~/").find(c) != std::string_view::npos;
}

}  // namespace

bool IsFileUri(std::string_view text) {
    return text.starts_with("file:/");
}

std::optional<std::string> PathOfFileUri(std::string_view uri) {
    uri.remove_prefix(kScheme.size());
    if (uri.starts_with("//")) {
        uri.remove_prefix(2);
        if (uri.starts_with(kLocalHost)) uri.remove_prefix(kLocalHost.size());
    }
    if (!uri.starts_with('/') || uri.find_first_of("?#") != std::string_view::npos) return std::nullopt;
    std::string path;
    for (size_t i = 0; i < uri.size(); ++i) {
        if (uri[i] != '%') {
            path += uri[i];
            continue;
        }
        unsigned byte = 0;
        const std::string_view digits = uri.substr(i + 1, 2);
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
        if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2 || byte == 0) return std::nullopt;
        path += static_cast<char>(byte);
        i += 2;
    }
    return path;
}

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
