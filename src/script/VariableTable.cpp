#include "script/VariableTable.h"

#include <algorithm>

#include "script/ScriptError.h"
#include "text/AsciiCase.h"
#include "text/Numbers.h"
#include "text/Split.h"
#include "text/Trim.h"

namespace kinsort {

namespace {

constexpr std::u16string_view kReservedWords[] = {
    u"if", u"endif", u"var",      u"goto",  u"exit", u"exitall", u"for",  u"next",
    u"do", u"while", u"continue", u"break", u"skip", u"stop",    u"else", u"debug",
};

constexpr std::u16string_view kReservedMessage = u"This word is reserved and can not be used as a variable.\n";
constexpr std::u16string_view kTooManyMessage = u"Too many variables (more than 1000000).\n";

constexpr int kMaxPasses = 10;
constexpr size_t kLookedAtBeforeParts = 4'000'000;

// Which entries, of those that are replaced, occur in a text: the first of all, and the first from some place on.
struct Occurring {
    uint32_t first = NameTrie::kNone;
    uint32_t next = NameTrie::kNone;
};

Occurring FindOccurring(const VariableTable& table, std::u16string_view text, uint32_t from) {
    Occurring found;
    const std::vector<VariableTable::Entry>& entries = table.entries();
    table.names().ForEachOccurrence(text, [&](uint32_t number, size_t) {
        if (!entries[number].isReplaced) return true;
        found.first = std::min(found.first, number);
        if (number >= from) found.next = std::min(found.next, number);
        return true;
    });
    return found;
}

// A value that cannot become part of a name, whatever it stands beside.
bool IsInert(const NameTrie& names, std::u16string_view value) {
    return !value.empty() &&
           std::none_of(value.begin(), value.end(), [&](char16_t unit) { return names.MayHold(unit); });
}

// One look at the text instead of one for each name: when no two names overlap and all values are inert, their order
// does not count and nothing is left to replace. False, and nothing changed, when it is not so simple.
bool ReplaceAtOnce(const VariableTable& table, std::u16string& text) {
    bool isSimple = true;
    size_t end = 0;  // of what is in `out`
    std::u16string out;
    table.names().ForEachOccurrence(text, [&](uint32_t number, size_t start) {
        const VariableTable::Entry& entry = table.entries()[number];
        if (!entry.isReplaced) return true;
        isSimple = start >= end && IsInert(table.names(), entry.value) &&
                   out.size() + entry.value.size() <= kMaxExpandedLength;
        if (!isSimple) return false;
        out.append(text, end, start - end).append(entry.value);
        end = start + entry.name.size();
        return true;
    });
    if (!isSimple || end == 0) return isSimple;
    if (out.size() + text.size() - end > kMaxExpandedLength) return false;
    text = std::move(out.append(text, end));
    return true;
}

// One element or plain name. False, with the message, when it may not be declared.
bool DeclareOne(VariableTable& table, const std::u16string& name, Declaration& result) {
    result.message = CheckVariableName(table, name);
    if (!result.message.empty()) return false;
    table.Create(name);
    ++result.created;
    return true;
}

// base[0] to base[size - 1]. Elements of one array are never part of each other, so when no name holds "base[" yet, an
// element is only looked through for the names that stand before the array: a large one takes no time.
void DeclareArray(VariableTable& table, std::u16string_view base, int32_t size, Declaration& result) {
    const std::u16string opened = std::u16string(base).append(u"[");
    const std::vector<VariableTable::Entry>& entries = table.entries();
    const bool isFresh = std::none_of(entries.begin(), entries.end(), [&](const VariableTable::Entry& entry) {
        return entry.name.find(opened) != entry.name.npos;
    });
    for (int32_t i = 0; i < size; ++i) {
        const std::u16string name = FormatIndexedName(base, FormatInteger(i));
        if (isFresh && !table.HoldsNameWithin(name)) {
            table.Create(name);
            ++result.created;
        } else if (!DeclareOne(table, name, result)) {
            result.created = 0;
            return;
        }
    }
}

}  // namespace

std::optional<size_t> VariableTable::IndexOf(std::u16string_view name) const {
    const uint32_t number = names_.Find(name);
    if (number == NameTrie::kNone) return std::nullopt;
    return number;
}

const std::u16string* VariableTable::Find(std::u16string_view name) const {
    const uint32_t number = names_.Find(name);
    return number == NameTrie::kNone ? nullptr : &entries_[number].value;
}

bool VariableTable::Create(std::u16string_view name, std::u16string_view value) {
    if (name.empty() || entries_.size() >= kMaxEntries || Find(name) != nullptr) return false;
    names_.Add(name, static_cast<uint32_t>(entries_.size()));
    entries_.push_back({std::u16string(name), std::u16string(value), name != value});
    units_ += name.size() + value.size();
    return true;
}

void VariableTable::AssignAt(size_t index, std::u16string value) {
    Entry& entry = entries_[index];
    units_ = units_ - entry.value.size() + value.size();
    entry.value = std::move(value);
    entry.isReplaced = entry.value != entry.name;
}

bool VariableTable::Assign(std::u16string_view name, std::u16string value) {
    const std::optional<size_t> index = IndexOf(name);
    if (index) AssignAt(*index, std::move(value));
    return index.has_value();
}

bool VariableTable::HoldsNameWithin(std::u16string_view text) const {
    bool holds = false;
    names_.ForEachOccurrence(text, [&](uint32_t, size_t) {
        holds = true;
        return false;
    });
    return holds;
}

size_t VariableTable::FindHolder(std::u16string_view text) const {
    const auto isHolder = [&](size_t number) { return entries_[number].name.find(text) != text.npos; };
    if (lookedAt_ < kLookedAtBeforeParts || text.size() < NameParts::kPieceUnits) {
        lookedAt_ += entries_.size();
        size_t number = 0;
        while (number < entries_.size() && !isHolder(number))
            ++number;
        return number;
    }
    while (parts_.size() < entries_.size())
        parts_.Add(entries_[parts_.size()].name);
    const std::vector<uint32_t>& numbers = parts_.HoldersOf(text);
    const auto found = std::find_if(numbers.begin(), numbers.end(), isHolder);
    return found == numbers.end() ? entries_.size() : *found;
}

const VariableTable::Entry* VariableTable::FindOverlap(std::u16string_view name) const {
    size_t first = FindHolder(name);
    names_.ForEachOccurrence(name, [&](uint32_t number, size_t) {
        first = std::min<size_t>(first, number);
        return true;
    });
    return first == entries_.size() ? nullptr : &entries_[first];
}

IndexedName SplitIndexedName(std::u16string_view text) {
    const size_t open = text.find(u'[');
    if (open == text.npos) return {std::u16string(text), {}};
    const size_t close = text.find(u']', open);
    if (close == text.npos || text.find_first_not_of(u']', close) != text.npos) return {std::u16string(text), {}};
    return {Trim(text.substr(0, open)), Trim(text.substr(open + 1, close - open - 1))};
}

std::u16string FormatIndexedName(std::u16string_view base, std::u16string_view index) {
    return std::u16string(base).append(u"[").append(index).append(u"]");
}

bool IsReservedWord(std::u16string_view word) {
    return std::any_of(std::begin(kReservedWords), std::end(kReservedWords),
                       [&](std::u16string_view reserved) { return EqualNoCase(word, reserved); });
}

std::u16string CheckVariableName(const VariableTable& table, std::u16string_view name) {
    if (IsReservedWord(name)) return std::u16string(kReservedMessage).append(name);
    if (table.Find(name) != nullptr) return std::u16string(ScriptErrorText(ScriptError::kAlreadyDeclared)).append(name);
    const VariableTable::Entry* const other = table.FindOverlap(name);
    if (other == nullptr) return {};
    const bool isInside = other->name.find(name) != other->name.npos;
    return std::u16string(ScriptErrorText(ScriptError::kNameOverlaps))
        .append(isInside ? name : std::u16string_view(other->name))
        .append(u"/")
        .append(isInside ? std::u16string_view(other->name) : name);
}

Declaration DeclareVariable(VariableTable& table, std::u16string_view text) {
    const std::u16string trimmed = Trim(text);
    if (trimmed.empty()) return {};
    const IndexedName name = SplitIndexedName(trimmed);
    const int32_t size = name.isIndexed() ? ReadInt32(name.index) : 0;
    if (size < 0) return {};
    const size_t wanted = std::max<size_t>(static_cast<size_t>(size), 1);
    if (wanted > VariableTable::kMaxEntries - table.entries().size()) {
        return {0, std::u16string(kTooManyMessage) + trimmed};
    }
    Declaration result;
    if (size > 0)
        DeclareArray(table, name.base, size, result);
    else
        DeclareOne(table, name.isIndexed() ? FormatIndexedName(name.base, name.index) : trimmed, result);
    return result;
}

bool ExpandVariables(const VariableTable& table, std::u16string& text) {
    if (ReplaceAtOnce(table, text)) return true;
    Occurring found = FindOccurring(table, text, 0);
    for (int pass = 0; pass < kMaxPasses && found.first != NameTrie::kNone; ++pass) {
        // Nothing is left of this pass when only earlier entries occur; they are the next pass's.
        for (found.next = found.first; found.next != NameTrie::kNone;) {
            const VariableTable::Entry& entry = table.entries()[found.next];
            if (!ReplaceWithin(text, entry.name, entry.value, kMaxExpandedLength)) return false;
            found = FindOccurring(table, text, found.next + 1);
        }
    }
    return true;
}

}  // namespace kinsort
