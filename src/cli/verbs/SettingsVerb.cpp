#include <algorithm>
#include <charconv>
#include <functional>

#include "cli/CliContext.h"
#include "cli/CommandLine.h"
#include "cli/HostServices.h"
#include "cli/ItemList.h"
#include "cli/JsonWriter.h"
#include "cli/KnownSettings.h"
#include "cli/RegistryJson.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "framework/Paths.h"
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

ExitCode Fail(const SettingsRun& run, const Status& status, std::string_view what = {}) {
    std::string text(what);
    if (text.empty() && !status.path().empty()) text = run.context.ShownPath(status.path());
    run.console.Say((text.empty() ? "" : text + ": ") + StatusText(status));
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
    json.Key("name");
    json.String(shown.setting.shownName);
    json.Key("key");
    json.String(ToUtf8(shown.setting.key));
    json.Key("value_name");
    json.String(ToUtf8(shown.setting.valueName));
    json.Key("is_set");
    json.Bool(shown.value.has_value());
    if (shown.value) {
        WriteRegistryValue(json, *shown.value);
        const bool isFolder = shown.setting.known != nullptr && shown.setting.known->kind == SettingKind::kFolder;
        if (isFolder && !shown.value->AsString().empty())
            json.Path("path", run.context.NativePath(shown.value->AsString()));
    } else if (shown.setting.known != nullptr) {
        json.Key("default");
        json.String(shown.setting.known->otherwise);
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
    const bool isShown = run.console.terminal().IsTerminal(Stream::kOutput);
    run.console.Print((isShown ? ShownText(text) : text) + "\n");
    return ExitCode::kDone;
}

// The key that list and export are given, with slashes as settings may be; empty: everything.
std::u16string TypedKey(const SettingsRun& run) {
    if (run.OperandCount() < 2) return {};
    const std::u16string key = FromUtf8(run.Operand(1));
    return NormalKeyPath(key.find(u'\\') == key.npos ? Replace(key, u"/", u"\\") : key);
}

ExitCode List(const SettingsRun& run) {
    std::vector<ShownSetting> all;
    const std::u16string key = TypedKey(run);
    if (run.OperandCount() == 1) {
        for (const KnownSetting& known : kKnownSettings) {
            const std::optional<ShownSetting> shown =
                Look(run, *FindSetting(known.name, run.host.settings.CommandKey()));
            if (!shown) return ExitCode::kNothing;
            all.push_back(*shown);
        }
    }
    Result<std::vector<RegistryKey>> keys = run.host.registry.List(key);
    if (!keys.ok()) return Fail(run, keys.status());
    if (keys->empty()) {
        run.console.Say("there is no key " + ShownText(ToUtf8(key)) + "; 'kinsort settings list' shows all");
        return ExitCode::kNothing;
    }
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

std::optional<uint32_t> NumberOf(std::string_view typed) {
    const bool isHex = typed.starts_with("0x") || typed.starts_with("0X");
    if (isHex) typed.remove_prefix(2);
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(typed.data(), typed.data() + typed.size(), number, isHex ? 16 : 10);
    if (error != std::errc() || end != typed.data() + typed.size()) return std::nullopt;
    return number;
}

// A value, or what is wrong with it.
struct TypedValue {
    RegistryValue value;
    std::string error;
};

TypedValue LanguageValue(const SettingsRun& run, const std::string& typed) {
    const std::u16string suffix = FromUtf8(typed.starts_with('.') ? typed : "." + typed);
    const bool isName = suffix.size() > 1 && std::all_of(suffix.begin() + 1, suffix.end(), [](char16_t unit) {
                            return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
                                   (unit >= u'0' && unit <= u'9') || unit == u'-' || unit == u'_';
                        });
    if (!isName) return {{}, "'" + ShownText(typed) + "' is no language; write it like .ja-JP or .en-US"};
    const std::u16string file = run.host.folders.GetAppDir() + u"Lang\\Msg" + suffix + u".txt";
    if (!FileExists(run.context.services.files, file)) {
        run.console.Say("there are no texts for this language yet; the dialog will look for them in " +
                        run.context.ShownPath(file));
    }
    return {RegistryValue::OfString(suffix), {}};
}

TypedValue KnownValue(const SettingsRun& run, const KnownSetting& known, const std::string& typed) {
    if (known.kind == SettingKind::kLanguage) return LanguageValue(run, typed);
    if (known.kind == SettingKind::kFolder) {
        if (typed.empty()) return {RegistryValue::OfString(u""), {}};
        const Result<std::u16string> folder = ResolveTyped(run.context, typed);
        if (!folder.ok()) return {{}, ShownText(typed) + ": " + StatusText(folder.status())};
        return {RegistryValue::OfString(*folder), {}};
    }
    const std::optional<uint32_t> number = NumberOf(typed);
    const std::string padded = "|" + std::string(known.choices) + "|";
    if (number && padded.find("|" + std::to_string(*number) + "|") != padded.npos)
        return {RegistryValue::OfDword(*number), {}};
    return {{},
            std::string(known.name) + " takes " + ListOfChoices(known.choices) + ", not '" + ShownText(typed) + "'"};
}

// Of the type that was asked for, else of the one that is stored, else a text.
TypedValue OtherValue(const SettingsRun& run, const NamedSetting& setting, const std::string& typed) {
    std::string type = run.line.Value(OptionId::kType);
    const Result<RegistryValue> stored = run.host.registry.QueryValue(setting.key, setting.valueName);
    if (type.empty()) type = stored.ok() ? RegistryTypeName(stored->type) : "string";
    if (type == "string") return {RegistryValue::OfString(FromUtf8(typed)), {}};
    if (type == "dword") {
        const std::optional<uint32_t> number = NumberOf(typed);
        if (number) return {RegistryValue::OfDword(*number), {}};
        return {{}, "a dword is a number from 0 to 4294967295, not '" + ShownText(typed) + "'; see --type"};
    }
    TypedValue value;
    if (type != "binary") value.value.type = stored.ok() ? stored->type : kRegistryBinary;
    if (!BytesOfHex(typed, value.value.data))
        value.error = "type " + type + " takes pairs of hexadecimal digits, not '" + ShownText(typed) + "'; see --type";
    return value;
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
    const TypedValue typed = setting->known != nullptr ? KnownValue(run, *setting->known, run.Operand(2))
                                                       : OtherValue(run, *setting, run.Operand(2));
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
    const std::u16string key = TypedKey(run);
    const Result<std::vector<RegistryKey>> keys = run.host.registry.List(key);
    if (!keys.ok()) return Fail(run, keys.status());
    if (keys->empty()) {
        run.console.Say("there is no key " + ShownText(ToUtf8(key)) + "; 'kinsort settings list' shows all");
        return ExitCode::kNothing;
    }
    JsonWriter json(run.console);
    WriteRegistryKeys(json, *keys);
    return ExitCode::kDone;
}

// All values of the file or none; keys without values are made, and nothing is taken away.
ExitCode Import(const SettingsRun& run) {
    const std::string& file = run.Operand(1);
    const Result<std::string> text = run.console.terminal().ReadAll(file);
    if (!text.ok()) return Fail(run, text.status(), ShownText(file));
    const ReadRegistryKeys read = ReadRegistryJson(*text);
    if (!read.error.empty()) {
        run.console.Say(ShownText(file) + ": " + ShownText(read.error) + "; nothing was imported");
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
        run.console.Say(ShownText(file) + ": the name or the data of '" + ShownText(ToUtf8(status.path())) +
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
