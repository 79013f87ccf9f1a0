#include "cli/CliContext.h"

#include <algorithm>

#include "cli/CommandLine.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"

namespace kinsort {

std::string_view KinsortVersion() {
    return KINSORT_VERSION;
}

std::string CliContext::NativePath(std::u16string_view innerPath) const {
    Result<std::string> stored = services.codec.PathToStored(innerPath);
    return stored.ok() ? std::move(*stored) : services.codec.PathForPeople(innerPath);
}

std::string CliContext::ShownPath(std::u16string_view innerPath) const {
    return ShownText(NativePath(innerPath));
}

std::optional<FileOperationServices> CliContext::EngineServices() {
    if (services.journalFolder.empty()) {
        console.Say("there is no place for the undo journal: set HOME or XDG_STATE_HOME to a folder");
        return std::nullopt;
    }
    return FileOperationServices{services.sys, services.codec, services.clock, services.journalFolder};
}

BatchId CliContext::WarnOfUnfinishedBatches(FileOperationServices& engine) {
    if (!services.sys.OpenFolder(engine.journalFolder).ok())
        return 0;  // nothing was ever sorted; leave no folder behind
    const Result<std::vector<BatchSummary>> batches = UndoHistory(engine).ListUnfinished();
    if (!batches.ok()) return 0;  // the verb itself will meet the same failure and say so
    BatchId newest = 0;
    for (const BatchSummary& batch : *batches) {
        const bool isTorn = batch.state == BatchState::kUnfinished;
        if (isTorn || batch.state == BatchState::kRunning) newest = std::max(newest, batch.id);
        if (!isTorn) continue;
        console.Say("batch " + std::to_string(batch.id) +
                    " was interrupted and is unfinished; finish it or take it back with: kinsort recover");
    }
    return newest;
}

int RunKinsort(CliServices& services, const std::vector<std::string>& arguments) {
    CliContext context(services);
    const ParsedLine parsed = ParseCommandLine(arguments);
    if (!parsed.error.empty()) {
        context.console.Say(ShownLines(parsed.error));
        return static_cast<int>(ExitCode::kUsage);
    }
    context.console.SetQuiet(parsed.line.Has(OptionId::kQuiet));
    services.terminal.CallOnInterrupt([](void* token) { static_cast<CancelToken*>(token)->Cancel(); }, &context.cancel);
    CommandLine line = parsed.line;
    if (line.Has(OptionId::kHelp)) {
        line.operands = {std::string(line.verb->name)};
        line.verb = FindVerb("help");
    }
    ExitCode code = line.verb->run(context, line);
    const Status written = context.console.Flush();
    if (!written.ok()) {
        if (written.code() != StatusCode::kStale)
            context.console.Say("the output could not be written: " + StatusText(written));
        if (code == ExitCode::kDone) code = ExitCode::kPartly;
    }
    return static_cast<int>(code);
}

}  // namespace kinsort
