#include "script/ScriptSource.h"

#include "text/AsciiCase.h"
#include "text/Trim.h"

namespace kinsort {

std::u16string LabelName(std::u16string_view statement) {
    if (!statement.ends_with(u':')) return {};
    return Trim(statement.substr(0, statement.size() - 1));
}

bool ScriptSource::Open(std::u16string_view path) {
    if (file_.Open(path) == 0) return false;
    for (std::u16string_view text; file_.ReadLine(text);) {
        const std::u16string_view statement = TrimView(text);
        if (statement.empty() || statement.starts_with(u"//")) continue;
        lines_.push_back({text, file_.GetLineNumber(), nullptr});
    }
    return true;
}

std::optional<std::u16string> ScriptSource::CollectLabels() {
    for (size_t i = 0; i < lines_.size(); ++i) {
        const std::u16string_view statement = TrimView(lines_[i].text);
        if (EqualNoCase(statement, u"EOF")) break;
        if (!statement.ends_with(u':')) continue;
        std::u16string spaced(statement);
        for (char16_t& unit : spaced)
            if (unit == u'\t') unit = u' ';
        const std::u16string name = LabelName(spaced);
        if (name.empty()) continue;
        if (!labels_.try_emplace(name, i).second) return spaced;
    }
    return std::nullopt;
}

const ScriptLine& ScriptSource::LineAt(size_t index, const RunTokens& tokens) {
    Line& line = lines_[index];
    if (line.parsed) return *line.parsed;
    if (parsedLines_.size() == kMaxParsedLines) {
        for (const size_t other : parsedLines_)
            lines_[other].parsed.reset();
        parsedLines_.clear();
    }
    parsedLines_.push_back(index);
    line.parsed = ParseScriptLine(tokens.Replace(line.text), line.number);
    return *line.parsed;
}

std::optional<size_t> ScriptSource::FindLabel(std::u16string_view name) const {
    const auto found = labels_.find(name);
    if (found == labels_.end()) return std::nullopt;
    return found->second;
}

}  // namespace kinsort
