#include <algorithm>

#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/HostServices.h"
#include "cli/JsonWriter.h"
#include "cli/KnownSettings.h"
#include "cli/RegistryJson.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "cli/TypedValue.h"
#include "text/Split.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

struct SettingsRun {
    CliContext& context;
    const CommandLine& line;
    HostServices& host;
    Console& console;

    const std::string& Operand(size_t index) const { return line.operands[index]; }
    size_t OperandCount() const { return line.operands.size(); }
};

ExitCode Fail(const SettingsRun& run, const Status& status) {
    if (status.path().empty())
        run.console.Say("there is no place for the settings: set HOME or XDG_CONFIG_HOME to a folder");
    else
        run.console.Say(run.context.ShownPath(status.path()) + ": " + StatusText(status));
    return ExitCode::kNothing;
}

// The setting that an operand names. Nothing after a message.
std::optional<NamedSetting> TypedSetting(const SettingsRun& run, const std::string& typed) {
    std::optional<NamedSetting> setting = FindSetting(typed, run.host.settings.CommandKey());
    if (!setting)
        run.console.Say("settings: '" + ShownText(typed) + "' names no value; 'kinsort settings list' shows them");
    return setting;
}

// What people read: a text as it is, a folder as a native path, numbers in decimal, everything else as bytes.
std::string ValueForPeople(const SettingsRun& run, const RegistryValue& value, const KnownSetting* known) {
    const bool isFolder = known != nullptr && known->kind == SettingKind::kFolder;
    if (isFolder && !value.AsString().empty()) return run.context.NativePath(value.AsString());
    if (value.type == kRegistryDword) return std::to_string(value.AsDword());
    if (value.type == kRegistryString) return ToUtf8(value.AsString());
    return HexOfBytes(value.data);
}

struct ShownSetting {
    NamedSetting setting;
    std::optional<RegistryValue> value;  // nothing: not set
};

void WriteSetting(JsonWriter& json, const SettingsRun& run, const ShownSetting& shown) {
    json.BeginObject();
    json.String("name", shown.setting.shownName);
    json.String("key", ToUtf8(shown.setting.key));
    json.String("value_name", ToUtf8(shown.setting.valueName));
    json.Bool("is_set", shown.value.has_value());
    if (shown.value) {
        WriteRegistryValue(json, *shown.value);
        const bool isFolder = shown.setting.known != nullptr && shown.setting.known->kind == SettingKind::kFolder;
        if (isFolder && !shown.value->AsString().empty())
            json.Path("path", run.context.NativePath(shown.value->AsString()));
    } else if (shown.setting.known != nullptr) {
        json.String("default", shown.setting.known->otherwise);
    }
    json.EndObject();
}

// The stored value, nothing when it is not set; a failure after a message.
std::optional<ShownSetting> Look(const SettingsRun& run, const NamedSetting& setting) {
    Result<RegistryValue> value = run.host.registry.QueryValue(setting.key, setting.valueName);
    if (value.ok()) return ShownSetting{setting, std::move(*value)};
    if (value.code() == StatusCode::kNotFound) return ShownSetting{setting, std::nullopt};
    Fail(run, value.status());
    return std::nullopt;
}

ExitCode Get(const SettingsRun& run) {
    const std::optional<NamedSetting> setting = TypedSetting(run, run.Operand(1));
    if (!setting) return ExitCode::kUsage;
    const std::optional<ShownSetting> shown = Look(run, *setting);
    if (!shown) return ExitCode::kNothing;
    if (!shown->value && setting->known == nullptr) {
        run.console.Say(ShownText(setting->shownName) + " is not set; 'kinsort settings list' shows what is");
        return ExitCode::kNothing;
    }
    if (run.line.Has(OptionId::kJson)) {
        JsonWriter json(run.console);
        WriteSetting(json, run, *shown);
        json.Finish();
        return ExitCode::kDone;
    }
    if (!shown->value) {
        run.console.Print(std::string(setting->known->otherwise) + "\n");
        run.console.Note("this is the default; it is not set");
        return ExitCode::kDone;
    }
    const std::string text = ValueForPeople(run, *shown->value, setting->known);
    const bool isShown = run.context.services.terminal.IsTerminal(Stream::kOutput);
    run.console.Print((isShown ? ShownText(text) : text) + "\n");
    return ExitCode::kDone;
}

