// The tokens that stand for parts of a selected item: "?SelFile?" and its kind.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/SystemInfo.h"

namespace kinsort {

// One of them, for lists and checks.
struct TokenHelp {
    std::u16string_view token;
    std::u16string_view help;
};
std::vector<TokenHelp> ListItemTokens();

// The text in quotation marks.
std::u16string Quote(std::u16string_view text);

// Replaces every occurrence of the token; most texts hold none and are left alone.
void ReplaceToken(std::u16string& text, std::u16string_view token, std::u16string_view value);

bool HoldsItemToken(std::u16string_view text);

// The text with the tokens replaced by the parts of `item`, in the order of the table; one that the item itself brings
// in and that no later step replaces is taken out. An item of 260 units or more is given by its short form where it has
// one.
std::u16string FillInItem(std::u16string_view text, const std::u16string& item, const SystemInfo& system);

// The text with each token replaced by its values of all items, each followed by a blank; for no items, by nothing.
// Nothing when the result would be longer than `maxLength` units.
std::optional<std::u16string> FillInAllItems(std::u16string_view text, std::span<const std::u16string> items,
                                             const SystemInfo& system, size_t maxLength);

}  // namespace kinsort
