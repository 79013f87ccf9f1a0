#include "cli/RegistryJson.h"

#include <array>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "text/Utf8.h"

namespace kinsort {
namespace {

using nlohmann::json;

constexpr std::string_view kMarker = "kinsort_registry";
constexpr uint64_t kVersion = 1;

struct TypeRow {
    uint32_t type;
    std::string_view name;
};
constexpr std::array<TypeRow, 3> kTypes = {
    {{kRegistryString, "string"}, {kRegistryDword, "dword"}, {kRegistryBinary, "binary"}}};

// What is wrong with the document, with the place in it: "keys[2].values[0].hex".
struct Fault {
    std::string place;
    std::string text;
};

const json* Member(const json& object, const char* name) {
    const auto found = object.find(name);
    return found == object.end() ? nullptr : &*found;
}

std::u16string TextMember(const json& object, const char* name, const std::string& place) {
    const json* const member = Member(object, name);
    if (member == nullptr || !member->is_string()) throw Fault{place + "." + name, "a text is needed here"};
    return FromUtf8(member->get_ref<const std::string&>());
}

const json& ArrayMember(const json& object, const char* name, const std::string& place) {
    if (!object.is_object()) throw Fault{place, "an object is needed here"};
    const json* const member = Member(object, name);
    const std::string at = place.empty() ? name : place + "." + name;
    if (member == nullptr || !member->is_array()) throw Fault{at, "an array is needed here"};
    return *member;
}

std::optional<uint32_t> Number32(const json& value) {
    if (!value.is_number_unsigned()) return std::nullopt;
    const auto number = value.get<uint64_t>();
    if (number > std::numeric_limits<uint32_t>::max()) return std::nullopt;
    return static_cast<uint32_t>(number);
}

uint32_t ReadType(const json& object, const std::string& place) {
    const json* const member = Member(object, "type");
    if (member != nullptr && member->is_string()) {
        for (const TypeRow& row : kTypes) {
            if (row.name == member->get_ref<const std::string&>()) return row.type;
        }
    }
    const std::optional<uint32_t> number = member == nullptr ? std::nullopt : Number32(*member);
    if (!number) throw Fault{place + ".type", R"("string", "dword", "binary" or a number is needed here)"};
    return *number;
}

RegistryValue ReadValue(const json& object, const std::string& place) {
    RegistryValue value{ReadType(object, place), {}};
    if (const json* const hex = Member(object, "hex")) {
        if (!hex->is_string() || !BytesOfHex(hex->get_ref<const std::string&>(), value.data))
            throw Fault{place + ".hex", "pairs of hexadecimal digits are needed here"};
        return value;
    }
    const json* const plain = Member(object, "value");
    if (value.type == kRegistryString) return RegistryValue::OfString(TextMember(object, "value", place));
    if (value.type != kRegistryDword) throw Fault{place + ".hex", "pairs of hexadecimal digits are needed here"};
    const std::optional<uint32_t> number = plain == nullptr ? std::nullopt : Number32(*plain);
    if (!number) throw Fault{place + ".value", "a number from 0 to 4294967295 is needed here"};
    return RegistryValue::OfDword(*number);
}

std::vector<RegistryKey> ReadKeys(const json& document) {
    const json* const marker = document.is_object() ? Member(document, std::string(kMarker).c_str()) : nullptr;
    if (marker == nullptr || !marker->is_number_unsigned())
        throw Fault{"", "this is no file that 'kinsort settings export' has written"};
    if (marker->get<uint64_t>() > kVersion) throw Fault{"", "it was written by a later version of kinsort"};
    std::vector<RegistryKey> keys;
    for (const json& one : ArrayMember(document, "keys", "")) {
        const std::string place = "keys[" + std::to_string(keys.size()) + "]";
        const json& values = ArrayMember(one, "values", place);
        RegistryKey key{TextMember(one, "path", place), {}};
        for (const json& value : values) {
            const std::string at = place + ".values[" + std::to_string(key.entries.size()) + "]";
            if (!value.is_object()) throw Fault{at, "an object is needed here"};
            key.entries.push_back({TextMember(value, "name", at), ReadValue(value, at)});
        }
        keys.push_back(std::move(key));
    }
    return keys;
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::string RegistryTypeName(uint32_t type) {
    for (const TypeRow& row : kTypes) {
        if (row.type == type) return std::string(row.name);
    }
    return std::to_string(type);
}

std::string HexOfBytes(std::span<const std::byte> bytes) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string hex;
    for (const std::byte byte : bytes)
        hex += {kDigits[std::to_integer<size_t>(byte) >> 4], kDigits[std::to_integer<size_t>(byte) & 0xF]};
    return hex;
}

bool BytesOfHex(std::string_view hex, std::vector<std::byte>& bytes) {
    if (hex.size() % 2 != 0) return false;
    bytes.clear();
    for (size_t i = 0; i < hex.size(); i += 2) {
        const int high = HexDigit(hex[i]);
        const int low = HexDigit(hex[i + 1]);
        if (high < 0 || low < 0) return false;
        bytes.push_back(static_cast<std::byte>(high << 4 | low));
    }
    return true;
}

void WriteRegistryValue(JsonWriter& out, const RegistryValue& value) {
    const std::string name = RegistryTypeName(value.type);
    const bool isNamed = name[0] < '0' || name[0] > '9';
    if (isNamed) {
        out.String("type", name);
    } else {
        out.Number("type", value.type);
    }
    const std::u16string text = value.AsString();
    const bool isText = RegistryValue::OfString(text) == value && FromUtf8(ToUtf8(text)) == text;
    if (isText) {
        out.String("value", ToUtf8(text));
    } else if (RegistryValue::OfDword(value.AsDword()) == value) {
        out.Number("value", value.AsDword());
    } else {
        out.String("hex", HexOfBytes(value.data));
    }
}

void WriteRegistryKeys(JsonWriter& out, std::span<const RegistryKey> keys) {
    out.BeginObject();
    out.Number(kMarker, kVersion);
    out.BeginArray("keys");
    for (const RegistryKey& key : keys) {
        out.BeginObject();
        out.String("path", ToUtf8(key.path));
        out.BeginArray("values");
        for (const RegistryEntry& entry : key.entries) {
            out.BeginObject();
            out.String("name", ToUtf8(entry.name));
            WriteRegistryValue(out, entry.value);
            out.EndObject();
        }
        out.EndArray();
        out.EndObject();
    }
    out.EndArray();
    out.EndObject();
    out.Finish();
}

ReadRegistryKeys ReadRegistryJson(std::string_view text) {
    ReadRegistryKeys read;
    try {
        read.keys = ReadKeys(json::parse(text));
    } catch (const json::parse_error& error) {
        const size_t end = std::min(error.byte, text.size());
        const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<ptrdiff_t>(end), '\n');
        read.error = "line " + std::to_string(line) + ": this is no JSON";
    } catch (const Fault& fault) {
        read.error = (fault.place.empty() ? "" : fault.place + ": ") + fault.text;
    }
    return read;
}

}  // namespace kinsort
