#include <array>
#include <ctime>

#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleAsker.h"
#include "cli/JsonWriter.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "text/Amounts.h"

namespace kinsort {
namespace {

BatchAction ActionOf(const BatchSummary& batch) {
    return batch.isMove ? BatchAction::kMove : BatchAction::kCopy;
}

std::string UtcTime(int64_t ns) {
    const auto seconds = static_cast<std::time_t>(ns / 1'000'000'000);
    const std::tm* const utc = std::gmtime(&seconds);
    std::array<char, 32> text{};
    if (utc == nullptr || std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", utc) == 0) return {};
    return text.data();
}

void WriteBatch(JsonWriter& json, const CliContext& context, const BatchSummary& batch) {
    json.BeginObject();
    json.Number("batch", batch.id);
    json.String("state", StateKeyword(batch.state));
    json.String("action", ActionKeyword(ActionOf(batch)));
    json.String("started", UtcTime(batch.startedNs));
    json.Bool("cancelled", batch.cancelled);
    json.Number("done", batch.done);
    json.Number("failed", batch.failed);
    json.Number("skipped", batch.skipped);
    json.Number("undone", batch.undone);
    json.Path("folder", batch.searchFolder.empty() ? std::string() : context.NativePath(batch.searchFolder));
    json.Path("first_item", context.services.codec.NameToStored(batch.firstItem));
    json.EndObject();
}

// "12  2024-05-31 14:03  done        Moved 3 items into /home/me/Pictures (a.jpg, ...)"
std::string BatchLine(const CliContext& context, const BatchSummary& batch, size_t idColumns) {
    std::string id = std::to_string(batch.id);
    id.insert(0, idColumns - id.size(), ' ');
    std::string state(StateKeyword(batch.state));
    if (batch.cancelled && batch.state == BatchState::kDone) state = "stopped";
    state.resize(10, ' ');
    std::string line =
        id + "  " + FormatLocalTime(batch.startedNs) + "  " + state + "  " + DoneText(ActionOf(batch), batch.done);
    if (batch.failed > 0) line += ", " + std::to_string(batch.failed) + " failed";
    if (batch.skipped > 0) line += ", " + std::to_string(batch.skipped) + " skipped";
    const bool isPartly = batch.undone > 0 && batch.state == BatchState::kDone;
    if (isPartly) line += ", " + std::to_string(batch.undone) + " of them taken back since";
    if (!batch.searchFolder.empty()) line += ", into " + context.ShownPath(batch.searchFolder);
    if (!batch.firstItem.empty()) {
        line +=
            " (" + ShownText(context.services.codec.NameToStored(batch.firstItem)) + (batch.done > 1 ? ", ...)" : ")");
    }
    return line + "\n";
}

}  // namespace

ExitCode RunHistory(CliContext& context, const CommandLine& line) {
    std::optional<FileOperationServices> engine = context.EngineServices();
    if (!engine) return ExitCode::kNothing;
    const Result<std::vector<BatchSummary>> batches = UndoHistory(*engine).List();
    if (!batches.ok()) {
        context.console.Say(ShownText(engine->journalFolder) + ": " + StatusText(batches.status()));
        return ExitCode::kNothing;
    }
    if (line.Has(OptionId::kJson)) {
        JsonWriter json(context.console);
        json.BeginArray();
        for (const BatchSummary& batch : *batches)
            WriteBatch(json, context, batch);
        json.EndArray();
        json.Finish();
        return ExitCode::kDone;
    }
    if (batches->empty()) context.console.Note("nothing was sorted yet");
    size_t idColumns = 0;
    for (const BatchSummary& batch : *batches)
        idColumns = std::max(idColumns, std::to_string(batch.id).size());
    for (const BatchSummary& batch : *batches)
        context.console.Print(BatchLine(context, batch, idColumns));
    return ExitCode::kDone;
}

}  // namespace kinsort
