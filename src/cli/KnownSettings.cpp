#include "cli/KnownSettings.h"

#include "platform/Registry.h"
#include "text/AsciiCase.h"
#include "text/Split.h"
#include "text/Utf8.h"

namespace kinsort {

std::optional<NamedSetting> FindSetting(std::string_view typed, std::u16string_view commandKey) {
    const std::u16string name = FromUtf8(typed);
    const auto keyOf = [commandKey](const KnownSetting& known) { return known.isHosts ? kSettingsKey : commandKey; };
    for (const KnownSetting& known : kKnownSettings) {
        if (EqualNoCase(name, FromUtf8(known.name)) || (!known.isHosts && EqualNoCase(name, known.valueName)))
            return NamedSetting{std::u16string(keyOf(known)), std::u16string(known.valueName), &known,
                                std::string(known.name)};
    }
    const std::u16string path = name.find(u'\\') == name.npos ? Replace(name, u"/", u"\\") : name;
    const size_t end = path.rfind(u'\\');
    NamedSetting setting{end == path.npos ? std::u16string(commandKey) : NormalKeyPath(path.substr(0, end)),
                         path.substr(end == path.npos ? 0 : end + 1), nullptr, ""};
    if (setting.valueName.empty()) return std::nullopt;
    for (const KnownSetting& known : kKnownSettings) {
        if (EqualNoCase(setting.key, keyOf(known)) && EqualNoCase(setting.valueName, known.valueName))
            setting.known = &known;
    }
    setting.shownName = setting.known != nullptr
                            ? std::string(setting.known->name)
                            : ToUtf8((setting.key.empty() ? u"" : setting.key + u"\\") + setting.valueName);
    return setting;
}

}  // namespace kinsort
