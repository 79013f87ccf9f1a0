#include "cli/BatchReport.h"

#include <algorithm>

#include "cli/ShownText.h"

namespace kinsort {
namespace {

bool HasSubject(BatchAction action) {
    return action != BatchAction::kCopy && action != BatchAction::kMove;
}

std::string FailureLine(const CliContext& context, const BatchReport& report, const ItemReport& item) {
    std::string line =
        context.ShownPath(item.source) + ": " + OutcomeText(item.outcome, report.action) + ": " + ReasonText(item);
    if (!item.status.path().empty() && item.status.path() != item.source) {
        line += " (" + context.ShownPath(item.status.path()) + ")";
    }
    return line;
}

bool IsAboutTheBatch(StatusCode code) {
    return code == StatusCode::kNotFound || code == StatusCode::kInvalid || code == StatusCode::kLocked ||
           code == StatusCode::kCorrupt || code == StatusCode::kTooNew;
}

std::string WholeFailureText(const CliContext& context, const BatchReport& report) {
    const Status& status = report.result.status;
    const std::string batch = HasSubject(report.action) ? "batch " + std::to_string(report.subject) + ": " : "";
    if (!status.path().empty()) return batch + context.ShownPath(status.path()) + ": " + StatusText(status);
    if (!batch.empty() && IsAboutTheBatch(status.code())) return batch + BatchStatusText(status);
    // What stops a whole batch without the name of a file is its journal.
    return batch + "the undo journal in " + ShownText(report.journalFolder) + ": " + StatusText(status);
}

void PrintAdvice(CliContext& context, const BatchReport& report) {
    const BatchResult& result = report.result;
    if (result.done == 0 || context.console.isQuiet()) return;
    const std::string id = std::to_string(HasSubject(report.action) ? report.subject : result.id);
    context.console.Print(report.action == BatchAction::kUndo ? "Do it again with: kinsort redo " + id + "\n"
                                                              : "Take it back with: kinsort undo " + id + "\n");
}

void WritePath(JsonWriter& json, const CliContext& context, std::string_view name, std::u16string_view path) {
    if (!path.empty()) {
        json.Path(name, context.NativePath(path));
        return;
    }
    json.Null(name);
}

void WriteItemEnd(JsonWriter& json, std::string_view outcome, std::string_view reason, std::string_view message) {
    json.String("outcome", outcome);
    json.String("reason", reason);
    json.String("message", message);
    json.EndObject();
}

void WriteItems(JsonWriter& json, const CliContext& context, const BatchReport& report) {
    json.BeginArray("items");
    for (const ItemReport& item : report.result.reports) {
        json.BeginObject();
        WritePath(json, context, "item", item.source);
        WritePath(json, context, "target", item.target);
        WriteItemEnd(json, OutcomeKeyword(item.outcome), ReasonKeyword(item), ReasonText(item));
    }
    for (const std::u16string& item : report.withoutCandidate) {
        json.BeginObject();
        WritePath(json, context, "item", item);
        WritePath(json, context, "target", {});
        WriteItemEnd(json, "no-candidate", "no-candidate", "no folder has a similar name");
    }
    for (const MissingItem& item : report.missing) {
        json.BeginObject();
        json.Path("item", item.nativePath);
        WritePath(json, context, "target", {});
        WriteItemEnd(json, "failed", StatusKeyword(item.why.code()), StatusText(item.why));
    }
    json.EndArray();
}

// Items that were passed over although nobody chose that: a pipe that cannot be copied.
uint64_t SkippedAgainstTheWish(const BatchResult& result) {
    return static_cast<uint64_t>(
        std::count_if(result.reports.begin(), result.reports.end(), [](const ItemReport& item) {
            return item.outcome == ItemOutcome::kSkipped && item.reason != ItemReason::kConflictSkipped &&
                   item.reason != ItemReason::kDuplicate;
        }));
}

}  // namespace

void PrintReport(CliContext& context, const BatchReport& report) {
    const BatchResult& result = report.result;
    for (const ItemReport& item : result.reports) {
        if (item.outcome == ItemOutcome::kNotReached && result.cancelled) continue;  // counted below
        context.console.Say(FailureLine(context, report, item));
    }
    for (const BatchWarning warning : result.warnings)
        context.console.Say("note: " + std::string(WarningText(warning)));
    if (!result.status.ok()) context.console.Say(WholeFailureText(context, report));
    if (result.cancelled) context.console.Say("stopped; every item is either wholly done or untouched");
    std::string summary = DoneText(report.action, result.done);
    const auto add = [&summary](uint64_t count, std::string_view what) {
        if (count > 0) summary += ", " + std::to_string(count) + " " + std::string(what);
    };
    add(result.skipped, "skipped");
    add(result.failed + report.missing.size(), "failed");
    add(result.notReached, "not reached");
    const bool neverBegan = !result.status.ok() && summary == DoneText(report.action, 0);
    if (!context.console.isQuiet() && !neverBegan) context.console.Print(summary + ".\n");
    if (!report.withoutCandidate.empty()) {
        context.console.Print(Counted(report.withoutCandidate.size(), "item") +
                              " without a similar folder, left in place:\n");
        for (const std::u16string& item : report.withoutCandidate)
            context.console.Print("  " + context.ShownPath(item) + "\n");
    }
    PrintAdvice(context, report);
}

void WriteReport(JsonWriter& json, const CliContext& context, const BatchReport& report) {
    const BatchResult& result = report.result;
    const BatchId id = HasSubject(report.action) ? report.subject : result.id;
    json.BeginObject();
    if (id == 0) {
        json.Null("batch");
    } else {
        json.Number("batch", id);
    }
    json.String("action", ActionKeyword(report.action));
    json.Number("done", result.done);
    json.Number("skipped", result.skipped);
    json.Number("failed", result.failed + report.missing.size());
    json.Number("not_reached", result.notReached);
    json.Number("no_candidate", report.withoutCandidate.size());
    json.Bool("cancelled", result.cancelled);
    if (result.status.ok()) {
        json.Null("error");
    } else {
        json.String("error", WholeFailureText(context, report));
    }
    json.BeginArray("warnings");
    for (const BatchWarning warning : result.warnings)
        json.String(WarningText(warning));
    json.EndArray();
    WriteItems(json, context, report);
    json.EndObject();
}

void PrintOrWriteReport(CliContext& context, const CommandLine& line, const BatchReport& report) {
    if (!line.Has(OptionId::kJson)) {
        PrintReport(context, report);
        return;
    }
    JsonWriter json(context.console);
    WriteReport(json, context, report);
    json.Finish();
}

ExitCode ExitCodeOf(const BatchReport& report) {
    const BatchResult& result = report.result;
    if (result.done == 0) return ExitCode::kNothing;
    const uint64_t left = SkippedAgainstTheWish(result) + result.failed + result.notReached + report.unanswered +
                          report.missing.size() + report.withoutCandidate.size();
    return left == 0 && result.status.ok() && !result.cancelled ? ExitCode::kDone : ExitCode::kPartly;
}

}  // namespace kinsort
