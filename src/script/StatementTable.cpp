#include "script/StatementTable.h"

#include "script/SortedTable.h"
#include "script/commands/HostStatements.h"
#include "script/commands/LocalStatements.h"

namespace kinsort {
namespace {

// To add a family of commands: its slice, here.
constexpr auto kStatements = JoinSlices(&StatementRow::keyword, kLocalStatements, kHostStatements);
static_assert(IsSoundTable(kStatements, &StatementRow::keyword), "a keyword occurs twice, or a row is incomplete");

}  // namespace

std::span<const StatementRow> Statements() {
    return kStatements;
}

const StatementRow* FindStatement(std::u16string_view keyword) {
    return FindRow(kStatements, &StatementRow::keyword, keyword);
}

}  // namespace kinsort
