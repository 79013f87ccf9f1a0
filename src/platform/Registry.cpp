#include "platform/Registry.h"

#include <algorithm>

#include "text/Split.h"
#include "text/Utf16Bytes.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

bool IsWellFormed(std::u16string_view name) {
    for (size_t i = 0; i < name.size(); ++i) {
        if (name[i] == u'\0' || IsLowSurrogate(name[i])) return false;
        if (!IsHighSurrogate(name[i])) continue;
        if (++i == name.size() || !IsLowSurrogate(name[i])) return false;
    }
    return true;
}

Status CheckName(std::u16string_view name, size_t maxLength) {
    if (!IsWellFormed(name)) return Status::Failure(StatusCode::kInvalid).At(std::u16string(name));
    if (name.size() > maxLength) return Status::Failure(StatusCode::kNameTooLong).At(std::u16string(name));
    return {};
}

}  // namespace

RegistryValue RegistryValue::OfString(std::u16string_view text) {
    RegistryValue value{kRegistryString, {}};
    AppendUtf16Bytes(value.data, text);
    value.data.resize(value.data.size() + 2);
    return value;
}

RegistryValue RegistryValue::OfDword(uint32_t number) {
    RegistryValue value{kRegistryDword, {}};
    for (int shift = 0; shift < 32; shift += 8)
        value.data.push_back(static_cast<std::byte>(number >> shift & 0xFF));
    return value;
}

std::u16string RegistryValue::AsString() const {
    std::u16string text;
    for (size_t i = 0; i + 1 < data.size(); i += 2) {
        const char16_t unit = Utf16UnitAt(data, i);
        if (unit == u'\0') break;
        text += unit;
    }
    return text;
}

uint32_t RegistryValue::AsDword() const {
    uint32_t number = 0;
    for (size_t i = 0; i < std::min<size_t>(data.size(), 4); ++i)
        number |= std::to_integer<uint32_t>(data[i]) << (8 * i);
    return number;
}

Status Registry::SetValue(std::u16string_view key, std::u16string_view name, RegistryValue value) {
    const RegistryChange change{std::u16string(key), std::u16string(name), std::move(value)};
    return Apply(std::span(&change, 1));
}

Status Registry::RemoveValue(std::u16string_view key, std::u16string_view name) {
    const RegistryChange change{std::u16string(key), std::u16string(name), std::nullopt};
    return Apply(std::span(&change, 1));
}

std::u16string NormalKeyPath(std::u16string_view key) {
    return Join(SplitSkippingEmpty(key, u'\\'), u"\\");
}

Status CheckKeyPath(std::u16string_view key) {
    for (const std::u16string& name : SplitSkippingEmpty(key, u'\\')) {
        Status status = CheckName(name, Registry::kMaxKeyNameLength);
        if (!status.ok()) return status;
    }
    return {};
}

Status CheckChange(const RegistryChange& change) {
    Status status = CheckKeyPath(change.key);
    if (status.ok()) status = CheckName(change.name, Registry::kMaxValueNameLength);
    if (status.ok() && change.value && change.value->data.size() > Registry::kMaxDataBytes) {
        return Status::Failure(StatusCode::kFileTooLarge).At(change.name);
    }
    return status;
}

}  // namespace kinsort
