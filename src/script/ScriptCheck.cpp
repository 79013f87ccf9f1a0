#include "script/ScriptCheck.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <set>
#include <string>

#include "framework/Paths.h"
#include "framework/TextFile.h"
#include "script/ItemTokens.h"
#include "script/Script.h"
#include "script/ScriptLine.h"
#include "script/ScriptSource.h"
#include "script/check/BlockCheck.h"
#include "script/check/NameCheck.h"
#include "text/AsciiCase.h"
#include "text/Numbers.h"
#include "text/Trim.h"

namespace kinsort {
namespace {

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

bool IsInclude(const ScriptLine& line) {
    return line.kind == LineKind::kStatement && line.key == u"include";
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
        script.hasInclude = script.hasInclude || IsInclude(*line);
        if (line->kind == LineKind::kVar && !line->operand.empty())
            script.declarations.try_emplace(std::u16string(line->target), line->number);
        script.lines.push_back(text);
    }
    if (file.nextPosition() < file.length()) {
        findings.Add({number + 1,
                      1,
                      0,
                      "line-length",
                      u"this line has 32767 characters or more: the script ends before it",
                      {},
                      {}});
    }
    return script;
}

// Of more than kMaxFindings, the first ones and a word about the others.
std::vector<ScriptFinding> TakeFirst(FindingList& findings) {
    std::vector<ScriptFinding> found = findings.Take();
    if (found.size() <= kMaxFindings) return found;
    found.resize(kMaxFindings);
    found.push_back(
        {found.back().line, 1, 0, "too-many", u"there is more; mend what stands above first", {}, found.back().file});
    return found;
}

// Checks a script and, where they are included, the others, which see and declare the same variables.
class ScriptChecker {
  public:
    explicit ScriptChecker(FileSystem& files) : files_(files) {}

    // False when the file cannot be read.
    bool CheckFile(std::u16string_view path, bool isInIf);
    // File by file, as they were met.
    std::vector<ScriptFinding> Take();

  private:
    void CheckIncluded(std::u16string_view path, bool isInIf);

    FileSystem& files_;
    DeclaredNames names_;
    std::set<std::u16string> met_;      // full paths of all files so far
    std::deque<FindingList> findings_;  // of each file that was read
    int depth_ = 0;
};

bool ScriptChecker::CheckFile(std::u16string_view path, bool isInIf) {
    met_.insert(GetFullPath(files_, path));
    CTextFile file(files_);
    if (file.Open(path) == 0) return false;
    FindingList& findings = findings_.emplace_back(path);
    if (LooksLikeBytes(file.GetText())) {
        findings.Add({1, 1, 0, "encoding", std::u16string(kEncodingText), {}, {}});
        return true;
    }
    const CheckedScript script = ReadLines(file, findings);
    BlockCheck blocks(findings);
    NameCheck names(script, blocks, isInIf, names_, findings);
    int32_t number = 0;
    for (const std::u16string_view text : script.lines) {
        if (findings.size() > kMaxFindings) return true;
        const std::shared_ptr<const ScriptLine> line = ParseScriptLine(std::u16string(text), ++number);
        blocks.Visit(line);
        names.Visit(*line);
        if (!IsInclude(*line) || names_.variables.Find(line->target) != nullptr) continue;
        std::u16string included(line->value);
        ReplaceToken(included, u"?ScriptPath?", GetDirectoryPart(path));
        CheckIncluded(included, names.isInIf());
    }
    blocks.Finish();
    return true;
}

void ScriptChecker::CheckIncluded(std::u16string_view path, bool isInIf) {
    const bool isFilledIn = path.find_first_of(u"?%") != path.npos || names_.variables.HoldsNameWithin(path);
    const std::u16string included = GetFullPath(files_, path);
    if (!isFilledIn && met_.contains(included)) return;
    ++depth_;
    if (isFilledIn || depth_ > kMaxIncludeDepth || !CheckFile(included, isInIf)) names_.mayBeMore = true;
    --depth_;
}

std::vector<ScriptFinding> ScriptChecker::Take() {
    std::vector<ScriptFinding> all;
    for (FindingList& findings : findings_) {
        std::vector<ScriptFinding> found = TakeFirst(findings);
        std::move(found.begin(), found.end(), std::back_inserter(all));
    }
    return all;
}

}  // namespace

bool LooksLikeBytes(std::u16string_view text) {
    const auto isAscii = [](unsigned byte) { return (byte >= 0x20 && byte < 0x7F) || byte == '\r' || byte == '\n'; };
    size_t pairs = 0;
    for (const char16_t unit : text)
        pairs += isAscii(unit & 0xFFu) && isAscii(unit >> 8) ? 1 : 0;
    return text.size() >= 4 && pairs * 10 > text.size() * 9;
}

std::optional<std::vector<ScriptFinding>> CheckScript(FileSystem& files, std::u16string_view path) {
    ScriptChecker checker(files);
    if (!checker.CheckFile(path, false)) return std::nullopt;
    return checker.Take();
}

}  // namespace kinsort
