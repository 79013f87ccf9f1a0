#include "cli/TypedValue.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "cli/CommandLine.h"
#include "cli/HostServices.h"
#include "cli/ItemList.h"
#include "cli/RegistryJson.h"
#include "cli/ShownText.h"
#include "cli/Texts.h"
#include "framework/Paths.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

std::optional<uint32_t> NumberOf(std::string_view typed) {
    const bool isHex = typed.starts_with("0x") || typed.starts_with("0X");
    if (isHex) typed.remove_prefix(2);
    uint32_t number = 0;
    const auto [end, error] = std::from_chars(typed.data(), typed.data() + typed.size(), number, isHex ? 16 : 10);
    if (error != std::errc() || end != typed.data() + typed.size()) return std::nullopt;
    return number;
}

TypedValue LanguageValue(CliContext& context, const std::string& typed) {
    const std::u16string suffix = FromUtf8(typed.starts_with('.') ? typed : "." + typed);
    const bool isName = suffix.size() > 1 && std::all_of(suffix.begin() + 1, suffix.end(), [](char16_t unit) {
                            return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
                                   (unit >= u'0' && unit <= u'9') || unit == u'-' || unit == u'_';
                        });
    if (!isName) return {{}, "'" + ShownText(typed) + "' is no language; write it like .ja-JP or .en-US"};
    const std::u16string file = context.services.host().folders.GetAppDir() + u"Lang\\Msg" + suffix + u".txt";
    if (!FileExists(context.services.files, file)) {
        context.console.Say("there are no texts for this language yet; the dialog will look for them in " +
                            context.ShownPath(file));
    }
    return {RegistryValue::OfString(suffix), {}};
}

}  // namespace

TypedValue ReadKnownValue(CliContext& context, const KnownSetting& known, const std::string& typed) {
    if (known.kind == SettingKind::kLanguage) return LanguageValue(context, typed);
    if (known.kind == SettingKind::kFolder) {
        if (typed.empty()) return {RegistryValue::OfString(u""), {}};
        const Result<std::u16string> folder = ResolveTyped(context, typed);
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

TypedValue ReadOtherValue(CliContext& context, const NamedSetting& setting, const std::string& typed,
                          std::string type) {
    const Result<RegistryValue> stored = context.services.host().registry.QueryValue(setting.key, setting.valueName);
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

}  // namespace kinsort
