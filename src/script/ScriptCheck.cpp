#include "script/ScriptCheck.h"

#include <string>

#include "framework/TextFile.h"
#include "script/ScriptLine.h"
#include "script/ScriptSource.h"
#include "script/check/BlockCheck.h"
#include "script/check/NameCheck.h"
#include "text/AsciiCase.h"
#include "text/Numbers.h"
#include "text/Trim.h"

namespace kinsort {
namespace {

// True for text of one byte a character that was read with two: nearly every unit is two ASCII characters.
bool LooksLikeBytes(std::u16string_view text) {
    const auto isAscii = [](unsigned byte) { return (byte >= 0x20 && byte < 0x7F) || byte == '\r' || byte == '\n'; };
    size_t pairs = 0;
    for (const char16_t unit : text)
        pairs += isAscii(unit & 0xFFu) && isAscii(unit >> 8) ? 1 : 0;
    return text.size() >= 4 && pairs * 10 > text.size() * 9;
}

void CollectLabel(const ScriptLine& line, bool isBehindEnd, CheckedScript& script, FindingList& findings) {
    const std::u16string name = LabelName(line.statement);
    if (name.empty() || line.statement.starts_with(u"//")) return;
    if (isBehindEnd) {
        script.labelsBehindEnd.try_emplace(name, line.number);
        return;
    }
    const auto [first, isNew] = script.labels.try_emplace(name, line.number);
    if (isNew || findings.size() > kMaxFindings) return;
    const std::u16string why = line.hasValue ? u" (a line that ends with \":\" is one, whatever else it does)" : u"";
    findings.Add(line, line.statement, "label",
                 u"the label " + Quoted(name) + u" is defined already, in " + LineName(first->second) + why);
}

CheckedScript ReadLines(CTextFile& file, FindingList& findings) {
    CheckedScript script;
    bool isBehindEnd = false;
    int32_t number = 0;
    for (std::u16string_view text; file.ReadLine(text);) {
        const std::unique_ptr<ScriptLine> line = ParseScriptLine(std::u16string(text), ++number);
        CollectLabel(*line, isBehindEnd, script, findings);
        isBehindEnd = isBehindEnd || line->kind == LineKind::kEndOfFile;
        if (isBehindEnd) continue;
        script.hasGoto = script.hasGoto || line->kind == LineKind::kGoto;
        script.hasInclude = script.hasInclude || line->key == u"include";
        if (line->kind == LineKind::kVar && !line->operand.empty())
            script.declarations.try_emplace(std::u16string(DeclaredName(*line)), line->number);
        script.lines.push_back(text);
    }
    if (file.nextPosition() < file.length()) {
        findings.Add({number + 1, 1, 0, "line-length",
                      u"this line has 32767 characters or more: the script ends before it", u""});
    }
    return script;
}

// Of more than kMaxFindings, the first ones and a word about the others.
std::vector<ScriptFinding> TakeFirst(FindingList& findings) {
    std::vector<ScriptFinding> found = findings.Take();
    if (found.size() <= kMaxFindings) return found;
    found.resize(kMaxFindings);
    found.push_back({found.back().line, 1, 0, "too-many", u"there is more; mend what stands above first", u""});
    return found;
}

}  // namespace

std::optional<std::vector<ScriptFinding>> CheckScript(FileSystem& files, std::u16string_view path) {
    CTextFile file(files);
    if (file.Open(path) == 0) return std::nullopt;
    FindingList findings;
    if (LooksLikeBytes(file.GetText())) {
        findings.Add({1, 1, 0, "encoding",
                      u"the file is not in UTF-16, which scripts are read as; encode it: iconv -f UTF-8 -t UTF-16",
                      u""});
        return findings.Take();
    }
    const CheckedScript script = ReadLines(file, findings);
    BlockCheck blocks(findings);
    NameCheck names(script, blocks, findings);
    int32_t number = 0;
    for (const std::u16string_view text : script.lines) {
        if (findings.size() > kMaxFindings) return TakeFirst(findings);
        const std::shared_ptr<const ScriptLine> line = ParseScriptLine(std::u16string(text), ++number);
        blocks.Visit(line);
        names.Visit(*line);
    }
    blocks.Finish();
    return TakeFirst(findings);
}

}  // namespace kinsort
