// The variables of a run: text to text, in the order of their declaration. Array elements are ordinary entries named
// "base[index]". Names are case-sensitive, and since a variable is used by writing its name anywhere in a text, no
// declared name may be part of another one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "script/NameParts.h"
#include "script/NameTrie.h"

namespace kinsort {

class VariableTable {
  public:
    // More are never declared: an array of two thousand million elements gets a message, not all memory there is.
    static constexpr size_t kMaxEntries = 1'000'000;

    struct Entry {
        std::u16string name;
        std::u16string value;
        bool isReplaced;  // the value differs from the name, so that writing the name means something
    };

    // In the order of declaration.
    const std::vector<Entry>& entries() const { return entries_; }
    bool empty() const { return entries_.empty(); }
    // Of all names and values together, in code units.
    size_t units() const { return units_; }

    // The value, valid until the next change; null for a name that is not declared.
    const std::u16string* Find(std::u16string_view name) const;

    // Adds an entry whatever its name looks like (CheckVariableName is for the caller). False, and nothing changed,
    // when the name is empty or taken or the table holds kMaxEntries.
    bool Create(std::u16string_view name, std::u16string_view value = {});

    // False, and nothing changed, when the name is not declared.
    bool Assign(std::u16string_view name, std::u16string value);

    // The same in two steps. Entries never move or go away, so an index stays good.
    std::optional<size_t> IndexOf(std::u16string_view name) const;
    void AssignAt(size_t index, std::u16string value);

    // The first entry whose name contains `name` or is contained in it; null when there is none.
    const Entry* FindOverlap(std::u16string_view name) const;

    // The names by their characters; values are indices into entries().
    const NameTrie& names() const { return names_; }

    // True when some name occurs in the text.
    bool HoldsNameWithin(std::u16string_view text) const;

  private:
    // The first entry whose name holds the text; the number of entries when there is none.
    size_t FindHolder(std::u16string_view text) const;

    std::vector<Entry> entries_;
    size_t units_ = 0;
    NameTrie names_;
    // Made when so many names were looked at one by one that it pays.
    mutable NameParts parts_;
    mutable size_t lookedAt_ = 0;
};

// "a[i]" as base and index, both trimmed. The index is empty for a plain name and for a text that is malformed (the
// bracket never closed, or something behind it); the base is then the whole text, unchanged.
struct IndexedName {
    std::u16string base;
    std::u16string index;

    bool isIndexed() const { return !index.empty(); }
};
IndexedName SplitIndexedName(std::u16string_view text);

// "base[index]".
std::u16string FormatIndexedName(std::u16string_view base, std::u16string_view index);

// True for the words that the language keeps for itself, without regard to case.
bool IsReservedWord(std::u16string_view word);

// Empty when the name may be declared, else the message that says why not.
std::u16string CheckVariableName(const VariableTable& table, std::u16string_view name);

// Declares what stands behind "var": a name, "a[3]" (a[0], a[1] and a[2]), or "a[key]" (that one element; a[0] is one
// too). Elements that were made before one failed stay.
struct Declaration {
    int32_t created = 0;     // entries; 0 is failure
    std::u16string message;  // why it failed; empty for an empty name and a negative size, which fail silently
};
Declaration DeclareVariable(VariableTable& table, std::u16string_view text);

// No text that expansion makes may be longer than this, in code units. A variable whose value holds its own name many
// times grows by that factor with every pass and would soon be larger than any machine.
constexpr size_t kMaxExpandedLength = size_t{64} << 20;

// Replaces names by values, anywhere in the text: a pass takes every entry in order and replaces each occurrence of its
// name, and passes repeat while one replaced something, ten at most. So with x holding "i" and i holding "5", "x" gives
// "5", and "a[i]" gives the value of a[5].
//
// False, and `text` good for nothing, when the result would be longer than kMaxExpandedLength; say
// kExpandedTooLongMessage.
[[nodiscard]] bool ExpandVariables(const VariableTable& table, std::u16string& text);

// Followed by the line, as every message of the language is.
constexpr std::u16string_view kExpandedTooLongMessage =
    u"The line is too long with its variables filled in (more than 67108864 characters).\n";

}  // namespace kinsort
