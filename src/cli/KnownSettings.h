// The settings that people know by name, and how a name on the command line leads to a value of the registry.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "framework/Settings.h"

namespace kinsort {

enum class SettingKind : uint8_t { kFolder, kChoice, kLanguage };

struct KnownSetting {
    std::string_view name;
    bool isHosts;  // of the host's settings; otherwise of the command's own key
    std::u16string_view valueName;
    SettingKind kind;
    std::string_view choices;    // numbers, separated by "|"
    std::string_view otherwise;  // what counts when it is not set
    std::string_view help;
};

// To add one: a row.
inline constexpr std::array<KnownSetting, 5> kKnownSettings = {{
    {"NLS", true, kLanguageName, SettingKind::kLanguage, "", ".ja-JP",
     "language of the dialog and of messages: .ja-JP or .en-US"},
    {"UserDirMode", true, kUserDirModeName, SettingKind::kChoice, "0|1|2", "0",
     "user folder: 0 Vel in the local data folder, 1 below the program's folder, 2 UserDir"},
    {"UserDir", true, kUserDirName, SettingKind::kFolder, "", "", "the user folder when UserDirMode is 2"},
    {"LangOut", true, kTextExportName, SettingKind::kChoice, "0|1", "0",
     "1 lets dialogs write their texts out for translating"},
    {"Confirmation", false, kConfirmName, SettingKind::kChoice, "0|1", "1", "1 lets the dialog ask about conflicts"},
}};

// A value of the registry, as somebody named it.
struct NamedSetting {
    std::u16string key;
    std::u16string valueName;
    const KnownSetting* known = nullptr;  // null for any other value
    std::string shownName;                // the known name, or the full path
};

// `typed` is a known name, or the path of a value ("Software\Maker\Name\Value"; "/" separates when there is no "\"), or
// the name of a value of the command's own key. Case does not count. Nothing for an empty name and for a path without a
// value's name.
std::optional<NamedSetting> FindSetting(std::string_view typed, std::u16string_view commandKey);

}  // namespace kinsort
