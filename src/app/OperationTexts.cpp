#include "app/OperationTexts.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "app/DialogTemplate.h"
#include "framework/MessageNumbers.h"
#include "framework/Paths.h"
#include "text/Amounts.h"
#include "text/Numbers.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr double kLongestShown = 100.0 * 3600;  // seconds; beyond that nobody believes the number

struct KindRow {
    OperationKind kind;
    uint16_t progress;
    uint16_t done;
};
constexpr std::array<KindRow, 4> kKindRows = {{
    {OperationKind::kCopy, kMsgProgressCopy, kMsgSummaryCopied},
    {OperationKind::kMove, kMsgProgressMove, kMsgSummaryMoved},
    {OperationKind::kUndo, kMsgProgressUndo, kMsgSummaryUndone},
    {OperationKind::kRedo, kMsgProgressRedo, kMsgSummaryRedone},
}};
static_assert(kKindRows[1].kind == OperationKind::kMove && kKindRows[3].kind == OperationKind::kRedo);

const KindRow& RowOf(OperationKind kind) {
    return kKindRows[static_cast<size_t>(kind)];
}

std::u16string Number(uint64_t number) {
    return FormatInteger(static_cast<int64_t>(number));
}

std::u16string Size(double bytes) {
    return FromUtf8(FormatSize(bytes));
}

std::u16string Moment(int64_t ns) {
    return FromUtf8(FormatLocalTime(ns));
}

int PermilleOf(const ProgressState& state) {
    if (state.phase == BatchPhase::kPlanning) return -1;
    const bool byBytes = state.bytesTotal > 0;
    const auto total = static_cast<double>(byBytes ? state.bytesTotal : state.itemsTotal);
    const auto done = static_cast<double>(byBytes ? state.bytesDone : state.itemsDone);
    return total > 0 ? static_cast<int>(std::clamp(done / total, 0.0, 1.0) * 1000) : -1;
}

}  // namespace

std::u16string OperationTexts::Counted(uint16_t number, uint64_t count) {
    return messages_.GetMessageText(number, {Number(count)});
}

std::u16string OperationTexts::Shown(std::u16string_view path) const {
    return FromUtf8(codec_.PathForPeople(path));
}

// --- progress --------------------------------------------------------------------------------------------------------

std::u16string OperationTexts::TimeLeft(double seconds) {
    const auto whole = static_cast<uint64_t>(std::ceil(seconds));
    if (whole < 60) return Counted(kMsgProgressSeconds, whole);
    const uint64_t minutes = (whole + 59) / 60;
    if (minutes < 60) return Counted(kMsgProgressMinutes, minutes);
    return messages_.GetMessageText(kMsgProgressHours, {Number(minutes / 60), Number(minutes % 60)});
}

std::u16string OperationTexts::Figures(const ProgressState& state) {
    std::u16string text;
    if (state.bytesTotal > 0) {
        text = messages_.GetMessageText(
            kMsgProgressBytes, {Size(static_cast<double>(state.bytesDone)), Size(static_cast<double>(state.bytesTotal)),
                                Size(state.bytesPerSecond)});
    }
    // Once every byte is there, only names are left to be made, and the bytes' rate says nothing about those.
    const bool onlyNamesLeft = state.bytesTotal > 0 && state.bytesDone >= state.bytesTotal;
    if (!onlyNamesLeft && state.secondsLeft >= 0 && state.secondsLeft < kLongestShown) {
        if (!text.empty()) text += u' ';
        text += TimeLeft(state.secondsLeft);
    }
    return text;
}

ProgressTexts OperationTexts::Progress(OperationKind kind, const ProgressState& state, bool isStopping) {
    ProgressTexts texts;
    texts.title = Text(RowOf(kind).progress);
    texts.cancel = Text(kMsgCancel);
    texts.permille = PermilleOf(state);
    texts.isStopping = isStopping;
    if (!state.currentName.empty()) texts.name = Shown(state.currentName);
    if (isStopping) {
        texts.headline = Text(kMsgProgressCancelling);
    } else if (state.phase == BatchPhase::kPlanning) {
        texts.headline = Text(kMsgProgressPreparing);
    } else {
        texts.headline =
            messages_.GetMessageText(kMsgProgressItems, {Number(state.itemsDone), Number(state.itemsTotal)});
        texts.figures = Figures(state);
    }
    return texts;
}

// --- questions -------------------------------------------------------------------------------------------------------

ConflictSideTexts OperationTexts::Side(uint16_t heading, const ConflictSide& side) {
    const std::u16string time = Moment(side.modifiedNs);
    return {Text(heading), Shown(side.path),
            side.kind == FileKind::kFile
                ? messages_.GetMessageText(kMsgSizeAndTime, {Size(static_cast<double>(side.size)), time})
                : time};
}

