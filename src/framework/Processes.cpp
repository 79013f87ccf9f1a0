#include "framework/Processes.h"

#include <algorithm>
#include <utility>

#include "framework/EnvironmentText.h"
#include "framework/Paths.h"
#include "text/CommandLine.h"

namespace kinsort {

namespace {

constexpr std::u16string_view kKillQuestion = u"Timeout!\nAre you sure you want to kill the process?";
constexpr int32_t kWaitSliceMs = 50;  // how late a wait notices that it is cancelled
constexpr std::u16string_view kUnknownError = u"The operation failed, and the system does not say why.";

bool NamesFile(FileSystem& files, std::u16string_view path) {
    const uint32_t attributes = GetPathAttributes(files, path);
    return attributes != kInvalidAttributes && (attributes & kAttributeDirectory) == 0;
}

// Where the arguments begin in a command line whose program is not quoted.
size_t ProgramLength(FileSystem& files, std::u16string_view commandLine) {
    constexpr std::u16string_view kBlanks = u" \t";
    const size_t first = std::min(commandLine.find_first_of(kBlanks), commandLine.size());
    const bool isPath = commandLine.substr(0, first).find_first_of(u"\\/") != commandLine.npos;
    for (size_t end = first; isPath; end = std::min(commandLine.find_first_of(kBlanks, end + 1), commandLine.size())) {
        if (NamesFile(files, commandLine.substr(0, end))) return end;
        if (end == commandLine.size()) break;
    }
    return first;
}

// The program first; never empty.
std::vector<std::u16string> SplitForStart(FileSystem& files, std::u16string_view commandLine) {
    if (commandLine.starts_with(u'"')) return SplitCommandLine(commandLine);
    const size_t length = ProgramLength(files, commandLine);
    std::vector<std::u16string> parts = SplitArguments(commandLine.substr(length));
    parts.insert(parts.begin(), std::u16string(commandLine.substr(0, length)));
    return parts;
}

}  // namespace

void ShellLaunch(ProcessContext& context, WindowHandle owner, const ShellLaunchRequest& request) {
    const std::u16string folder = request.startFolder.empty() ? GetDirectoryPart(request.file) : request.startFolder;
    const auto expand = [&](std::u16string_view text) {
        return ToLongPathForm(ExpandEnvironment(text, context.environment, context.codec));
    };
    context.lastError = context.opener.Open({.file = expand(request.file),
                                             .arguments = SplitArguments(request.arguments),
                                             .startFolder = expand(folder),
                                             .verb = request.isElevated ? OpenVerb::kRunAs : OpenVerb::kDefault,
                                             .showState = static_cast<uint16_t>(request.showState),
                                             .waitForOpener = request.waitForShell,
                                             .owner = owner});
}

void ShellLaunchFromThread(ProcessContext& context, std::u16string_view file, std::u16string_view arguments,
                           std::u16string_view startFolder, bool waitForShell, int32_t showState, bool isElevated) {
    ShellLaunch(context, context.ui.MainWindow(),
                {.file = std::u16string(file),
                 .arguments = std::u16string(arguments),
                 .startFolder = std::u16string(startFolder),
                 .waitForShell = waitForShell,
                 .showState = showState,
                 .isElevated = isElevated});
}

void OpenDocument(ProcessContext& context, std::u16string_view first, std::u16string_view second) {
    OpenRequest request;
    request.file = ExpandEnvironment(std::u16string(first).append(second), context.environment, context.codec);
    request.showState = kShow;
    request.owner = context.ui.MainWindow();
    context.lastError = context.opener.Open(request);
}

Result<std::unique_ptr<Process>> StartCommandLine(ProcessContext& context, std::u16string_view commandLine,
                                                  std::u16string_view startFolder, uint16_t showState) {
    const size_t begin = std::min(commandLine.find_first_not_of(u" \t"), commandLine.size());
    std::vector<std::u16string> parts = SplitForStart(context.files, commandLine.substr(begin));
    ProcessRequest request;
    request.program = std::move(parts.front());
    request.arguments.assign(std::make_move_iterator(parts.begin() + 1), std::make_move_iterator(parts.end()));
    request.startFolder = startFolder;
    request.showState = showState;
    Result<std::unique_ptr<Process>> process = context.processes.Start(request);
    context.lastError = process.status();
    return process;
}

WaitEnd WaitForEnd(const ProcessContext& context, Process& process, int32_t timeoutMs) {
    if (!context.isCancelled) return process.Wait(timeoutMs) ? WaitEnd::kEnded : WaitEnd::kTimedOut;
    const bool hasLimit = timeoutMs >= 0;
    for (int32_t left = timeoutMs;; left -= hasLimit ? kWaitSliceMs : 0) {
        const bool isLast = hasLimit && left <= kWaitSliceMs;
        if (process.Wait(isLast ? left : kWaitSliceMs)) return WaitEnd::kEnded;
        if (context.isCancelled()) return WaitEnd::kCancelled;
        if (isLast) return WaitEnd::kTimedOut;
    }
}

int RunAndWait(ProcessContext& context, std::u16string_view program, std::u16string_view arguments,
               std::u16string_view startFolder, uint16_t showState, int32_t timeoutMs) {
    const std::u16string commandLine = std::u16string(program).append(u" ").append(arguments);
    const Result<std::unique_ptr<Process>> process = StartCommandLine(context, commandLine, startFolder, showState);
    if (!process.ok()) return 0;
    const WaitEnd end = WaitForEnd(context, **process, timeoutMs);
    if (end == WaitEnd::kTimedOut) AskToKill(context, **process);
    return end == WaitEnd::kEnded ? 1 : 0;
}

bool AskToKill(ProcessContext& context, Process& process) {
    MessageRequest question;
    question.text = kKillQuestion;
    question.buttons = MessageButtons::kYesNo;
    question.owner = context.ui.MainWindow();
    if (context.ui.ShowMessage(question) != MessageAnswer::kYes) return false;
    context.lastError = process.Terminate(kKilledExitCode);
    return true;
}

void ShowLastError(ProcessContext& context, std::u16string_view prefix) {
    if (context.lastError.ok()) return;
    const std::u16string& systemText = context.lastError.systemText();
    MessageRequest message;
    if (!prefix.empty()) message.text.append(prefix).append(u"\n");
    message.text += systemText.empty() ? kUnknownError : std::u16string_view(systemText);
    message.owner = context.ui.MainWindow();
    context.ui.ShowMessage(message);
}

}  // namespace kinsort
