#include "script/ScriptLine.h"

#include <algorithm>
#include <array>

#include "script/OptionLines.h"
#include "script/StatementTable.h"
#include "text/AsciiCase.h"
#include "text/Trim.h"

namespace kinsort {
namespace {

struct Word {
    std::u16string_view word;  // lower case
    LineKind kind;
};

// The whole statement must be the word.
constexpr std::array kStatementWords = {
    Word{u"debug", LineKind::kNothing},
    Word{u"updatestate", LineKind::kNothing},
    Word{u"eof", LineKind::kEndOfFile},
    Word{u"fileclose", LineKind::kFileClose},
    Word{u"removeselectitems", LineKind::kRemoveSelectItems},
    Word{u"else", LineKind::kElse},
    Word{u"endif", LineKind::kEndIf},
    Word{u"exitall", LineKind::kExitAll},
    Word{u"exit", LineKind::kExit},
    Word{u"do", LineKind::kDo},
};
// The first word of the statement, blanks behind it.
constexpr std::array kHeadWords = {
    Word{u"for", LineKind::kFor},     Word{u"next", LineKind::kNext},
    Word{u"while", LineKind::kWhile}, Word{u"continue", LineKind::kContinue},
    Word{u"break", LineKind::kBreak}, Word{u"goto", LineKind::kGoto},
    Word{u"if", LineKind::kIf},       Word{u"var", LineKind::kVar},
};

size_t CountWords(std::u16string_view text) {
    size_t count = 0;
    bool isInside = false;
    for (const char16_t unit : text) {
        if (unit != u' ' && !isInside) ++count;
        isInside = unit != u' ';
    }
    return count;
}

template <typename Table>
const Word* Find(const Table& table, std::u16string_view word) {
    const auto found = std::find_if(table.begin(), table.end(), [word](const Word& row) { return row.word == word; });
    return found == table.end() ? nullptr : &*found;
}

LineKind Classify(std::u16string_view statement) {
    if (statement.empty() || statement.starts_with(u"//")) return LineKind::kNothing;
    const std::u16string lower = AsciiLower(statement);
    if (const Word* const word = Find(kStatementWords, lower)) return word->kind;
    const Word* const head = Find(kHeadWords, TrimView(std::u16string_view(lower).substr(0, lower.find(u' '))));
    return head == nullptr ? LineKind::kStatement : head->kind;
}

}  // namespace

std::vector<std::u16string_view> StatementWords() {
    std::vector<std::u16string_view> words;
    for (const Word& row : kStatementWords)
        words.push_back(row.word);
    for (const Word& row : kHeadWords)
        words.push_back(row.word);
    return words;
}

std::unique_ptr<ScriptLine> ParseScriptLine(std::u16string raw, int32_t number) {
    auto line = std::make_unique<ScriptLine>();
    line->raw = std::move(raw);
    line->text = line->raw;
    std::replace(line->text.begin(), line->text.end(), u'\t', u' ');
    line->number = number;
    line->statement = TrimView(line->text);
    line->kind = Classify(line->statement);
    line->words = CountWords(line->statement);
    line->isPlainNext = EqualNoCase(line->statement, u"next");

    const size_t equals = line->statement.find(u'=');
    line->hasValue = equals != std::u16string_view::npos;
    if (!line->hasValue) return line;
    line->target = TrimView(line->statement.substr(0, equals));
    line->key = AsciiLower(line->target);
    line->value = TrimView(line->statement.substr(equals + 1));
    line->option = FindOptionLine(line->key);
    line->command = FindStatement(line->key);
    return line;
}

}  // namespace kinsort
