#include "cli/Notification.h"

#include <vector>

#include "app/OperationTexts.h"
#include "cli/ConsoleUserInterface.h"
#include "cli/HostServices.h"
#include "framework/MessageNumbers.h"
#include "framework/Messages.h"
#include "text/Split.h"

namespace kinsort {
namespace {

std::u16string OutcomeOf(Messages& messages, const PathCodec& codec, const BatchReport& report) {
    if (report.subject == 0) return messages.GetMessageText(kMsgNothingToUndo);
    const OperationKind kind = report.action == BatchAction::kRedo ? OperationKind::kRedo : OperationKind::kUndo;
    OperationSummary summary = OperationTexts(messages, codec).Summarize(kind, report.result, false);
    summary.notes.insert(summary.notes.begin(), summary.headline);
    return Join(summary.notes, u"\n");
}

// The text of a notification can hold marks like those of a web page.
std::u16string WithoutMarks(const std::u16string& text) {
    return Replace(Replace(text, u"&", u"&amp;"), u"<", u"&lt;");
}

}  // namespace

void NotifyOutcome(CliContext& context, const BatchReport& report) {
    HostServices& host = context.services.host();
    ConsoleUserInterface ui(context, AnswerPolicy::kNo);
    Messages messages(host.settings, host.folders, context.services.files, ui);
    const std::u16string title = messages.GetMessageText(kMsgNotifyTitle);
    const std::u16string text = OutcomeOf(messages, context.services.codec, report);
    const struct {
        std::u16string program;
        std::vector<std::u16string> arguments;
    } attempts[] = {
        {u"notify-send", {u"--app-name=Kinsort", u"--icon=kinsort", title, WithoutMarks(text)}},
        {u"kdialog", {u"--title", title, u"--passivepopup", WithoutMarks(text), u"10"}},
    };
    for (const auto& attempt : attempts) {
        ProcessRequest request;
        request.program = attempt.program;
        request.arguments = attempt.arguments;
        const Result<std::unique_ptr<Process>> process = host.processes.Start(request);
        if (!process.ok()) continue;
        (*process)->Wait(kWaitForever);
        if ((*process)->ExitCode() == 0) return;
    }
    context.console.Say("no notification could be shown: install notify-send (libnotify)");
}

}  // namespace kinsort
