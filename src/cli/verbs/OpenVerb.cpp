// The host's part of starting the dialog: hands the items over and waits.
#include <algorithm>
#include <array>

#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/HostServices.h"
#include "cli/ItemList.h"
#include "cli/NamedPaths.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "cli/UserLanguage.h"
#include "framework/Paths.h"
#include "hostlink/HandOffWriter.h"
#include "hostlink/LaunchDescriptor.h"
#include "text/AsciiCase.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

constexpr std::array<std::string_view, 4> kModes = {"/c", "/m", "/2c", "/2m"};

bool IsMode(std::string_view text) {
    return std::any_of(kModes.begin(), kModes.end(),
                       [text](std::string_view mode) { return EqualNoCase(FromUtf8(text), FromUtf8(mode)); });
}

// Whether the toolkit will find something to draw on.
bool HasDisplay(const CliServices& services) {
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY"}) {
        if (!services.environment(name).empty()) return true;
    }
    // Somebody chose a way of drawing that needs neither; the toolkit will say what is wrong with it.
    const std::string platform = services.environment("QT_QPA_PLATFORM");
    return !platform.empty() && !platform.starts_with("xcb") && !platform.starts_with("wayland");
}

// The language of the dialog, unless somebody chose one before, is the user's own where there are texts of it.
void ChooseLanguageOnce(CliContext& context) {
    HostServices& host = context.services.host();
    if (host.registry.QueryValue(kSettingsKey, kLanguageName).code() != StatusCode::kNotFound) return;
    const std::u16string_view suffix = PrefersJapanese(context.services) ? u".ja-JP" : u".en-US";
    if (host.settings.WriteRegString(kSettingsKey, kLanguageName, suffix) == 0)
        context.console.Note("the language of the dialog could not be stored; it will be Japanese");
}

// What the dialog is started with: its mode, then the folder, which a mode must not be mistaken for.
struct DialogArguments {
    std::vector<std::u16string> arguments;
    CommandLine items;  // the line without what stands in front of the items
};

DialogArguments ArgumentsOf(const CommandLine& line) {
    DialogArguments split{{}, line};
    if (line.Has(OptionId::kCopy)) split.arguments.push_back(u"/c");
    if (line.Has(OptionId::kMove)) split.arguments.push_back(u"/m");
    std::vector<std::string>& operands = split.items.operands;
    while (!operands.empty() && IsMode(operands.front())) {
        split.arguments.push_back(FromUtf8(operands.front()));
        operands.erase(operands.begin());
    }
    return split;
}

std::u16string FolderArgument(const CliContext& context, const std::u16string& folder) {
    return IsMode(context.NativePath(folder)) ? folder + u"\\." : folder;
}

// Whether the command has read the block: it then has put a NUL in the place of the TAB behind the first number.
bool IsRead(CShareMem& shared) {
    const Result<std::vector<std::byte>> text = shared.ReadText();
    if (!text.ok()) return false;
    for (size_t i = 0; i + 1 < text->size(); i += 2) {
        const auto low = std::to_integer<char>((*text)[i]);
        if (low < '0' || low > '9') return low == '\0';
    }
    return true;
}

ExitCode FailToStart(CliContext& context, const Status& status) {
    const std::string what = status.path().empty() ? "" : context.ShownPath(status.path()) + ": ";
    context.console.Say("the dialog cannot be started: " + what + StatusText(status));
    return ExitCode::kNothing;
}

// Starts the command with the hand-off; the exit code of the dialog, or of this program when there was none.
int StartDialog(CliContext& context, const CommandLine& line, const HostHandOff& handOff,
                std::vector<std::u16string> arguments) {
    HostServices& host = context.services.host();
    const bool isEmpty = handOff.SelectedItems.empty() && handOff.OtherTabFolders.empty();
    std::optional<WrittenHandOff> written;
    if (!isEmpty) {
        Result<WrittenHandOff> block = WriteHandOff(host.memory, handOff);
        if (!block.ok()) return static_cast<int>(FailToStart(context, block.status()));
        written.emplace(std::move(*block));
    }
    const bool isWaiting = !line.Has(OptionId::kNoWait);
    ProcessRequest request;
    request.program = host.folders.GetProgramFile();
    request.arguments = std::move(arguments);
    request.tie = isWaiting ? ProcessTie::kOurs : ProcessTie::kFree;
    request.variables = {
        {std::u16string(kLaunchDescriptorVariable), written ? written->descriptor : FormatLaunchDescriptor({})}};
    const Result<std::unique_ptr<Process>> process = host.processes.Start(request);
    if (!process.ok()) return static_cast<int>(FailToStart(context, process.status()));
    const int32_t lookEveryMs = isWaiting ? 500 : 20;
    bool hasEnded = false;
    while (!hasEnded && !context.cancel.isCancelled() && (isWaiting || (written && !IsRead(written->shared))))
        hasEnded = (*process)->Wait(lookEveryMs);
    // Ctrl-C ends the dialog as well, which takes its time. Whoever ends this program alone leaves the dialog to
    // itself.
    constexpr int32_t kPatienceMs = 1000;
    if (isWaiting && !hasEnded) hasEnded = (*process)->Wait(kPatienceMs);
    return hasEnded ? static_cast<int>((*process)->ExitCode()) : 0;
}

}  // namespace

ExitCode RunOpen(CliContext& context, const CommandLine& line) {
    if (!HasDisplay(context.services)) {
        context.console.Say(
            "there is no display for the dialog (DISPLAY and WAYLAND_DISPLAY are not set); "
            "sort without it: kinsort sort --to DIR --move ITEM...");
        return ExitCode::kNothing;
    }
    DialogArguments dialog = ArgumentsOf(line);
    if (line.Has(OptionId::kTo)) {
        const std::u16string folder = FindFolderToList(context, OptionId::kTo, line.Value(OptionId::kTo));
        if (folder.empty()) return ExitCode::kNothing;
        dialog.arguments.push_back(FolderArgument(context, folder));
    }
    HostHandOff handOff;
    for (const std::string& typed : line.Values(OptionId::kOtherTab)) {
        std::u16string folder = FindFolderToList(context, OptionId::kOtherTab, typed);
        if (folder.empty()) return ExitCode::kNothing;
        handOff.OtherTabFolders.push_back(std::move(folder));
    }
    ItemList items = CollectItems(context, dialog.items);
    SayMissing(context, items.missing);
    if (items.source == ItemSource::kFailed || items.source == ItemSource::kCancelled) return ExitCode::kNothing;
    if (items.paths.empty() && !items.missing.empty()) return ExitCode::kNothing;
    for (std::u16string& path : items.paths)
        handOff.SelectedItems.push_back(RemoveTrailingSeparatorKeepRoot(path));
    handOff.CurrentDir = context.services.files.CurrentFolder();
    ChooseLanguageOnce(context);
    const int code = StartDialog(context, line, handOff, std::move(dialog.arguments));
    return code == 0 && !items.missing.empty() ? ExitCode::kPartly : static_cast<ExitCode>(code);
}

}  // namespace kinsort
