// Tables that are sorted at compile time and looked things up in by name.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "text/AsciiCase.h"

namespace kinsort {

// Names of tables in their order: by lower-cased units.
constexpr bool ComesBefore(std::u16string_view a, std::u16string_view b) {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [](char16_t x, char16_t y) { return AsciiLower(x) < AsciiLower(y); });
}

// The rows, sorted by `name`.
template <typename Row, size_t kCount>
consteval std::array<Row, kCount> SortedRows(std::u16string_view Row::*name, const Row (&rows)[kCount]) {
    std::array<Row, kCount> table = std::to_array(rows);
    std::sort(table.begin(), table.end(), [name](const Row& a, const Row& b) { return ComesBefore(a.*name, b.*name); });
    return table;
}

// True when every row has a name and a help text and no name occurs twice. (Whether a function is null is no constant
// to g++ under its sanitizers; a row that leaves its function out has no help text either.)
template <typename Table, typename Row>
consteval bool IsSoundTable(const Table& table, std::u16string_view Row::*name) {
    for (size_t i = 0; i < table.size(); ++i) {
        if ((table[i].*name).empty() || table[i].help.empty()) return false;
        if (i > 0 && !ComesBefore(table[i - 1].*name, table[i].*name)) return false;
    }
    return true;
}

// Null when no row has that name, without regard to case.
template <typename Table, typename Row>
const Row* FindRow(const Table& table, std::u16string_view Row::*name, std::u16string_view wanted) {
    const auto found =
        std::lower_bound(table.begin(), table.end(), wanted,
                         [name](const Row& row, std::u16string_view w) { return ComesBefore(row.*name, w); });
    return found == table.end() || ComesBefore(wanted, *&((*found).*name)) ? nullptr : &*found;
}

}  // namespace kinsort
