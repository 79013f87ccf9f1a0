// The verbs that print what the tables say.
#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/HelpTexts.h"
#include "cli/ShownText.h"

namespace kinsort {

ExitCode RunHelp(CliContext& context, const CommandLine& line) {
    if (line.operands.empty()) {
        context.console.Print(ProgramHelp());
        return ExitCode::kDone;
    }
    if (line.operands[0] == "--version") {
        context.console.Print("kinsort " + std::string(KinsortVersion()) + "\n");
        return ExitCode::kDone;
    }
    const VerbSpec* const verb = FindVerb(line.operands[0]);
    if (verb == nullptr) {
        context.console.Say("there is no command '" + ShownText(line.operands[0]) + "'; 'kinsort help' lists them");
        return ExitCode::kUsage;
    }
    context.console.Print(VerbHelp(*verb));
    return ExitCode::kDone;
}

ExitCode RunCompletion(CliContext& context, const CommandLine& line) {
    if (line.operands.empty()) {
        context.console.Say("completion: name a shell: " + ListOfChoices(kCompletionShells));
        return ExitCode::kUsage;
    }
    context.console.Print(CompletionScript(line.operands[0]));
    return ExitCode::kDone;
}

ExitCode RunManual(CliContext& context, const CommandLine&) {
    context.console.Print(ManualPage(KinsortVersion()));
    return ExitCode::kDone;
}

}  // namespace kinsort
