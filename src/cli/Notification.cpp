#include "cli/Notification.h"

#include <vector>

#include "cli/ConsoleUserInterface.h"
#include "cli/HostServices.h"
#include "framework/MessageNumbers.h"
#include "framework/Messages.h"
#include "text/Numbers.h"
#include "text/Split.h"

namespace kinsort {
namespace {

std::u16string CountLine(Messages& messages, uint16_t number, uint64_t count) {
    return messages.GetMessageText(number, {FormatInteger(static_cast<int64_t>(count))});
}

std::u16string StatusLine(Messages& messages, uint16_t number, const Status& status) {
    const auto reason = static_cast<uint16_t>(kMsgStatusFirst + static_cast<unsigned>(status.code()));
    return messages.GetMessageText(number, {messages.GetMessageText(reason, {status.systemText()})});
}

std::u16string OutcomeOf(Messages& messages, const BatchReport& report) {
    if (report.subject == 0) return messages.GetMessageText(kMsgNothingToUndo);
    const BatchResult& result = report.result;
    const uint16_t done = report.action == BatchAction::kRedo ? kMsgSummaryRedone : kMsgSummaryUndone;
    std::vector<std::u16string> lines;
    if (result.done > 0) lines.push_back(CountLine(messages, done, result.done));
    if (result.failed > 0) lines.push_back(CountLine(messages, kMsgSummaryFailed, result.failed));
    if (result.notReached > 0) lines.push_back(CountLine(messages, kMsgSummaryCancelled, result.notReached));
    if (!result.status.ok())
        lines.push_back(StatusLine(messages, result.done > 0 ? kMsgBatchStopped : kMsgBatchNotStarted, result.status));
    if (lines.empty()) lines.push_back(messages.GetMessageText(kMsgSummaryNothing));
    return Join(lines, u"\n");
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
    const std::u16string text = OutcomeOf(messages, report);
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
