#include "framework/Settings.h"

#include <vector>

namespace kinsort {

// Reading makes the key, which only one without the value can lack.
std::optional<RegistryValue> Settings::Read(std::u16string_view key, std::u16string_view name, size_t maxBytes) {
    Result<RegistryValue> value = registry_.QueryValue(key, name);
    if (value.code() == StatusCode::kNotFound) (void)registry_.CreateKey(key);
    if (!value.ok() || value->data.size() > maxBytes) return std::nullopt;
    return std::move(*value);
}

std::u16string Settings::ReadSettingString(std::u16string_view name, std::u16string_view otherwise) {
    const std::optional<RegistryValue> value = Read(kSettingsKey, name, (kMaxTextLength + 1) * 2);
    return value ? value->AsString() : std::u16string(otherwise);
}

uint32_t Settings::ReadSettingDword(std::u16string_view name) {
    const std::optional<RegistryValue> value = Read(kSettingsKey, name, sizeof(uint32_t));
    return value ? value->AsDword() : 0;
}

int Settings::WriteRegString(std::u16string_view key, std::u16string_view name, std::u16string_view text) {
    return registry_.SetValue(key, name, RegistryValue::OfString(text)).ok() ? 1 : 0;
}

int Settings::WriteRegDword(std::u16string_view key, std::u16string_view name, uint32_t number) {
    return registry_.SetValue(key, name, RegistryValue::OfDword(number)).ok() ? 1 : 0;
}

std::u16string Settings::ReadCommandString(std::u16string_view name, std::u16string_view otherwise) {
    const std::optional<RegistryValue> value = Read(commandKey_, name, (kMaxTextLength + 1) * 2);
    return value ? value->AsString() : std::u16string(otherwise);
}

std::optional<uint32_t> Settings::ReadCommandDword(std::u16string_view name) {
    const std::optional<RegistryValue> value = Read(commandKey_, name, sizeof(uint32_t));
    return value ? std::optional(value->AsDword()) : std::nullopt;
}

int Settings::WriteCommandString(std::u16string_view name, std::u16string_view text) {
    return WriteRegString(commandKey_, name, text);
}

int Settings::WriteCommandDword(std::u16string_view name, uint32_t number) {
    return WriteRegDword(commandKey_, name, number);
}

int Settings::WriteCommandStrings(std::span<const std::pair<std::u16string, std::u16string>> namesAndTexts) {
    std::vector<RegistryChange> changes;
    for (const auto& [name, text] : namesAndTexts)
        changes.push_back({commandKey_, name, RegistryValue::OfString(text)});
    return registry_.Apply(changes).ok() ? 1 : 0;
}

const std::u16string& Settings::LanguageSuffix() {
    if (!language_) language_ = ReadSettingString(kLanguageName, kDefaultLanguage);
    return *language_;
}

bool Settings::IsTextExportOn() {
    if (!textExport_) textExport_ = ReadSettingDword(kTextExportName);
    return *textExport_ != 0;
}

}  // namespace kinsort
