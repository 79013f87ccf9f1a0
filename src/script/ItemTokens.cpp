#include "script/ItemTokens.h"

#include <algorithm>

#include "framework/Paths.h"
#include "text/Split.h"

namespace kinsort {

namespace {

struct SelectedItem {
    std::u16string path;    // short form if it is long and there is one
    std::u16string folder;  // with its separator; empty when there is none
    std::u16string baseName;
    std::u16string extension;
};

struct ItemToken {
    std::u16string_view token;
    std::u16string (*value)(const SelectedItem& item);
    std::u16string_view help;
};
constexpr ItemToken kItemTokens[] = {
    {u"?SelFile?", [](const SelectedItem& item) { return Quote(item.path); }, u"the item, in quotation marks"},
    {u"?selfile?", [](const SelectedItem& item) { return item.path; }, u"the item"},
    {u"?FileName?", [](const SelectedItem& item) { return item.baseName + item.extension; }, u"its name"},
    {u"?Name?", [](const SelectedItem& item) { return item.baseName; }, u"its name without the extension"},
    {u"?Ext?", [](const SelectedItem& item) { return item.extension; }, u"its extension, with the point"},
    {u"?filename?", [](const SelectedItem& item) { return Quote(item.baseName + item.extension); },
     u"?FileName? in quotation marks"},
    {u"?name?", [](const SelectedItem& item) { return Quote(item.baseName); }, u"?Name? in quotation marks"},
    {u"?ext?", [](const SelectedItem& item) { return Quote(item.extension); }, u"?Ext? in quotation marks"},
    {u"?selpath?", [](const SelectedItem& item) { return Quote(item.folder); }, u"?SelPath? in quotation marks"},
    {u"?SelPath?", [](const SelectedItem& item) { return item.folder; }, u"its folder, with the backslash"},
    {u"?SelParent?", [](const SelectedItem& item) { return RemoveTrailingSeparatorKeepRoot(item.folder); },
     u"its folder"},
};

SelectedItem TakeApart(const std::u16string& path, const SystemInfo& system) {
    SelectedItem item;
    item.path = path.size() >= kLongPathLength ? GetShortName(system, path) : path;
    if (item.path.empty()) item.path = path;
    item.folder = path.substr(0, path.find_last_of(u"\\/") + 1);
    PathParts parts = SplitPath(path);
    item.baseName = std::move(parts.baseName);
    item.extension = std::move(parts.extension);
    return item;
}

size_t CountOf(std::u16string_view text, std::u16string_view token) {
    size_t count = 0;
    for (size_t at = text.find(token); at != text.npos; at = text.find(token, at + token.size()))
        ++count;
    return count;
}

void RemoveTokens(std::u16string& text) {
    for (const ItemToken& row : kItemTokens)
        ReplaceToken(text, row.token, {});
}

}  // namespace

std::u16string Quote(std::u16string_view text) {
    return std::u16string(u"\"").append(text).append(u"\"");
}

void ReplaceToken(std::u16string& text, std::u16string_view token, std::u16string_view value) {
    if (text.find(token) != text.npos) text = Replace(text, token, value);
}

std::vector<TokenHelp> ListItemTokens() {
    std::vector<TokenHelp> tokens;
    for (const ItemToken& row : kItemTokens)
        tokens.push_back({row.token, row.help});
    return tokens;
}

bool HoldsItemToken(std::u16string_view text) {
    return text.find(u'?') != text.npos &&
           std::ranges::any_of(kItemTokens, [text](const ItemToken& row) { return text.find(row.token) != text.npos; });
}

std::u16string FillInItem(std::u16string_view text, const std::u16string& item, const SystemInfo& system) {
    std::u16string out(text);
    if (!HoldsItemToken(out)) return out;
    const SelectedItem parts = TakeApart(item, system);
    for (const ItemToken& row : kItemTokens) {
        if (out.find(row.token) != out.npos) ReplaceToken(out, row.token, row.value(parts));
    }
    RemoveTokens(out);
    return out;
}

std::optional<std::u16string> FillInAllItems(std::u16string_view text, std::span<const std::u16string> items,
                                             const SystemInfo& system, size_t maxLength) {
    std::u16string out(text);
    if (!HoldsItemToken(out)) return out;
    std::vector<SelectedItem> parts;
    parts.reserve(items.size());
    for (const std::u16string& item : items)
        parts.push_back(TakeApart(item, system));
    for (const ItemToken& row : kItemTokens) {
        const size_t count = CountOf(out, row.token);
        if (count == 0) continue;
        std::u16string values;
        for (const SelectedItem& item : parts) {
            values.append(row.value(item)).append(u" ");
            if (values.size() > maxLength / count) return std::nullopt;
        }
        if (out.size() + count * values.size() > maxLength) return std::nullopt;
        ReplaceToken(out, row.token, values);
    }
    RemoveTokens(out);
    return out;
}

}  // namespace kinsort