// What is stored below the key that list and export are given, with slashes as settings may be; everything when they
// are given none. Nothing after a message.
std::optional<std::vector<RegistryKey>> StoredKeys(const SettingsRun& run) {
    std::u16string key = run.OperandCount() < 2 ? std::u16string() : FromUtf8(run.Operand(1));
    key = NormalKeyPath(key.find(u'\\') == key.npos ? Replace(key, u"/", u"\\") : key);
    Result<std::vector<RegistryKey>> keys = run.host.registry.List(key);
    if (!keys.ok()) {
        Fail(run, keys.status());
        return std::nullopt;
    }
    if (!keys->empty()) return std::move(*keys);
    run.console.Say("there is no key " + ShownText(ToUtf8(key)) + "; 'kinsort settings list' shows all");
    return std::nullopt;
}

ExitCode List(const SettingsRun& run) {
    std::vector<ShownSetting> all;
    if (run.OperandCount() == 1) {
        for (const KnownSetting& known : kKnownSettings) {
            const std::optional<ShownSetting> shown =
                Look(run, *FindSetting(known.name, run.host.settings.CommandKey()));
            if (!shown) return ExitCode::kNothing;
            all.push_back(*shown);
        }
    }
    std::optional<std::vector<RegistryKey>> keys = StoredKeys(run);
    if (!keys) return ExitCode::kNothing;
    for (RegistryKey& one : *keys) {
        for (RegistryEntry& entry : one.entries) {
            const std::u16string path = one.path.empty() ? entry.name : one.path + u"\\" + entry.name;
            std::optional<NamedSetting> setting;
            if (entry.name.find(u'\\') == entry.name.npos && !one.path.empty())
                setting = FindSetting(ToUtf8(path), run.host.settings.CommandKey());
            if (!setting) setting = NamedSetting{one.path, entry.name, nullptr, ToUtf8(path)};
            if (run.OperandCount() > 1 || setting->known == nullptr) all.push_back({*setting, std::move(entry.value)});
        }
    }
    if (run.line.Has(OptionId::kJson)) {
        JsonWriter json(run.console);
        json.BeginArray();
        for (const ShownSetting& one : all)
            WriteSetting(json, run, one);
        json.EndArray();
        json.Finish();
        return ExitCode::kDone;
    }
    for (const ShownSetting& one : all) {
        std::string text = ShownText(one.setting.shownName) + " = ";
        if (one.value) {
            text += ShownText(ValueForPeople(run, *one.value, one.setting.known));
            if (one.setting.known == nullptr) text += " (" + RegistryTypeName(one.value->type) + ")";
        } else {
            const std::string otherwise(one.setting.known->otherwise);
            text += otherwise.empty() ? "(not set)" : otherwise + " (default)";
        }
        if (one.setting.known != nullptr) text += "\n    " + std::string(one.setting.known->help);
        run.console.Print(text + "\n");
    }
    return ExitCode::kDone;
}

ExitCode Set(const SettingsRun& run) {
    const std::optional<NamedSetting> setting = TypedSetting(run, run.Operand(1));
    if (!setting) return ExitCode::kUsage;
    const bool isPath = run.Operand(1).find_first_of("\\/") != std::string::npos;
    const bool isThere = run.host.registry.QueryValue(setting->key, setting->valueName).ok();
    if (setting->known == nullptr && !isPath && !isThere) {
        run.console.Say("settings: there is no setting '" + ShownText(run.Operand(1)) +
                        "'; 'kinsort settings list' shows them, and any other value is named by its full path");
        return ExitCode::kUsage;
    }
    if (setting->known != nullptr && run.line.Has(OptionId::kType)) {
        run.console.Say("settings: the type of " + setting->shownName + " is fixed; leave --type out");
        return ExitCode::kUsage;
    }
    const TypedValue typed = setting->known != nullptr ? ReadKnownValue(run.context, *setting->known, run.Operand(2))
                                                       : ReadOtherValue(run.context, *setting, run.Operand(2),
                                                                        run.line.Value(OptionId::kType));
    if (!typed.error.empty()) {
        run.console.Say("settings: " + typed.error);
        return ExitCode::kUsage;
    }
    const Status status = run.host.registry.SetValue(setting->key, setting->valueName, typed.value);
    if (!status.ok()) return Fail(run, status);
    run.console.Note(ShownText(setting->shownName) + " = " +
                     ShownText(ValueForPeople(run, typed.value, setting->known)));
    return ExitCode::kDone;
}

