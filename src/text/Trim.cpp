#include "text/Trim.h"

#include <algorithm>

namespace kinsort {

namespace {

template <typename Predicate>
std::u16string_view WithoutStart(std::u16string_view text, Predicate goes) {
    const auto first = std::find_if_not(text.begin(), text.end(), goes);
    return text.substr(static_cast<size_t>(first - text.begin()));
}

template <typename Predicate>
std::u16string_view WithoutEnd(std::u16string_view text, Predicate goes) {
    const auto last = std::find_if_not(text.rbegin(), text.rend(), goes);
    return text.substr(0, static_cast<size_t>(text.rend() - last));
}

}  // namespace

std::u16string Trim(std::u16string_view text) {
    return std::u16string(TrimView(text));
}

std::u16string_view TrimView(std::u16string_view text) {
    const auto isWhite = [](char16_t unit) { return IsWhiteSpace(unit); };  // can be inlined, unlike a pointer
    return WithoutEnd(WithoutStart(text, isWhite), isWhite);
}

std::u16string TrimStart(std::u16string_view text) {
    return std::u16string(WithoutStart(text, IsWhiteSpace));
}

std::u16string TrimEnd(std::u16string_view text) {
    return std::u16string(WithoutEnd(text, IsWhiteSpace));
}

std::u16string TrimStart(std::u16string_view text, char16_t unit) {
    return std::u16string(WithoutStart(text, [unit](char16_t other) { return other == unit; }));
}

std::u16string TrimEnd(std::u16string_view text, char16_t unit) {
    return std::u16string(WithoutEnd(text, [unit](char16_t other) { return other == unit; }));
}

}  // namespace kinsort
