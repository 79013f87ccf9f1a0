#include "text/Amounts.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace kinsort {

std::string FormatSize(double bytes) {
    constexpr std::array<const char*, 7> kUnits = {"B", "kB", "MB", "GB", "TB", "PB", "EB"};
    size_t unit = 0;
    while (bytes >= 999.5 && unit + 1 < kUnits.size()) {
        bytes /= 1000;
        ++unit;
    }
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), unit == 0 || bytes >= 99.95 ? "%.0f %s" : "%.1f %s", bytes, kUnits[unit]);
    return text.data();
}

std::string FormatDuration(double seconds) {
    const long long whole = std::llround(seconds);
    std::array<char, 48> text{};
    if (whole >= 3600) {
        std::snprintf(text.data(), text.size(), "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60, whole % 60);
    } else {
        std::snprintf(text.data(), text.size(), "%lld:%02lld", whole / 60, whole % 60);
    }
    return text.data();
}

std::string FormatLocalTime(int64_t ns) {
    const auto seconds = static_cast<std::time_t>(ns / 1'000'000'000);
    const std::tm* const local = std::localtime(&seconds);
    std::array<char, 32> text{};
    if (local == nullptr || std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", local) == 0) return "(no date)";
    return text.data();
}

}  // namespace kinsort
