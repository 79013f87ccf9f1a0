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

template <typename Table>
const Word* Find(const Table& table, std::u16string_view word) {
    const auto found = std::find_if(table.begin(), table.end(), [word](const Word& row) { return row.word == word; });
    return found == table.end() ? nullptr : &*found;
}

// Sets the kind of the line, and the operand where it has one.
void Classify(ScriptLine& line) {
    line.kind = LineKind::kNothing;
    if (line.statement.empty() || line.statement.starts_with(u"//")) return;
    line.kind = LineKind::kStatement;
    if (const Word* const word = Find(kStatementWords, AsciiLower(line.statement))) {
        line.kind = word->kind;
    } else if (const Word* const head = Find(kHeadWords, AsciiLower(TrimView(HeadOf(line.statement))))) {
        line.kind = head->kind;
        line.operand = TrimView(line.statement.substr(head->word.size()));
    }
}

void SplitAtEquals(ScriptLine& line) {
    const bool isDeclaration = line.kind == LineKind::kVar;
    line.hasValue = line.statement.find(u'=') != std::u16string_view::npos;
    if (!line.hasValue && !isDeclaration) return;
    const std::u16string_view assignment = isDeclaration ? line.operand : std::u16string_view(line.text);
    const size_t equals = std::min(assignment.find(u'='), assignment.size());
    line.target = TrimView(assignment.substr(0, equals));
    line.key = AsciiLower(line.target);
    if (line.hasValue) line.right = assignment.substr(equals + 1);
    line.value = TrimView(line.right);
    if (line.kind != LineKind::kStatement) return;
    line.option = FindOptionLine(line.key);
    line.command = FindStatement(line.key);
}

}  // namespace

std::u16string_view HeadOf(std::u16string_view statement) {
    return statement.substr(0, statement.find(u' '));
}

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
    Classify(*line);
    line->isPlainNext = EqualNoCase(line->statement, u"next");

    line->condition = SplitCondition(line->operand);
    SplitAtEquals(*line);
    return line;
}

}  // namespace kinsort
