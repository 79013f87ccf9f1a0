// The registry as JSON, out and in again without loss:
//
//   {"kinsort_registry": 1, "keys": [
//   {"path": "Software\\Maker\\Name", "values": [
//   {"name": "NLS", "type": "string", "value": ".en-US"},
//   {"name": "LangOut", "type": "dword", "value": 1},
//   {"name": "Icon", "type": "binary", "hex": "00ff"},
//   {"name": "Odd", "type": 11, "hex": "0000000000000000"}]}]}
//
// "type" is "string", "dword", "binary" or the number of any other type. Data that is not quite what its type promises
// (a text without its NUL, half a character) stands as "hex" too.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "cli/JsonWriter.h"
#include "platform/Registry.h"

namespace kinsort {

// "string", "dword", "binary", or the number.
std::string RegistryTypeName(uint32_t type);
// "0aff".
std::string HexOfBytes(std::span<const std::byte> bytes);
// False when the text is not pairs of hexadecimal digits.
bool BytesOfHex(std::string_view hex, std::vector<std::byte>& bytes);

// The members "type" and "value" or "hex" of an object that is open.
void WriteRegistryValue(JsonWriter& json, const RegistryValue& value);
void WriteRegistryKeys(JsonWriter& json, std::span<const RegistryKey> keys);

struct ReadRegistryKeys {
    std::vector<RegistryKey> keys;
    std::string error;  // what is wrong and where; empty when nothing is
};
ReadRegistryKeys ReadRegistryJson(std::string_view text);

}  // namespace kinsort
