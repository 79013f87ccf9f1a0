// How a plan is printed.
#include <algorithm>

#include "cli/JsonWriter.h"
#include "cli/ShownText.h"
#include "cli/SortingPlan.h"
#include "cli/TableLayout.h"
#include "cli/Texts.h"

namespace kinsort {
namespace {

constexpr std::string_view kNoFolder = "(no similar folder)";

// Native paths are put together from the search folder's, which is translated once.
class NativeFolders {
  public:
    NativeFolders(const CliContext& context, const SortingPlan& plan)
        : codec_(context.services.codec), plan_(plan), parent_(context.NativePath(plan.searchFolder)) {
        if (!parent_.ends_with('/')) parent_ += '/';
    }
    std::string PathOf(int folder) const { return parent_ + NameOf(folder); }
    std::string NameOf(int folder) const { return codec_.NameToStored(plan_.folders[static_cast<size_t>(folder)]); }

  private:
    const PathCodec& codec_;
    const SortingPlan& plan_;
    std::string parent_;
};

void WriteMatch(JsonWriter& json, const NativeFolders& folders, const CandidateMatch& match, std::string_view nameKey,
                std::string_view scoreKey) {
    if (match.folder >= 0) {
        json.Path(nameKey, folders.PathOf(match.folder));
    } else {
        json.Null(nameKey);
    }
    json.Number(scoreKey, match.folder >= 0 ? static_cast<uint64_t>(match.score) : 0);
}

void PrintJson(CliContext& context, const SortingPlan& plan, bool withScores) {
    const NativeFolders folders(context, plan);
    JsonWriter json(context.console);
    json.BeginArray();
    for (size_t i = 0; i < plan.rows.GetCount() && !context.cancel.isCancelled(); ++i) {
        json.BeginObject();
        json.Path("item", context.NativePath(plan.rows[i].strPath));
        WriteMatch(json, folders, plan.scores[i].best, "folder", "score");
        if (withScores) WriteMatch(json, folders, plan.scores[i].runnerUp, "runner_up", "runner_up_score");
        json.EndObject();
    }
    json.EndArray();
    json.Finish();
}

// The cells of one row: item, folder, and with scores the score, the runner-up and its score.
TableRow CellsOf(const CliContext& context, const SortingPlan& plan, const NativeFolders& folders, size_t row,
                 bool withScores) {
    const CandidatePair& scores = plan.scores[row];
    TableRow cells;
    cells.item = ShownText(context.services.codec.NameToStored(plan.rows[row].strName));
    cells.hasFolder = scores.best.folder >= 0;
    cells.folder = cells.hasFolder ? ShownText(folders.NameOf(scores.best.folder)) : std::string(kNoFolder);
    if (!withScores || !cells.hasFolder) return cells;
    cells.score = std::to_string(scores.best.score);
    if (scores.runnerUp.folder < 0) return cells;
    cells.runnerUp = ShownText(folders.NameOf(scores.runnerUp.folder)) + " " + std::to_string(scores.runnerUp.score);
    return cells;
}

void PrintRows(CliContext& context, const CommandLine& line, const SortingPlan& plan) {
    const bool withScores = line.Has(OptionId::kScores);
    if (line.Has(OptionId::kJson)) {
        PrintJson(context, plan, withScores);
        return;
    }
    const NativeFolders folders(context, plan);
    const size_t count = plan.rows.GetCount();
    if (!context.services.terminal.IsTerminal(Stream::kOutput)) {
        for (size_t i = 0; i < count && !context.cancel.isCancelled(); ++i) {
            TableRow cells = CellsOf(context, plan, folders, i, withScores);
            cells.item = context.ShownPath(plan.rows[i].strPath);
            context.console.Print(FormatPlainRow(cells) + "\n");
        }
        return;
    }
    TableLayout layout(context.services.terminal, context.console.IsColoured(Stream::kOutput));
    for (size_t i = 0; i < count; ++i)
        layout.Measure(CellsOf(context, plan, folders, i, withScores));
    for (size_t i = 0; i < count && !context.cancel.isCancelled(); ++i) {
        context.console.Print(layout.Format(CellsOf(context, plan, folders, i, withScores)) + "\n");
    }
}

}  // namespace

ExitCode PrintPlan(CliContext& context, const CommandLine& line, const SortingPlan& plan) {
    PrintRows(context, line, plan);
    if (context.cancel.isCancelled()) {
        context.console.Say("stopped; the list is not complete");
        return ExitCode::kPartly;
    }
    if (plan.withoutCandidate > 0) {
        context.console.Note(Counted(plan.withoutCandidate, "item") + " without a similar folder");
    }
    return plan.withoutCandidate + plan.missing.size() == 0 ? ExitCode::kDone : ExitCode::kPartly;
}

}  // namespace kinsort
