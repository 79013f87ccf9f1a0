#include "text/Split.h"

namespace kinsort {

std::vector<std::u16string> Split(std::u16string_view text, char16_t separator) {
    std::vector<std::u16string> pieces;
    size_t begin = 0;
    for (size_t end = text.find(separator); end != text.npos; end = text.find(separator, begin)) {
        pieces.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    pieces.emplace_back(text.substr(begin));
    return pieces;
}

std::vector<std::u16string> SplitSkippingEmpty(std::u16string_view text, char16_t separator) {
    std::vector<std::u16string> pieces = Split(text, separator);
    std::erase(pieces, std::u16string());
    return pieces;
}

std::u16string Join(const std::vector<std::u16string>& pieces, std::u16string_view separator) {
    std::u16string out;
    for (size_t i = 0; i < pieces.size(); ++i) {
        if (i > 0) out += separator;
        out += pieces[i];
    }
    return out;
}

std::u16string Replace(std::u16string_view text, std::u16string_view from, std::u16string_view to) {
    if (from.empty()) return std::u16string(text);
    std::u16string out;
    size_t begin = 0;
    for (size_t found = text.find(from); found != text.npos; found = text.find(from, begin)) {
        out.append(text.substr(begin, found - begin)).append(to);
        begin = found + from.size();
    }
    return out.append(text.substr(begin));
}

bool ReplaceWithin(std::u16string& text, std::u16string_view from, std::u16string_view to, size_t mostUnits) {
    if (from.empty()) return text.size() <= mostUnits;
    const size_t first = text.find(from);
    size_t occurrences = 0;
    for (size_t found = first; found != text.npos; found = text.find(from, found + from.size()))
        ++occurrences;
    const size_t kept = text.size() - occurrences * from.size();
    if (kept > mostUnits || (occurrences != 0 && to.size() > (mostUnits - kept) / occurrences)) return false;
    if (occurrences == 1)
        text.replace(first, from.size(), to);  // nearly always, and much faster
    else if (occurrences > 1)
        text = Replace(text, from, to);
    return true;
}

}  // namespace kinsort
