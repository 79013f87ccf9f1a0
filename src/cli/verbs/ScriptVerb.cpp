#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleUserInterface.h"
#include "cli/HostServices.h"
#include "cli/ItemList.h"
#include "cli/ScriptBackend.h"
#include "cli/ScriptCheckReport.h"
#include "cli/ScriptTrace.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "framework/Paths.h"
#include "script/ReportedServices.h"
#include "script/Script.h"
#include "script/VariableTable.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

// What the script is run with; nothing, after a message, when some of it makes no sense.
struct ScriptArguments {
    std::u16string scriptPath;
    std::u16string currentFolder;
    std::u16string otherFolder;
    std::vector<std::u16string> items;
    VariableTable variables;
};

bool Resolve(CliContext& context, const std::string& typed, std::u16string& path) {
    Result<std::u16string> resolved = ResolveTyped(context, typed);
    if (!resolved.ok()) {
        context.console.Say("script: " + ShownText(typed) + ": " + StatusText(resolved.status()));
        return false;
    }
    path = std::move(*resolved);
    return true;
}

// Folders end with a separator: without one, "?Dir?" would take the last of the names for a file.
bool ResolveFolder(CliContext& context, const std::string& typed, std::u16string& folder) {
    if (!Resolve(context, typed, folder)) return false;
    const uint32_t attributes = context.services.files.GetAttributes(folder);
    folder = AddTrailingSeparator(folder);
    if (attributes != kInvalidAttributes && (attributes & kAttributeDirectory) != 0) return true;
    context.console.Say("script: " + ShownText(typed) + ": there is no such folder");
    return false;
}

bool Declare(CliContext& context, const std::string& definition, VariableTable& variables) {
    const size_t equals = definition.find('=');
    const std::u16string name = FromUtf8(definition.substr(0, equals));
    std::u16string wrong = u"write --set NAME=VALUE";
    if (equals != std::string::npos && !name.empty()) {
        wrong = CheckVariableName(variables, name);
        if (wrong.empty() && variables.Create(name, FromUtf8(definition.substr(equals + 1)))) return true;
    }
    context.console.Say(ShownLines("script: --set " + definition + ": " + ToUtf8(wrong)));
    return false;
}

std::optional<ScriptArguments> ReadArguments(CliContext& context, const CommandLine& line) {
    ScriptArguments arguments;
    if (!Resolve(context, line.operands[1], arguments.scriptPath)) return std::nullopt;
    if (!ResolveFolder(context, line.Value(OptionId::kCwd, "."), arguments.currentFolder)) return std::nullopt;
    if (line.Has(OptionId::kOther) && !ResolveFolder(context, line.Value(OptionId::kOther), arguments.otherFolder))
        return std::nullopt;
    for (const std::string& typed : line.Values(OptionId::kSelect)) {
        arguments.items.emplace_back();
        if (!Resolve(context, typed, arguments.items.back())) return std::nullopt;
    }
    for (const std::string& definition : line.Values(OptionId::kSet))
        if (!Declare(context, definition, arguments.variables)) return std::nullopt;
    return arguments;
}

AnswerPolicy PolicyOf(const CommandLine& line) {
    if (line.Has(OptionId::kYes)) return AnswerPolicy::kYes;
    return line.Has(OptionId::kNo) ? AnswerPolicy::kNo : AnswerPolicy::kAsk;
}

ExitCode CodeOf(const ScriptResult& result) {
    switch (result.ending) {
        case ScriptEnding::kFinished:
            return ExitCode::kDone;
        case ScriptEnding::kUnreadable:
            return ExitCode::kNothing;
        case ScriptEnding::kDeclined:
        case ScriptEnding::kError:
        case ScriptEnding::kLimit:
        case ScriptEnding::kCancelled:
            break;
    }
    return ExitCode::kPartly;
}

ExitCode RunFile(CliContext& context, const CommandLine& line) {
    std::optional<ScriptArguments> arguments = ReadArguments(context, line);
    if (!arguments) return ExitCode::kUsage;
    const ScriptBackend& backend = context.services.script();
    HostServices& host = context.services.host();
    ConsoleUserInterface ui(context, PolicyOf(line));
    Messages messages(host.settings, host.folders, context.services.files, ui);
    ScriptTrace trace(context.console);
    LaunchWorkers workers;
    const ScriptServices services{
        .files = context.services.files,
        .ui = ui,
        .windows = backend.windows,
        .processes = backend.processes,
        .opener = backend.opener,
        .environment = backend.environment,
        .codec = context.services.codec,
        .codePages = backend.codePages,
        .settings = host.settings,
        .folders = host.folders,
        .messages = messages,
        .clock = context.services.clock,
        .sleeper = backend.sleeper,
        .launchWorkers = workers,
        .system = backend.system,
        .locale = backend.locale,
        .observer = line.Has(OptionId::kTrace) ? &trace : nullptr,
        .cancel = &context.cancel,
        .maxVariableUnits = kMaxVariableUnits,
    };
    ScriptCall call{.scriptPath = arguments->scriptPath,
                    .currentFolder = arguments->currentFolder,
                    .otherFolder = arguments->otherFolder,
                    .selectedItems = arguments->items};
    call.variables = &arguments->variables;
    if (!line.Has(OptionId::kDryRun)) return CodeOf(RunScript(services, call));
    const ReportedServices dry(
        services, host.registry,
        [&context](const std::u16string& step) {
            context.console.Print("would " + ShownText(ToUtf8(step)) + "\n");
            (void)context.console.Flush();
        },
        Performance::kReportOnly);
    return CodeOf(RunScript(dry.services(), call));
}

struct ActionRow {
    std::string_view name;
    ExitCode (*run)(CliContext& context, const CommandLine& line);
};
// The actions that VerbTable.cpp lists.
constexpr ActionRow kActions[] = {{"run", RunFile}, {"check", ReportScriptCheck}};

}  // namespace

ExitCode RunScriptVerb(CliContext& context, const CommandLine& line) {
    for (const ActionRow& action : kActions)
        if (action.name == line.operands[0]) return action.run(context, line);
    return ExitCode::kUsage;
}

}  // namespace kinsort
