#include "script/ReportedServices.h"

#include <mutex>
#include <utility>

#include "framework/FileDropList.h"
#include "framework/LaunchBatch.h"
#include "framework/Paths.h"
#include "framework/Settings.h"
#include "platform/Registry.h"
#include "text/CommandLine.h"
#include "text/Numbers.h"
#include "text/Split.h"

namespace kinsort {
namespace {

struct Reporter {
    ReportStep report;
    bool isDry;

    mutable std::mutex isSaying = {};  // programs may start on a thread of their own

    void operator()(std::u16string_view kind, std::u16string_view text) const {
        const std::lock_guard lock(isSaying);
        report(std::u16string(kind).append(u": ").append(text));
    }
};

std::u16string Number(int64_t value) {
    return FormatInteger(value);
}

std::u16string FolderNote(const std::u16string& folder) {
    return folder.empty() ? u"" : u" (in " + folder + u")";
}

// --- files -----------------------------------------------------------------------------------------------------------

// Counts what is written and says so when the file is closed.
class ReportedOutput final : public OutputFile {
  public:
    // Without `inner` the bytes go nowhere.
    ReportedOutput(const Reporter& reporter, std::unique_ptr<OutputFile> inner, std::u16string path, OutputStart start)
        : reporter_(reporter), inner_(std::move(inner)), path_(std::move(path)), start_(start) {}
    ~ReportedOutput() override { Say(); }

    Status Write(std::span<const std::byte> bytes) override {
        Status status = inner_ ? inner_->Write(bytes) : Status();
        if (status.ok()) written_ += bytes.size();
        return status;
    }
    Status Close() override {
        Say();
        return inner_ ? inner_->Close() : Status();
    }

  private:
    void Say() {
        if (std::exchange(isSaid_, true)) return;
        const std::u16string_view how = start_ == OutputStart::kAppend ? u" (appended, " : u" (replaced, ";
        reporter_(u"write", path_ + std::u16string(how) + Number(static_cast<int64_t>(written_)) + u" bytes)");
    }

    const Reporter& reporter_;
    std::unique_ptr<OutputFile> inner_;
    std::u16string path_;
    OutputStart start_;
    size_t written_ = 0;
    bool isSaid_ = false;
};

class ReportedFileSystem final : public FileSystem {
  public:
    ReportedFileSystem(FileSystem& inner, const Reporter& reporter) : inner_(inner), reporter_(reporter) {}

    uint32_t GetAttributes(std::u16string_view path) override { return inner_.GetAttributes(path); }
    Result<std::unique_ptr<FolderSearch>> OpenSearch(std::u16string_view pattern) override {
        return inner_.OpenSearch(pattern);
    }
    Result<std::unique_ptr<InputFile>> OpenInput(std::u16string_view path) override { return inner_.OpenInput(path); }
    Result<std::u16string> ResolveFullPath(std::u16string_view path) override { return inner_.ResolveFullPath(path); }
    std::u16string CurrentFolder() override { return inner_.CurrentFolder(); }

    Status CreateFolder(std::u16string_view path) override {
        Status status = reporter_.isDry ? Status() : inner_.CreateFolder(path);
        if (status.ok()) reporter_(u"make folder", path);
        return status;
    }
    Result<std::unique_ptr<OutputFile>> OpenOutput(std::u16string_view path, OutputStart start) override {
        std::unique_ptr<OutputFile> file;
        if (reporter_.isDry) {
            if (Status status = LooksWritable(path); !status.ok()) return status;
        } else {
            Result<std::unique_ptr<OutputFile>> opened = inner_.OpenOutput(path, start);
            if (!opened.ok()) return opened;
            file = std::move(*opened);
        }
        return std::unique_ptr<OutputFile>(
            std::make_unique<ReportedOutput>(reporter_, std::move(file), std::u16string(path), start));
    }

