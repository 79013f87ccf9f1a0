#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/MessageListing.h"
#include "cli/ScriptBackend.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "script/Script.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr int32_t kLookEveryMs = 100;  // how late Ctrl-C is seen

void ShowJumps(CliContext& context, FileManager& fileManager, const std::vector<MessageListing::Jump>& jumps) {
    for (const MessageListing::Jump& jump : jumps) {
        const Status shown = jump.isFile ? fileManager.ShowFile(jump.path) : fileManager.ShowFolder(jump.path);
        if (!shown.ok()) context.console.Say(context.ShownPath(jump.path) + ": " + StatusText(shown));
    }
}

}  // namespace

ExitCode RunHost(CliContext& context, const CommandLine& line) {
    const ScriptBackend& backend = context.services.script;
    const std::string typed = line.Value(OptionId::kClass, ToUtf8(kHostWindowClass));
    MessageListing listing(context, line.Has(OptionId::kJson));
    const Result<std::unique_ptr<TopLevelWindow>> window = backend.windows.RegisterTopLevel(FromUtf8(typed), listing);
    if (window.code() == StatusCode::kInvalid) {
        context.console.Say("host: --class takes a name of 1 to " + std::to_string(kMaxClassNameUnits) +
                            " characters\nTry 'kinsort help host'.");
        return ExitCode::kUsage;
    }
    if (!window.ok()) {
        context.console.Say("host: no messages can be received: " + StatusText(window.status()));
        return ExitCode::kNothing;
    }
    context.console.Note("listening as " + ShownText(typed) + "; Ctrl-C ends");
    while (!context.cancel.isCancelled() && context.console.Flush().ok()) {
        if (!backend.windows.WaitForEvents(kLookEveryMs)) continue;
        backend.windows.Dispatch();
        // Only now, when the senders have their answers.
        const std::vector<MessageListing::Jump> jumps = listing.TakeJumps();
        if (line.Has(OptionId::kOpen)) ShowJumps(context, backend.fileManager, jumps);
    }
    return ExitCode::kDone;
}

}  // namespace kinsort
