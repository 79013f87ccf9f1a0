// Any names, values and text, one a line: expansion gives what its obvious version gives, and declarations never let
// one name be part of another.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "script/VariableTable.h"
#include "text/Split.h"

namespace {

using namespace kinsort;

void Require(bool holds) {
    if (!holds) std::abort();
}

// Every entry in every pass, ten passes. False when it gets too long to compare.
bool ExpandSlowly(const VariableTable& table, std::u16string& text) {
    bool replaced = true;
    for (int pass = 0; pass < 10 && replaced; ++pass) {
        replaced = false;
        for (const VariableTable::Entry& entry : table.entries()) {
            if (entry.name == entry.value || text.find(entry.name) == text.npos) continue;
            if (!ReplaceWithin(text, entry.name, entry.value, size_t{1} << 16)) return false;
            replaced = true;
        }
    }
    return true;
}

void CheckExpansion(const std::vector<std::u16string>& lines) {
    VariableTable table;
    for (size_t i = 1; i + 1 < lines.size(); i += 2)
        table.Create(lines[i], lines[i + 1]);
    std::u16string slow = lines[0];
    if (!ExpandSlowly(table, slow)) return;
    std::u16string fast = lines[0];
    Require(ExpandVariables(table, fast));
    Require(fast == slow);
}

void CheckDeclarations(const std::vector<std::u16string>& lines) {
    VariableTable table;
    for (const std::u16string& line : lines) {
        if (line.size() > 40) continue;
        if (DeclareVariable(table, line.find(u'[') == line.npos ? line : line.substr(0, 6)).created > 1000) return;
    }
    const auto& entries = table.entries();
    for (size_t i = 0; i < entries.size() && i < 40; ++i)
        for (size_t j = 0; j < entries.size() && j < 40; ++j)
            Require(i == j || entries[i].name.find(entries[j].name) == entries[i].name.npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::vector<std::u16string> lines = Split(std::u16string(data, data + size), u'\n');
    CheckExpansion(lines);
    CheckDeclarations(lines);
    return 0;
}