  private:
    Status LooksWritable(std::u16string_view path) {
        const uint32_t attributes = inner_.GetAttributes(path);
        if (attributes != kInvalidAttributes && (attributes & kAttributeDirectory) != 0)
            return Status::Failure(StatusCode::kIsFolder).At(std::u16string(path));
        const Result<std::u16string> full = inner_.ResolveFullPath(path);
        const std::u16string folder = GetDirectoryPart(full.ok() ? *full : std::u16string(path));
        if (inner_.GetAttributes(folder) == kInvalidAttributes)
            return Status::Failure(StatusCode::kNotFound).At(std::u16string(path));
        return {};
    }

    FileSystem& inner_;
    const Reporter& reporter_;
};

// --- programs --------------------------------------------------------------------------------------------------------

class FinishedProcess final : public Process {
  public:
    bool Wait(int32_t) override { return true; }
    uint32_t ExitCode() override { return 0; }
    Status Terminate(uint32_t) override { return {}; }
    uint32_t Id() const override { return 0; }
};

class ReportedProcesses final : public Processes {
  public:
    ReportedProcesses(Processes& inner, const Reporter& reporter) : inner_(inner), reporter_(reporter) {}

    Result<std::unique_ptr<Process>> Start(const ProcessRequest& request) override {
        std::vector<std::u16string> words = {request.program};
        words.insert(words.end(), request.arguments.begin(), request.arguments.end());
        reporter_(u"start", JoinArguments(words) + FolderNote(request.startFolder));
        if (reporter_.isDry) return std::unique_ptr<Process>(std::make_unique<FinishedProcess>());
        return inner_.Start(request);
    }

  private:
    Processes& inner_;
    const Reporter& reporter_;
};

class ReportedOpener final : public DesktopOpener {
  public:
    ReportedOpener(DesktopOpener& inner, const Reporter& reporter) : inner_(inner), reporter_(reporter) {}

    Status Open(const OpenRequest& request) override {
        std::vector<std::u16string> words = {request.file};
        words.insert(words.end(), request.arguments.begin(), request.arguments.end());
        const bool isElevated = request.verb == OpenVerb::kRunAs;
        reporter_(isElevated ? u"open elevated" : u"open", JoinArguments(words) + FolderNote(request.startFolder));
        return reporter_.isDry ? Status() : inner_.Open(request);
    }

  private:
    DesktopOpener& inner_;
    const Reporter& reporter_;
};

// --- windows ---------------------------------------------------------------------------------------------------------

// The text of a data message; a "?" for each byte that does not make up a unit.
std::u16string DataText(std::span<const std::byte> data) {
    std::u16string text;
    for (size_t i = 0; i + 1 < data.size(); i += 2) {
        const auto low = std::to_integer<unsigned>(data[i]);
        const auto high = std::to_integer<unsigned>(data[i + 1]);
        text += static_cast<char16_t>(low | high << 8);
    }
    if (text.ends_with(u'\0')) text.pop_back();
    return text;
}

class ReportedWindows final : public WindowMessages {
  public:
    ReportedWindows(WindowMessages& inner, const Reporter& reporter) : inner_(inner), reporter_(reporter) {}

    Result<std::unique_ptr<TopLevelWindow>> RegisterTopLevel(std::u16string_view name,
                                                             MessageHandler& handler) override {
        return inner_.RegisterTopLevel(name, handler);
    }
    int EventDescriptor() const override { return inner_.EventDescriptor(); }
    bool WaitForEvents(int32_t milliseconds) override { return inner_.WaitForEvents(milliseconds); }
    void Dispatch() override { inner_.Dispatch(); }
    // A dry run shows what the host would get even where none runs.
    WindowHandle FindTopLevel(std::u16string_view className) override {
        return Pretend(inner_.FindTopLevel(className));
    }
    WindowHandle FindTopLevelOfProcess(uint32_t processId) override {
        return Pretend(inner_.FindTopLevelOfProcess(processId));
    }
    bool IsWindowAlive(WindowHandle window) override { return reporter_.isDry || inner_.IsWindowAlive(window); }

