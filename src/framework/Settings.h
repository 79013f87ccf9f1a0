// What the host and its commands keep in the registry. Readers of the host's Settings and of the command's own key have
// an answer always, writers say whether it worked; nobody is told here.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Registry.h"

namespace kinsort {

// The settings that all commands share. Commands only read them; the host, or "kinsort settings", keeps them.
inline constexpr std::u16string_view kSettingsKey = u"Software\\TEV_Soft\\Vel\\Main001\\Settings";
inline constexpr std::u16string_view kCommandKeyPrefix = u"Software\\TEV_Soft\\VEL\\Command\\";

inline constexpr std::u16string_view kUserDirName = u"UserDir";          // string: the user folder of mode 2
inline constexpr std::u16string_view kUserDirModeName = u"UserDirMode";  // dword: how it is chosen, see VelFolders
inline constexpr std::u16string_view kLanguageName = u"NLS";             // string: suffix of the files of texts
inline constexpr std::u16string_view kTextExportName = u"LangOut";       // dword: 1 makes dialogs export their texts
inline constexpr std::u16string_view kConfirmName = u"Confiramation";    // dword of the command: ask about conflicts

inline constexpr std::u16string_view kDefaultLanguage = u".ja-JP";

// A registry that outlives it and the command's own key.
class Settings {
  public:
    // The longest text that can be read, in units; a longer one reads as the default.
    static constexpr size_t kMaxTextLength = 16383;

    Settings(Registry& registry, std::u16string_view commandName)
        : registry_(registry), commandKey_(std::u16string(kCommandKeyPrefix).append(commandName)) {}

    // --- the host's settings; each call makes the key if it is missing -----------------------------------------------

    // The value's data as text, whatever its type; `otherwise` when it cannot be read or is too long.
    std::u16string ReadSettingString(std::u16string_view name, std::u16string_view otherwise);
    // The value's data as a number, whatever its type; 0 when it cannot be read or is longer than four bytes.
    uint32_t ReadSettingDword(std::u16string_view name);

    // --- any key of the user; 1 on success, 0 on failure -------------------------------------------------------------

    int WriteRegString(std::u16string_view key, std::u16string_view name, std::u16string_view text);
    int WriteRegDword(std::u16string_view key, std::u16string_view name, uint32_t number);

    // --- the command's own key ---------------------------------------------------------------------------------------

    const std::u16string& CommandKey() const { return commandKey_; }
    std::u16string ReadCommandString(std::u16string_view name, std::u16string_view otherwise = {});
    std::optional<uint32_t> ReadCommandDword(std::u16string_view name);
    int WriteCommandString(std::u16string_view name, std::u16string_view text);
    int WriteCommandDword(std::u16string_view name, uint32_t number);
    // All of the texts or none: much faster than one by one.
    int WriteCommandStrings(std::span<const std::pair<std::u16string, std::u16string>> namesAndTexts);

    // --- the language, read on first use and kept --------------------------------------------------------------------

    // ".ja-JP", ".en-US": what stands in the names of the files of texts.
    const std::u16string& LanguageSuffix();
    // Whether dialogs should write their texts out for translating.
    bool IsTextExportOn();

  private:
    std::optional<RegistryValue> Read(std::u16string_view key, std::u16string_view name, size_t maxBytes);

    Registry& registry_;
    std::u16string commandKey_;
    std::optional<std::u16string> language_;
    std::optional<uint32_t> textExport_;
};

}  // namespace kinsort