ExitCode Unset(const SettingsRun& run) {
    const std::optional<NamedSetting> setting = TypedSetting(run, run.Operand(1));
    if (!setting) return ExitCode::kUsage;
    const std::optional<ShownSetting> shown = Look(run, *setting);
    if (!shown) return ExitCode::kNothing;
    if (!shown->value) {
        run.console.Say(ShownText(setting->shownName) + " is not set");
        return ExitCode::kNothing;
    }
    const Status status = run.host.registry.RemoveValue(setting->key, setting->valueName);
    return status.ok() ? ExitCode::kDone : Fail(run, status);
}

ExitCode Export(const SettingsRun& run) {
    const std::optional<std::vector<RegistryKey>> keys = StoredKeys(run);
    if (!keys) return ExitCode::kNothing;
    JsonWriter json(run.console);
    WriteRegistryKeys(json, *keys);
    return ExitCode::kDone;
}

// All values of the file or none; keys without values are made, and nothing is taken away.
ExitCode Import(const SettingsRun& run) {
    const std::string& file = run.Operand(1);
    const std::string shown = file == "-" ? "standard input" : ShownText(file);
    const Result<std::string> text = run.context.services.terminal.ReadAll(file);
    if (!text.ok()) {
        run.console.Say(shown + ": " + StatusText(text.status()));
        return ExitCode::kNothing;
    }
    const ReadRegistryKeys read = ReadRegistryJson(*text);
    if (!read.error.empty()) {
        run.console.Say(shown + ": " + ShownText(read.error) + "; nothing was imported");
        return ExitCode::kNothing;
    }
    std::vector<RegistryChange> changes;
    for (const RegistryKey& key : read.keys) {
        for (const RegistryEntry& entry : key.entries)
            changes.push_back({key.path, entry.name, entry.value});
    }
    Status status = run.host.registry.Apply(changes);
    for (size_t i = 0; i < read.keys.size() && status.ok(); ++i)
        status = run.host.registry.CreateKey(read.keys[i].path);
    const bool isName = status.code() == StatusCode::kInvalid || status.code() == StatusCode::kNameTooLong ||
                        status.code() == StatusCode::kFileTooLarge;
    if (isName) {
        run.console.Say(shown + ": the name or the data of '" + ShownText(ToUtf8(status.path())) +
                        "' is not possible or too long; nothing was imported");
        return ExitCode::kNothing;
    }
    if (!status.ok()) return Fail(run, status);
    run.console.Note("imported " + Counted(changes.size(), "value"));
    return ExitCode::kDone;
}

struct ActionRow {
    std::string_view name;
    ExitCode (*run)(const SettingsRun& run);
};
constexpr std::array<ActionRow, 6> kActions = {{
    {"get", Get},
    {"set", Set},
    {"unset", Unset},
    {"list", List},
    {"export", Export},
    {"import", Import},
}};

}  // namespace

ExitCode RunSettings(CliContext& context, const CommandLine& line) {
    const SettingsRun run{context, line, context.services.host(), context.console};
    const auto action = std::find_if(kActions.begin(), kActions.end(),
                                     [&line](const ActionRow& row) { return row.name == line.operands[0]; });
    return action == kActions.end() ? ExitCode::kUsage : action->run(run);
}

}  // namespace kinsort
