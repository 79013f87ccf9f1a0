#include "cli/ConsoleAsker.h"

#include <array>

#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "text/Amounts.h"
#include "text/AsciiCase.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

struct AnswerWord {
    std::string_view word;
    ConflictAnswer answer;
};

constexpr std::array<AnswerWord, 4> kAnswers = {{
    {"replace", ConflictAnswer::kReplace},
    {"skip", ConflictAnswer::kSkip},
    {"keep both", ConflictAnswer::kKeepBoth},
    {"cancel", ConflictAnswer::kCancel},
}};

std::string_view KindText(FileKind kind) {
    constexpr std::array<std::string_view, 4> kTexts = {"file", "folder", "link", "special file"};
    return kTexts[static_cast<size_t>(kind)];
}

}  // namespace

bool ReadConflictReply(std::string_view typed, bool canReplace, ConflictReply& reply) {
    bool isForAll = !typed.empty() && typed[0] >= 'A' && typed[0] <= 'Z';
    std::string text = ToUtf8(AsciiLower(FromUtf8(typed)));
    for (const std::string_view suffix : {" all", " a"}) {
        if (!text.ends_with(suffix)) continue;
        isForAll = true;
        text.resize(text.size() - suffix.size());
        break;
    }
    if (text.size() == 2 && text[1] == 'a') {
        isForAll = true;
        text.pop_back();
    }
    for (const AnswerWord& row : kAnswers) {
        if (text != row.word && text != row.word.substr(0, 1)) continue;
        if (row.answer == ConflictAnswer::kReplace && !canReplace) return false;
        reply = {row.answer, isForAll ? AnswerScope::kAllInBatch : AnswerScope::kThisOne};
        return true;
    }
    return false;
}

std::string ConsoleAsker::DescribeSide(std::string_view label, const ConflictSide& side) const {
    std::string line =
        "  " + std::string(label) + context_.ShownPath(side.path) + "  (" + std::string(KindText(side.kind));
    if (side.kind == FileKind::kFile) line += ", " + FormatSize(static_cast<double>(side.size));
    return line + ", " + FormatLocalTime(side.modifiedNs) + ")\n";
}

ConflictReply ConsoleAsker::AskConflict(const Conflict& conflict) {
    if (!context_.console.CanAsk()) {
        if (unanswered_ == 0) {
            progress_.Clear();
            context_.console.Say(
                "some names are taken and nobody can be asked here, so these items are skipped; "
                "choose with --on-conflict");
        }
        ++unanswered_;
        return {ConflictAnswer::kSkip, AnswerScope::kThisOne};
    }
    progress_.Clear();
    std::string question =
        "The name is taken:\n" + DescribeSide("new: ", conflict.item) + DescribeSide("old: ", conflict.target);
    const std::string choices = conflict.isMerge      ? "[r]eplace (merge the folders), "
                                : conflict.canReplace ? "[r]eplace, "
                                                      : "";
    question += choices + "[s]kip, [k]eep both, [c]ancel; a capital letter answers for all: ";
    context_.console.PutMessage(question);
    while (const std::optional<std::string> typed = context_.console.ReadReply()) {
        ConflictReply reply;
        if (ReadConflictReply(*typed, conflict.canReplace, reply)) return reply;
        context_.console.PutMessage(conflict.canReplace ? "Please type r, s, k or c: " : "Please type s, k or c: ");
    }
    return {ConflictAnswer::kCancel, AnswerScope::kAllInBatch};
}

FailureAnswer ConsoleAsker::AskFailure(const std::u16string& path, const Status& why) {
    if (!context_.console.CanAsk()) return FailureAnswer::kSkip;
    progress_.Clear();
    const std::string question =
        context_.ShownPath(path) + ": " + StatusText(why) + "\n[t]ry again, [s]kip this item, [c]ancel: ";
    switch (context_.console.AskLetter(question, "t|s|c")) {
        case 't':
            return FailureAnswer::kRetry;
        case 's':
            return FailureAnswer::kSkip;
        default:
            return FailureAnswer::kCancel;
    }
}

}  // namespace kinsort
