#include "script/check/ScriptFinding.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "script/ScriptLine.h"
#include "text/Numbers.h"

namespace kinsort {

void FindingList::Add(const ScriptLine& line, std::u16string_view part, std::string_view rule, std::u16string message) {
    const auto offset = static_cast<size_t>(part.data() - line.text.data());
    Add({line.number, offset + 1, part.size(), rule, std::move(message), line.raw, {}});
}

void FindingList::Add(ScriptFinding finding) {
    finding.file = file_;
    findings_.push_back(std::move(finding));
}

std::vector<ScriptFinding> FindingList::Take() {
    std::stable_sort(findings_.begin(), findings_.end(), [](const ScriptFinding& a, const ScriptFinding& b) {
        return std::tie(a.line, a.column) < std::tie(b.line, b.column);
    });
    return std::exchange(findings_, {});
}

std::u16string Quoted(std::u16string_view text) {
    return std::u16string(u"\"").append(text).append(u"\"");
}

std::u16string LineName(int32_t number) {
    return u"line " + FormatInteger(number);
}

}  // namespace kinsort