    Result<int64_t> SendData(WindowHandle target, WindowHandle sender, uint64_t number,
                             std::span<const std::byte> data) override {
        reporter_(u"data", Number(static_cast<int64_t>(number)) + u" " + DataText(data));
        if (reporter_.isDry) return int64_t{0};
        return inner_.SendData(target, sender, number, data);
    }
    Result<int64_t> SendNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) override {
        reporter_(u"send", NumbersText(message, first, second));
        if (reporter_.isDry) return int64_t{0};
        return inner_.SendNumbers(target, message, first, second);
    }
    Status PostNumbers(WindowHandle target, uint32_t message, uint64_t first, int64_t second) override {
        reporter_(u"post", NumbersText(message, first, second));
        return reporter_.isDry ? Status() : inner_.PostNumbers(target, message, first, second);
    }
    Status PostDrop(WindowHandle target, std::span<const std::byte> dropList) override {
        reporter_(u"drop", Join(ParseFileDropList(dropList).value_or(std::vector<std::u16string>()), u" | "));
        return reporter_.isDry ? Status() : inner_.PostDrop(target, dropList);
    }

  private:
    static constexpr WindowHandle kPretended = 1;
    WindowHandle Pretend(WindowHandle found) const {
        return found == kNoWindow && reporter_.isDry ? kPretended : found;
    }
    static std::u16string NumbersText(uint32_t message, uint64_t first, int64_t second) {
        return Number(message) + u" " + Number(static_cast<int64_t>(first)) + u" " + Number(second);
    }

    WindowMessages& inner_;
    const Reporter& reporter_;
};

// --- registry --------------------------------------------------------------------------------------------------------

class ReportedRegistry final : public Registry {
  public:
    ReportedRegistry(Registry& inner, const Reporter& reporter) : inner_(inner), reporter_(reporter) {}

    // Said by the values that are written into it.
    Status CreateKey(std::u16string_view key) override { return reporter_.isDry ? Status() : inner_.CreateKey(key); }
    Result<bool> HasKey(std::u16string_view key) override { return inner_.HasKey(key); }
    Result<RegistryValue> QueryValue(std::u16string_view key, std::u16string_view name) override {
        return inner_.QueryValue(key, name);
    }
    Result<std::vector<RegistryKey>> List(std::u16string_view key) override { return inner_.List(key); }
    Status Apply(std::span<const RegistryChange> changes) override {
        for (const RegistryChange& change : changes)
            reporter_(u"registry",
                      change.key + u" " + change.name + (change.value ? Shown(*change.value) : u" removed"));
        return reporter_.isDry ? Status() : inner_.Apply(changes);
    }
    Status RemoveKey(std::u16string_view key) override {
        reporter_(u"registry", std::u16string(key).append(u" removed"));
        return reporter_.isDry ? Status() : inner_.RemoveKey(key);
    }

  private:
    static std::u16string Shown(const RegistryValue& value) {
        return value.type == kRegistryDword ? u" = " + Number(value.AsDword()) : u" = \"" + value.AsString() + u"\"";
    }

    Registry& inner_;
    const Reporter& reporter_;
};

// --- the user and time -----------------------------------------------------------------------------------------------

class ReportedUserInterface final : public UserInterface {
  public:
    ReportedUserInterface(UserInterface& inner, const Reporter& reporter) : inner_(inner), reporter_(reporter) {}

