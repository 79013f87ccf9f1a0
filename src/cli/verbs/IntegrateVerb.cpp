#include <algorithm>

#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/HostServices.h"
#include "cli/Integration.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "cli/UserFile.h"
#include "cli/UserLanguage.h"
#include "framework/Paths.h"

namespace kinsort {
namespace {

struct IntegrateRun {
    CliContext& context;
    bool isRemoving;
    bool isDry;
    std::string dataHome;
    std::string configHome;
    size_t done = 0;
    size_t failed = 0;
};

std::string HomeOf(const CliServices& services, const char* variable, const char* below) {
    const std::string value = services.environment(variable);
    if (value.starts_with('/')) return value;
    const std::string home = services.environment("HOME");
    return home.starts_with('/') ? home + below : std::string();
}

void Fail(IntegrateRun& run, const std::string& path, const std::string& why) {
    run.context.console.Say(ShownText(path) + ": " + why);
    ++run.failed;
}

void Finish(IntegrateRun& run, const std::string& path, const Status& status, std::string_view done,
            std::string_view prospect) {
    if (!status.ok()) {
        Fail(run, path, StatusText(status));
        return;
    }
    run.context.console.Print(std::string(run.isDry ? prospect : done) + " " + ShownText(path) + "\n");
    ++run.done;
}

void Write(IntegrateRun& run, const IntegrationFile& file, const std::string& path, std::string_view content) {
    const Status status = run.isDry ? Status() : WriteUserFile(run.context.services.sys, path, content, file.mode);
    Finish(run, path, status, "wrote", "would write");
}

void Remove(IntegrateRun& run, const std::string& path) {
    const Status status = run.isDry ? Status() : RemoveUserFile(run.context.services.sys, path);
    Finish(run, path, status, "removed", "would remove");
}

// The template of the file, filled; nothing after a message.
std::optional<std::string> Content(IntegrateRun& run, const IntegrationFile& file) {
    HostServices& host = run.context.services.host();
    const std::string path =
        run.context.NativePath(host.folders.GetAppDir() + u"desktop") + "/" + std::string(file.source);
    const Result<std::string> text = run.context.services.terminal.ReadAll(path);
    if (text.ok()) return FillTemplate(*text, file, host.executable);
    Fail(run, path, StatusText(text.status()));
    return std::nullopt;
}

// A file that is ours alone.
void HandleOwn(IntegrateRun& run, const IntegrationFile& file, const std::string& path, bool isRemoving) {
    const Result<std::string> there = run.context.services.terminal.ReadAll(path);
    if (!there.ok() && there.code() != StatusCode::kNotFound) {
        Fail(run, path, StatusText(there.status()));
        return;
    }
    const bool isOurs = there.ok() && there->find(kIntegrationMark) != std::string::npos;
    if (there.ok() && !isOurs) {
        if (!isRemoving) Fail(run, path, "it was not written by kinsort and stays; move it away first");
        return;
    }
    if (isRemoving) {
        if (isOurs) Remove(run, path);
    } else if (const std::optional<std::string> content = Content(run, file)) {
        Write(run, file, path, *content);
    }
}

// The folders of a list like PATH; one that is empty does not count.
std::vector<std::string> FoldersOf(std::string_view list) {
    std::vector<std::string> folders;
    while (!list.empty()) {
        const size_t end = std::min(list.find(':'), list.size());
        if (end > 0) folders.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return folders;
}

// What the program uses as long as the user has no list of their own.
std::string SystemList(const CliServices& services, const IntegrationFile& file) {
    const std::string folders = services.environment("XDG_CONFIG_DIRS");
    for (const std::string& folder : FoldersOf(folders.empty() ? "/etc/xdg" : folders)) {
        Result<std::string> list = services.terminal.ReadAll(folder + "/" + std::string(file.path));
        if (list.ok()) return std::move(*list);
    }
    return std::string(kEmptyActionList);
}

void HandleShared(IntegrateRun& run, const IntegrationFile& file, const std::string& path) {
    const CliServices& services = run.context.services;
    const Result<std::string> there = services.terminal.ReadAll(path);
    if (!there.ok() && there.code() != StatusCode::kNotFound) {
        Fail(run, path, StatusText(there.status()));
        return;
    }
    const std::string systems = SystemList(services, file);
    if (run.isRemoving) {
        if (!there.ok()) return;
        const std::string rest = WithoutOurAction(*there);
        if (rest == *there) return;
        if (rest == systems) {
            Remove(run, path);
        } else {
            Write(run, file, path, rest);
        }
        return;
    }
    const std::optional<std::string> action = Content(run, file);
    if (!action) return;
    const std::optional<std::string> merged = WithOurAction(there.ok() ? *there : systems, *action);
    if (merged) {
        Write(run, file, path, *merged);
    } else {
        Fail(run, path, "it is no list of custom actions and was not changed; correct it or move it away");
    }
}

void Handle(IntegrateRun& run, const IntegrationFile& file) {
    const std::string& home = file.place == UserPlace::kData ? run.dataHome : run.configHome;
    const std::string path = home + "/" + std::string(file.path);
    if (file.isShared) {
        HandleShared(run, file, path);
    } else if (!path.ends_with('/')) {
        HandleOwn(run, file, path, run.isRemoving);
    } else {
        const bool isJapanese = PrefersJapanese(run.context.services);
        const std::string_view name = isJapanese ? kScriptNameJapanese : kScriptNameEnglish;
        const std::string_view other = isJapanese ? kScriptNameEnglish : kScriptNameJapanese;
        HandleOwn(run, file, path + std::string(name), run.isRemoving);
        HandleOwn(run, file, path + std::string(other), true);  // of a time with another language
    }
}

bool IsInstalled(const CliServices& services, std::string_view program) {
    const std::vector<std::string> folders = FoldersOf(services.environment("PATH"));
    return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
        return FileExists(services.files, services.codec.PathToInner(folder + "/" + std::string(program)));
    });
}

// Without a name: when installing, what this desktop has; when removing, all there is.
bool IsWanted(const IntegrateRun& run, const CommandLine& line, const IntegrationFile& file) {
    if (!line.operands.empty())
        return std::find(line.operands.begin(), line.operands.end(), file.name) != line.operands.end();
    return run.isRemoving || file.program.empty() || IsInstalled(run.context.services, file.program);
}

}  // namespace

ExitCode RunIntegrate(CliContext& context, const CommandLine& line) {
    IntegrateRun run{context, line.Has(OptionId::kRemove), line.Has(OptionId::kDryRun),
                     HomeOf(context.services, "XDG_DATA_HOME", "/.local/share"),
                     HomeOf(context.services, "XDG_CONFIG_HOME", "/.config")};
    if (run.dataHome.empty() || run.configHome.empty()) {
        context.console.Say("there is no place for the files: set HOME to your home folder");
        return ExitCode::kNothing;
    }
    for (const IntegrationFile& file : kIntegrationFiles) {
        if (IsWanted(run, line, file)) Handle(run, file);
    }
    if (run.failed > 0) return run.done > 0 ? ExitCode::kPartly : ExitCode::kNothing;
    if (run.done == 0) context.console.Note("there is nothing to remove");
    return ExitCode::kDone;
}

}  // namespace kinsort