ConflictQuestion OperationTexts::Ask(const Conflict& conflict) {
    ConflictQuestion question;
    question.title = Text(kMsgConflictTitle);
    const std::u16string folder = RemoveTrailingSeparatorKeepRoot(GetDirectoryPart(conflict.target.path));
    question.instruction =
        messages_.GetMessageText(conflict.target.kind == FileKind::kFolder ? kMsgConflictFolder : kMsgConflictFile,
                                 {Shown(GetFileNamePart(conflict.item.path)), Shown(folder)});
    question.item = Side(kMsgConflictNew, conflict.item);
    question.target = Side(kMsgConflictOld, conflict.target);
    if (conflict.canReplace) {
        question.instruction += u'\n';
        question.instruction += Text(kMsgConflictUndoHint);
        question.buttons.push_back(
            {Text(conflict.isMerge ? kMsgConflictMerge : kMsgConflictReplace), ConflictAnswer::kReplace});
    }
    question.defaultButton = question.buttons.size();  // to skip harms nothing
    question.buttons.push_back({Text(kMsgConflictSkip), ConflictAnswer::kSkip});
    question.buttons.push_back({Text(kMsgConflictKeepBoth), ConflictAnswer::kKeepBoth});
    question.buttons.push_back({Text(kMsgStopBatch), ConflictAnswer::kCancel});
    question.forAll = Text(kMsgConflictAll);
    return question;
}

ButtonQuestion OperationTexts::AskFailure(std::u16string_view path, const Status& why) {
    return {.title = std::u16string(kProgramTitle),
            .instruction = messages_.GetMessageText(kMsgRetryQuestion, {Shown(path), StatusText(why)}),
            .buttons = {Text(kMsgRetry), Text(kMsgConflictSkip), Text(kMsgStopBatch)},
            .defaultButton = 0,
            .escapeButton = 2};
}

ButtonQuestion OperationTexts::AskRecovery(const BatchSummary& batch) {
    // How many items were done is not said: what was torn is just what nobody wrote down any more.
    return {.title = std::u16string(kProgramTitle),
            .instruction = messages_.GetMessageText(batch.isUndoTorn ? kMsgUndoUnfinished : kMsgBatchUnfinished,
                                                    {Shown(batch.searchFolder), Moment(batch.startedNs)}),
            .buttons = {Text(kMsgRecoverFinish), Text(kMsgRecoverUndo), Text(kMsgRecoverLeave)},
            .defaultButton = 0,
            .escapeButton = 2};
}

// --- the outcome -----------------------------------------------------------------------------------------------------

std::u16string OperationTexts::StatusText(const Status& status) {
    const auto number = static_cast<uint16_t>(kMsgStatusFirst + static_cast<uint16_t>(status.code()));
    return messages_.GetMessageText(
        number, {status.systemText().empty() ? Number(static_cast<uint64_t>(std::abs(status.systemCode())))
                                             : status.systemText()});
}

std::u16string OperationTexts::ReasonText(const ItemReport& report) {
    ItemReason reason = report.reason;
    if (reason == ItemReason::kNone && report.outcome == ItemOutcome::kNotReached) reason = ItemReason::kCancelled;
    std::u16string text = reason == ItemReason::kSystem
                              ? StatusText(report.status)
                              : Text(static_cast<uint16_t>(kMsgReasonFirst + static_cast<uint16_t>(reason)));
    const std::u16string& about = report.status.path();
    if (!about.empty() && about != report.source) text += u" (" + Shown(about) + u")";
    return text;
}

std::vector<std::u16string> OperationTexts::Notes(const BatchResult& result) {
    std::vector<std::u16string> notes;
    const auto add = [&](uint16_t number, uint64_t count) {
        if (count > 0) notes.push_back(Counted(number, count));
    };
    add(kMsgSummarySkipped, result.skipped);
    add(kMsgSummaryFailed, result.failed);
    add(kMsgSummaryCancelled, result.notReached);
    if (result.cancelled) notes.push_back(Text(kMsgUntouched));
    if (!result.status.ok()) {
        std::u16string reason = StatusText(result.status);
        if (!result.status.path().empty()) reason = Shown(result.status.path()) + u": " + reason;
        notes.push_back(messages_.GetMessageText(result.done == 0 ? kMsgBatchNotStarted : kMsgBatchStopped, {reason}));
    }
    for (const BatchWarning warning : result.warnings)
        notes.push_back(Text(static_cast<uint16_t>(kMsgWarningFirst + static_cast<uint16_t>(warning))));
    return notes;
}

OperationSummary OperationTexts::Summarize(OperationKind kind, const BatchResult& result, bool canUndo) {
    OperationSummary summary = SayOnly(kMsgSummaryNothing);
    if (result.done > 0) summary.headline = Counted(RowOf(kind).done, result.done);
    summary.notes = Notes(result);
    for (const ItemReport& report : result.reports) {
        if (report.outcome == ItemOutcome::kNotReached && result.cancelled) continue;  // counted in the notes
        summary.rows.push_back({Shown(report.source), ReasonText(report)});
    }
    if (canUndo) summary.buttons.insert(summary.buttons.begin(), Text(kMsgSummaryUndo));
    return summary;
}

OperationSummary OperationTexts::SayOnly(uint16_t number) {
    return {.title = Text(kMsgSummaryTitle),
            .headline = Text(number),
            .notes = {},
            .rows = {},
            .nameColumn = Text(kMsgSummaryColumnItem),
            .reasonColumn = Text(kMsgSummaryColumnReason),
            .buttons = {Text(kMsgSummaryClose)}};
}

UndoOffer OperationTexts::Offer(OperationKind kind, const BatchResult& result, std::u16string_view folder) {
    UndoOffer offer{.title = Text(kMsgNotifyTitle),
                    .text = messages_.GetMessageText(kind == OperationKind::kMove ? kMsgNotifyMoved : kMsgNotifyCopied,
                                                     {Number(result.done), Shown(folder)}),
                    .undo = Text(kMsgSummaryUndo)};
    for (const std::u16string& note : Notes(result))
        offer.text += u"\n" + note;
    return offer;
}

}  // namespace kinsort
