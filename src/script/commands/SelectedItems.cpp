// The statements that change the list of selected items.
#include <algorithm>

#include "platform/LocaleMap.h"
#include "script/MatchingEntries.h"
#include "script/ScriptLine.h"
#include "script/ScriptRun.h"
#include "script/commands/Statements.h"
#include "text/Split.h"
#include "text/Trim.h"
#include "text/Wildcard.h"

namespace kinsort {

namespace {

// What protects the user's machine from a loop over the items that adds one in every round.
constexpr size_t kMaxAppendedCount = 200'000;
constexpr size_t kShortItemUnits = 1'024;
constexpr size_t kMaxItemUnits = size_t{128} << 20;  // of all items together; looked at when a long one comes

LineOutcome Append(ScriptRun& run, const StatementCall& call, std::u16string item) {
    std::vector<std::u16string>& items = run.selectedItems;
    size_t units = 0;
    if (item.size() > kShortItemUnits) {
        for (const std::u16string& other : items)
            units += other.size();
    }
    if (items.size() >= kMaxAppendedCount || units + item.size() > kMaxItemUnits) {
        run.FailWith(std::u16string(u"There are too many selected items.\n").append(call.line.statement));
        run.session.ending = ScriptEnding::kLimit;
        return LineOutcome::kEndWithZero;
    }
    items.push_back(std::move(item));
    return LineOutcome::kNextLine;
}

std::u16string LowerCase(const LocaleMap& locale, std::u16string text) {
    for (char16_t& unit : text)
        unit = locale.LowerCase(unit);
    return text;
}

}  // namespace

LineOutcome RunAppendSelectItem(ScriptRun& run, const StatementCall& call) {
    return Append(run, call, std::u16string(call.value));
}

LineOutcome RunAppendCsvSelectItem(ScriptRun& run, const StatementCall& call) {
    LineOutcome outcome = LineOutcome::kNextLine;
    for (const std::u16string& piece : Split(call.value, u',')) {
        outcome = Append(run, call, Trim(piece));
        if (outcome != LineOutcome::kNextLine) break;
    }
    return outcome;
}

LineOutcome RunGetSelectItems(ScriptRun& run, const StatementCall& call) {
    ListMatchingEntries(run.services.files, call.value, run.selectedItems);
    return LineOutcome::kNextLine;
}

LineOutcome RunRemoveSelectItemsLike(ScriptRun& run, const StatementCall& call) {
    if (run.scope.forIndex != -1) return run.FailWith(u"RemoveSelectItems can not be executed within the loop.");
    std::u16string_view list = call.value;
    const bool keepsMatches = list.size() > 1 && list.front() == u'!';
    if (keepsMatches) list = TrimView(list.substr(1));
    const LocaleMap& locale = run.services.locale;
    const std::vector<std::u16string> patterns = SplitSkippingEmpty(LowerCase(locale, std::u16string(list)), u';');
    std::erase_if(run.selectedItems, [&](const std::u16string& item) {
        const std::u16string lower = LowerCase(locale, item);
        const bool matches = std::ranges::any_of(
            patterns, [&lower](const std::u16string& pattern) { return WildcardMatch(lower, pattern); });
        return matches != keepsMatches;
    });
    return LineOutcome::kNextLine;
}

}  // namespace kinsort
