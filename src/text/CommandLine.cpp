#include "text/CommandLine.h"

#include <algorithm>

namespace kinsort {

namespace {

constexpr std::u16string_view kBlanks = u" \t";

bool IsBlank(char16_t unit) {
    return kBlanks.find(unit) != kBlanks.npos;
}

// Takes the backslashes that `text` begins with and, when a quote follows, that quote's meaning: appends to `out` what
// they stand for. Returns true when a quote is left that opens or closes.
bool TakeBackslashes(std::u16string_view& text, std::u16string& out) {
    const size_t count = std::min(text.find_first_not_of(u'\\'), text.size());
    const bool beforeQuote = count < text.size() && text[count] == u'"';
    out.append(beforeQuote ? count / 2 : count, u'\\');
    text.remove_prefix(count);
    if (!beforeQuote) return false;
    if (count % 2 == 0) return true;
    out += u'"';
    text.remove_prefix(1);
    return false;
}

std::u16string TakeArgument(std::u16string_view& text) {
    std::u16string out;
    bool quoted = false;
    while (!text.empty() && (quoted || !IsBlank(text.front()))) {
        if (text.front() == u'\\' && !TakeBackslashes(text, out)) continue;
        if (text.front() != u'"') {
            out += text.front();
        } else if (quoted && text.starts_with(u"\"\"")) {
            out += u'"';
            text.remove_prefix(1);
        } else {
            quoted = !quoted;
        }
        text.remove_prefix(1);
    }
    return out;
}

std::u16string TakeProgram(std::u16string_view& text) {
    std::u16string out;
    bool quoted = false;
    while (!text.empty() && (quoted || !IsBlank(text.front()))) {
        if (text.front() == u'"') {
            quoted = !quoted;
        } else {
            out += text.front();
        }
        text.remove_prefix(1);
    }
    return out;
}

void AppendArguments(std::u16string_view text, std::vector<std::u16string>& out) {
    for (size_t begin = text.find_first_not_of(kBlanks); begin != text.npos; begin = text.find_first_not_of(kBlanks)) {
        text.remove_prefix(begin);
        out.push_back(TakeArgument(text));
    }
}

}  // namespace

std::vector<std::u16string> SplitArguments(std::u16string_view text) {
    std::vector<std::u16string> out;
    AppendArguments(text, out);
    return out;
}

std::vector<std::u16string> SplitCommandLine(std::u16string_view text) {
    std::vector<std::u16string> out = {TakeProgram(text)};
    AppendArguments(text, out);
    return out;
}

std::u16string QuoteArgument(std::u16string_view argument) {
    if (!argument.empty() && argument.find_first_of(u" \t\"") == argument.npos) return std::u16string(argument);
    std::u16string out = u"\"";
    size_t backslashes = 0;  // those just before
    for (const char16_t unit : argument) {
        if (unit == u'"') out.append(backslashes + 1, u'\\');
        backslashes = unit == u'\\' ? backslashes + 1 : 0;
        out += unit;
    }
    out.append(backslashes, u'\\');
    return out + u'"';
}

std::u16string JoinArguments(const std::vector<std::u16string>& arguments) {
    std::u16string out;
    for (const std::u16string& argument : arguments) {
        if (!out.empty()) out += u' ';
        out += QuoteArgument(argument);
    }
    return out;
}

}  // namespace kinsort
