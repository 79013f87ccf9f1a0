#include "script/check/BlockCheck.h"

#include <algorithm>
#include <array>

#include "script/ScriptSource.h"

namespace kinsort {
namespace {

struct BlockWords {
    LineKind opener;
    std::u16string_view open;
    std::u16string_view close;
};
constexpr std::array kBlockWords = {
    BlockWords{LineKind::kIf, u"if", u"endif"},
    BlockWords{LineKind::kFor, u"for", u"next"},
    BlockWords{LineKind::kDo, u"do", u"while"},
};

const BlockWords& WordsOf(LineKind opener) {
    return *std::find_if(kBlockWords.begin(), kBlockWords.end(),
                         [opener](const BlockWords& words) { return words.opener == opener; });
}

bool Leaves(const ScriptLine& line) {
    switch (line.kind) {
        case LineKind::kExit:
        case LineKind::kExitAll:
        case LineKind::kGoto:
        case LineKind::kBreak:
        case LineKind::kContinue:
            return true;
        default:
            return false;
    }
}

// Lines where a run can come from elsewhere, or that only end something.
bool CanBeReached(const ScriptLine& line) {
    switch (line.kind) {
        case LineKind::kEndOfFile:
        case LineKind::kElse:
        case LineKind::kEndIf:
        case LineKind::kNext:
        case LineKind::kWhile:
            return true;
        default:
            return !LabelName(line.statement).empty();
    }
}

}  // namespace

bool BlockCheck::IsInside(LineKind opener) const {
    return std::any_of(open_.begin(), open_.end(), [opener](const OpenBlock& block) { return block.opener == opener; });
}

void BlockCheck::VisitElse(const ScriptLine& line) {
    const auto block =
        std::find_if(open_.rbegin(), open_.rend(), [](const OpenBlock& open) { return open.opener == LineKind::kIf; });
    if (block == open_.rend()) {
        findings_.Add(line, line.statement, "block", u"\"else\" without \"if\"");
    } else if (block->hasElse) {
        findings_.Add(line, line.statement, "block",
                      u"a second \"else\" for the \"if\" of " + LineName(block->line->number));
    } else {
        block->hasElse = true;
    }
}

void BlockCheck::Close(const ScriptLine& line, LineKind opener) {
    const BlockWords& words = WordsOf(opener);
    const auto block =
        std::find_if(open_.rbegin(), open_.rend(), [opener](const OpenBlock& open) { return open.opener == opener; });
    if (block == open_.rend()) {
        findings_.Add(line, HeadOf(line.statement), "block", Quoted(words.close) + u" without " + Quoted(words.open));
        return;
    }
    if (block != open_.rbegin()) {
        findings_.Add(line, HeadOf(line.statement), "block",
                      Quoted(words.close) + u" of the " + Quoted(words.open) + u" of " + LineName(block->line->number) +
                          u" while the " + Quoted(WordsOf(open_.back().opener).open) + u" of " +
                          LineName(open_.back().line->number) + u" is still open");
    }
    open_.erase(std::next(block).base());
}

void BlockCheck::VisitUnreachable(const ScriptLine& line) {
    if (line.kind == LineKind::kNothing) return;
    if (leaving_ != 0 && !CanBeReached(line)) {
        findings_.Add(line, line.statement, "unreachable",
                      u"this line is never run: " + LineName(leaving_) + u" always leaves");
    }
    leaving_ = Leaves(line) ? line.number : 0;
}

void BlockCheck::Visit(const std::shared_ptr<const ScriptLine>& visited) {
    const ScriptLine& line = *visited;
    VisitUnreachable(line);
    switch (line.kind) {
        case LineKind::kFor:
            if (isInFor()) {
                findings_.Add(line, HeadOf(line.statement), "nested-loop",
                              u"a \"for\" inside of a \"for\": both walk the same items together");
            }
            [[fallthrough]];
        case LineKind::kIf:
        case LineKind::kDo:
            open_.push_back({line.kind, visited, false});
            break;
        case LineKind::kElse:
            VisitElse(line);
            break;
        case LineKind::kEndIf:
            Close(line, LineKind::kIf);
            break;
        case LineKind::kNext:
            if (!line.isPlainNext) {
                findings_.Add(line, line.statement, "block",
                              u"only a line that is nothing but \"next\" ends a loop that is skipped");
            }
            Close(line, LineKind::kFor);
            break;
        case LineKind::kWhile:
            Close(line, LineKind::kDo);
            break;
        case LineKind::kContinue:
        case LineKind::kBreak:
            if (!isInLoop())
                findings_.Add(line, HeadOf(line.statement), "block",
                              Quoted(HeadOf(line.statement)) + u" outside of a loop");
            break;
        default:
            break;
    }
}

void BlockCheck::Finish() {
    for (const OpenBlock& block : open_) {
        const BlockWords& words = WordsOf(block.opener);
        findings_.Add(*block.line, HeadOf(block.line->statement), "block",
                      Quoted(words.open) + u" without " + Quoted(words.close));
    }
    open_.clear();
}

}  // namespace kinsort
