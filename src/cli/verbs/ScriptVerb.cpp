#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/ConsoleUserInterface.h"
#include "cli/HostServices.h"
#include "cli/ItemList.h"
#include "cli/NamedPaths.h"
#include "cli/ScriptBackend.h"
#include "cli/ScriptCheckReport.h"
#include "cli/ScriptTrace.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "framework/Paths.h"
#include "framework/TextFile.h"
#include "script/ReportedServices.h"
#include "script/Script.h"
#include "script/ScriptCheck.h"
#include "script/VariableTable.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

// What the script is run with; nothing, after a message, when some of it makes no sense.
struct ScriptArguments {
    std::u16string currentFolder;
    std::u16string otherFolder;
    std::vector<std::u16string> items;
    VariableTable variables;
};

// With a separator at the end: without one, "?Dir?" would take the last of the names for a file. Empty after a message.
std::u16string FolderOf(CliContext& context, const CommandLine& line, OptionId option, std::string_view otherwise) {
    return AddTrailingSeparator(FindNamedFolder(context, option, line.Value(option, otherwise)));
}

bool Declare(CliContext& context, const std::string& definition, VariableTable& variables) {
    const size_t equals = definition.find('=');
    const std::u16string name = FromUtf8(definition.substr(0, equals));
    std::u16string wrong = u"write --set NAME=VALUE";
    if (equals != std::string::npos && !name.empty()) {
        wrong = CheckVariableName(variables, name);
        if (wrong.empty() && variables.Create(name, FromUtf8(definition.substr(equals + 1)))) return true;
    }
    context.console.Say(ShownLines("--set " + definition + ": " + ToUtf8(wrong)));
    return false;
}

std::optional<ScriptArguments> ReadArguments(CliContext& context, const CommandLine& line) {
    ScriptArguments arguments;
    arguments.currentFolder = FolderOf(context, line, OptionId::kCwd, ".");
    if (arguments.currentFolder.empty()) return std::nullopt;
    if (line.Has(OptionId::kOther)) {
        arguments.otherFolder = FolderOf(context, line, OptionId::kOther, {});
        if (arguments.otherFolder.empty()) return std::nullopt;
    }
    for (const std::string& typed : line.Values(OptionId::kSelect)) {
        Result<std::u16string> item = ResolveTyped(context, typed);
        if (!item.ok()) {
            context.console.Say("--select " + ShownText(typed) + ": " + StatusText(item.status()));
            return std::nullopt;
        }
        arguments.items.push_back(std::move(*item));
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
    const Result<std::u16string> script = FindFileToRead(context, line.operands[1]);
    if (!script.ok()) {
        context.console.Say("script: " + ShownText(line.operands[1]) + ": " + StatusText(script.status()));
        return ExitCode::kNothing;
    }
    std::optional<ScriptArguments> arguments = ReadArguments(context, line);
    if (!arguments) return ExitCode::kUsage;
    if (CTextFile file(context.services.files); file.Open(*script) != 0 && LooksLikeBytes(file.GetText()))
        context.console.Say("script: " + ShownText(line.operands[1]) + ": " + ToUtf8(kEncodingText));
    const ScriptBackend& backend = context.services.script;
    HostServices& host = context.services.host();
    ConsoleUserInterface ui(context, PolicyOf(line));
    Messages messages(host.settings, host.folders, context.services.files, ui);
    const std::unique_ptr<LocaleMap> locale = context.services.makeLocaleMap();
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
        .locale = *locale,
        .observer = line.Has(OptionId::kTrace) ? &trace : nullptr,
        .cancel = &context.cancel,
        .maxVariableUnits = kMaxVariableUnits,
    };
    ScriptCall call{.scriptPath = *script,
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