    MessageAnswer ShowMessage(const MessageRequest& request) override { return inner_.ShowMessage(request); }
    std::optional<size_t> ChooseOne(const ChoiceRequest& request) override { return inner_.ChooseOne(request); }
    std::optional<std::u16string> BrowseForFolder(const FolderRequest& request) override {
        return inner_.BrowseForFolder(request);
    }
    std::u16string GetClipboardText() override { return inner_.GetClipboardText(); }
    void SetClipboardText(std::u16string_view text) override {
        reporter_(u"clipboard", text);
        if (!reporter_.isDry) inner_.SetClipboardText(text);
    }
    bool IsKeyDown(ModifierKey key) override { return inner_.IsKeyDown(key); }
    WindowHandle MainWindow() override { return inner_.MainWindow(); }
    void BringToForeground(WindowHandle window) override {
        if (!reporter_.isDry) inner_.BringToForeground(window);
    }
    std::optional<ScreenRectangle> WindowRectangle(WindowHandle window) override {
        return inner_.WindowRectangle(window);
    }
    std::optional<ScreenRectangle> WorkArea(WindowHandle window) override { return inner_.WorkArea(window); }
    std::vector<ScreenRectangle> Screens() override { return inner_.Screens(); }

  private:
    UserInterface& inner_;
    const Reporter& reporter_;
};

// Sleep and clock of a dry run: what is slept is skipped.
class SkippingClock final : public Clock, public Sleeper {
  public:
    SkippingClock(Clock& clock, Sleeper& sleeper, bool isDry) : clock_(clock), sleeper_(sleeper), isDry_(isDry) {}

    int64_t WallNanoseconds() override { return clock_.WallNanoseconds() + skipped_; }
    int64_t SteadyNanoseconds() override { return clock_.SteadyNanoseconds() + skipped_; }
    void Sleep(int32_t milliseconds) override {
        if (!isDry_)
            sleeper_.Sleep(milliseconds);
        else if (milliseconds > 0)
            skipped_ += int64_t{milliseconds} * 1'000'000;
    }

  private:
    Clock& clock_;
    Sleeper& sleeper_;
    bool isDry_;
    int64_t skipped_ = 0;
};

}  // namespace

struct ReportedServices::Decorators {
    Decorators(const ScriptServices& inner, Registry& innerRegistry, ReportStep report, bool isDry)
        : reporter{std::move(report), isDry},
          files(inner.files, reporter),
          ui(inner.ui, reporter),
          windows(inner.windows, reporter),
          processes(inner.processes, reporter),
          opener(inner.opener, reporter),
          registry(innerRegistry, reporter),
          settings(registry, CommandName(inner.settings)),
          clock(inner.clock, inner.sleeper, isDry),
          services{.files = files,
                   .ui = ui,
                   .windows = windows,
                   .processes = processes,
                   .opener = opener,
                   .environment = inner.environment,
                   .codec = inner.codec,
                   .codePages = inner.codePages,
                   .settings = settings,
                   .folders = inner.folders,
                   .messages = inner.messages,
                   .clock = clock,
                   .sleeper = clock,
                   .launchWorkers = workers,
                   .system = inner.system,
                   .locale = inner.locale,
                   .observer = inner.observer,
                   .cancel = inner.cancel,
                   .pulse = inner.pulse,
                   .maxVariableUnits = inner.maxVariableUnits} {}

    static std::u16string CommandName(const Settings& settings) {
        return settings.CommandKey().substr(kCommandKeyPrefix.size());
    }

    Reporter reporter;
    ReportedFileSystem files;
    ReportedUserInterface ui;
    ReportedWindows windows;
    ReportedProcesses processes;
    ReportedOpener opener;
    ReportedRegistry registry;
    Settings settings;
    SkippingClock clock;
    LaunchWorkers workers;  // its threads work with the above
    ScriptServices services;
};

ReportedServices::ReportedServices(const ScriptServices& inner, Registry& registry, ReportStep report,
                                   Performance performance)
    : decorators_(
          std::make_unique<Decorators>(inner, registry, std::move(report), performance == Performance::kReportOnly)) {}

ReportedServices::~ReportedServices() = default;

const ScriptServices& ReportedServices::services() const {
    return decorators_->services;
}

}  // namespace kinsort
