#include "script/check/NameCheck.h"

#include <algorithm>
#include <array>
#include <span>

#include "framework/Paths.h"
#include "script/OptionLines.h"
#include "script/ScriptSource.h"
#include "script/StatementTable.h"
#include "text/AsciiCase.h"
#include "text/Numbers.h"

namespace kinsort {
namespace {

// What other languages write, and what is written here.
constexpr std::pair<std::u16string_view, std::u16string_view> kForeignOperators[] = {
    {u"=<", u"<="}, {u"=>", u">="}, {u"<>", u"!="}, {u"~=", u"!="}};

// Of variables and of labels, for "did you mean": a script with more is no person's.
constexpr size_t kMaxGuessed = 2000;

NameList KeyNames() {
    NameList names;
    AddNames(names, Statements(), &StatementRow::keyword);
    AddNames(names, OptionLines(), &OptionLineRow::name);
    return names;
}

}  // namespace

NameCheck::NameCheck(const CheckedScript& script, const BlockCheck& blocks, bool isInIf, DeclaredNames& names,
                     FindingList& findings)
    : script_(script),
      blocks_(blocks),
      isIncludedInIf_(isInIf),
      names_(names),
      variables_(names.variables),
      findings_(findings),
      values_(names.variables, findings) {}

void NameCheck::Visit(const ScriptLine& line) {
    switch (line.kind) {
        case LineKind::kVar:
            return VisitDeclaration(line);
        case LineKind::kIf:
        case LineKind::kWhile:
            return VisitCondition(line);
        case LineKind::kGoto:
            return VisitGoto(line);
        case LineKind::kStatement:
            return VisitStatement(line);
        case LineKind::kRemoveSelectItems:
            if (blocks_.isInFor())
                findings_.Add(line, line.statement, "loop", u"the items cannot be removed while a \"for\" walks them");
            return;
        default:
            return;
    }
}

// --- declarations ----------------------------------------------------------------------------------------------------

void NameCheck::VisitDeclaration(const ScriptLine& line) {
    if (line.operand.empty()) {
        findings_.Add(line, line.statement, "operand", u"\"var\" needs a name");
        return;
    }
    const std::u16string_view name = line.target;
    if (blocks_.isInLoop()) {
        findings_.Add(line, line.statement, "declaration",
                      u"a declaration inside of a loop ends the run when it comes round again");
    }
    Declare(line, name);
    if (!line.hasValue) return;
    if (variables_.Find(name) == nullptr && variables_.Find(FormatIndexedName(SplitIndexedName(name).base, u"0")))
        findings_.Add(line, name, "declaration", u"an array as a whole takes no value");
    else
        values_.VisitAssigned(line, line.value);
}

// "line 12", "line 12 of settings.ecs" in another script.
std::u16string NameCheck::PlaceOf(size_t variable) const {
    const DeclaredNames::Place& place = names_.places[variable];
    const bool isHere = place.file == findings_.file();
    return LineName(place.line) + (isHere ? std::u16string() : u" of " + GetFileNamePart(place.file));
}

// True when the name may not be declared, after a finding or for a reason that is none.
bool NameCheck::SaysWhyNot(const ScriptLine& line, std::u16string_view part, std::u16string_view name) {
    if (IsReservedWord(name)) {
        findings_.Add(line, part, "declaration", Quoted(name) + u" is a word of the language");
        return true;
    }
    if (const std::optional<size_t> index = variables_.IndexOf(name)) {
        // Of two branches, only one is run.
        if (!isInIf() || !names_.places[*index].isInIf)
            findings_.Add(line, part, "declaration", Quoted(name) + u" is declared already, in " + PlaceOf(*index));
        return true;
    }
    const VariableTable::Entry* const other = variables_.FindOverlap(name);
    if (other == nullptr) return false;
    const auto index = static_cast<size_t>(other - variables_.entries().data());
    const bool isInside = other->name.find(name) != other->name.npos;
    findings_.Add(line, part, "declaration",
                  Quoted(name) + (isInside ? u" is part of " : u" holds ") + Quoted(other->name) + u" of " +
                      PlaceOf(index) + u": names are filled in anywhere, so none may hold another");
    return true;
}

void NameCheck::Declare(const ScriptLine& line, std::u16string_view name) {
    constexpr int32_t kMostCompared = 1000;  // elements of one array
    const IndexedName indexed = SplitIndexedName(name);
    const int32_t size = indexed.isIndexed() ? ReadInt32(indexed.index) : 0;
    if (name.empty() || size < 0) {
        findings_.Add(line, line.statement, "declaration", u"this declares nothing, and ends the run without a word");
        return;
    }
    if (indexed.isIndexed() && size == 0 && variables_.Find(indexed.index) != nullptr) {
        findings_.Add(line, name, "declaration",
                      u"nothing is filled in here: this declares one element that is called " + Quoted(name));
    }
    if (size == 0 && FindOptionLine(AsciiLower(name)) != nullptr) {
        findings_.Add(
            line, name, "declaration",
            Quoted(name) + u" is an option: a line " + Quoted(std::u16string(name) + u"=...") + u" sets that");
    }
    bool isRefused = size == 0 && SaysWhyNot(line, name, name);
    for (int32_t i = 0; i < std::min(size, kMostCompared) && !isRefused; ++i)
        isRefused = SaysWhyNot(line, name, FormatIndexedName(indexed.base, FormatInteger(i)));
    if (isRefused) return;
    const Declaration made = DeclareVariable(variables_, name);
    if (made.created == 0) {
        const size_t end = made.message.find(u'\n');
        findings_.Add(line, name, "declaration", made.message.substr(0, end));
    }
    names_.places.resize(variables_.entries().size(), {findings_.file(), line.number, isInIf()});
}

// --- statements ------------------------------------------------------------------------------------------------------

bool NameCheck::IsVariable(std::u16string_view target) const {
    if (variables_.Find(target) != nullptr) return true;
    const IndexedName name = SplitIndexedName(target);
    if (!name.isIndexed()) return false;
    if (variables_.Find(FormatIndexedName(name.base, name.index)) != nullptr) return true;
    const std::u16string opened = name.base + u"[";
    const auto& entries = variables_.entries();
    const bool isArray =
        std::any_of(entries.begin(), entries.end(), [&](const auto& entry) { return entry.name.starts_with(opened); });
    return isArray && values_.IsOpen(name.index);
}

void NameCheck::VisitStatement(const ScriptLine& line) {
    if (line.key == u"icon") return;
    if (line.option != nullptr) return values_.VisitTokens(line, line.value);
    if (line.hasValue && IsVariable(line.target)) return VisitAssignment(line);
    if (line.command != nullptr) return values_.VisitArguments(line);
    if (line.hasValue || LabelName(line.statement).empty()) VisitUnknown(line);
}

void NameCheck::VisitAssignment(const ScriptLine& line) {
    if (line.command != nullptr && !script_.hasInclude) {
        findings_.Add(line, line.target, "declaration",
                      u"the variable " + Quoted(line.target) + u" stands before the command of that name");
    }
    values_.VisitAssigned(line, line.value);
}

void NameCheck::VisitUnknown(const ScriptLine& line) {
    if (!line.hasValue) {
        const std::u16string_view head = HeadOf(line.statement);
        const bool isCommand =
            FindStatement(AsciiLower(head)) != nullptr || FindOptionLine(AsciiLower(head)) != nullptr;
        const std::u16string why = isCommand ? u": " + Quoted(head) + u" needs a \"=\" behind it"
                                             : DidYouMean(FindMeant(head, StatementWords()));
        findings_.Add(line, head, "unknown-line", u"nothing knows this line" + why);
        return;
    }
    const IndexedName indexed = SplitIndexedName(line.target);
    if (indexed.isIndexed() && variables_.Find(FormatIndexedName(indexed.base, u"0")) != nullptr) {
        findings_.Add(line, line.target, "unknown-name",
                      Quoted(line.target) + u" is none of the declared elements of " + Quoted(indexed.base));
        return;
    }
    const auto later = script_.declarations.find(line.target);
    if (later != script_.declarations.end()) {
        if (later->second <= line.number || script_.hasGoto) return;
        findings_.Add(line, line.target, "unknown-name",
                      Quoted(line.target) + u" is declared only in " + LineName(later->second));
        return;
    }
    NameList names = KeyNames();
    const std::span variables(variables_.entries());
    AddNames(names, variables.first(std::min(variables.size(), kMaxGuessed)), &VariableTable::Entry::name);
    const std::optional<std::u16string_view> meant = FindMeant(line.target, names);
    // A script that was included, or is and jumped back from, may have declared the name.
    if (!meant && (names_.mayBeMore || (script_.hasInclude && script_.hasGoto))) return;
    findings_.Add(
        line, line.target, "unknown-name",
        u"nothing is called " + Quoted(line.target) + (meant ? DidYouMean(meant) : u": the line does nothing"));
}

// --- control flow ----------------------------------------------------------------------------------------------------

void NameCheck::VisitCondition(const ScriptLine& line) {
    const std::u16string_view condition = line.operand;
    if (condition.empty()) {
        findings_.Add(line, line.statement, "operand", Quoted(line.statement) + u" needs a condition");
        return;
    }
    values_.VisitTokens(line, condition);
    for (const auto& [foreign, own] : kForeignOperators) {
        const size_t position = condition.find(foreign);
        if (position == condition.npos) continue;
        findings_.Add(line, condition.substr(position, 2), "condition",
                      Quoted(foreign) + u" is no operator" + DidYouMean(own));
        return;
    }
    if (line.condition.holds != nullptr) return;
    const size_t equals = condition.find(u'=');
    const bool isSingle = equals != condition.npos;
    findings_.Add(line, isSingle ? condition.substr(equals, 1) : condition, "condition",
                  isSingle ? u"\"=\" is no operator; did you mean \"==\"?"
                           : u"this condition has no operator (== != < > <= >= ^ !^)");
}

void NameCheck::VisitGoto(const ScriptLine& line) {
    const std::u16string_view label = line.operand;
    if (label.empty()) {
        findings_.Add(line, line.statement, "operand", u"\"goto\" needs a label");
        return;
    }
    if (values_.IsOpen(label) || script_.labels.contains(label)) return;
    if (script_.labelsBehindEnd.contains(label)) {
        findings_.Add(line, label, "label",
                      u"the label " + Quoted(label) + u" stands behind \"EOF\", where nothing is read");
        return;
    }
    NameList names;
    for (const auto& [name, number] : script_.labels)
        if (names.size() < kMaxGuessed) names.push_back(name);
    findings_.Add(line, label, "label", u"there is no label " + Quoted(label) + DidYouMean(FindMeant(label, names)));
}

}  // namespace kinsort
