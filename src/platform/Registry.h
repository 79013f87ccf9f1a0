// The user's registry: keys that hold named, typed values. A key is a path of names between "\"
// ("Software\Maker\Name"), counted from the user's root; empty names in it do not count, so a "\" at its end means
// nothing, and the empty path is the root itself. Key and value names are the same whatever the case of their ASCII
// letters, and keep the case they were first written in. The value with the empty name is the key's default value.
//
// Several programs use one registry at a time; each call sees and leaves it whole. Used from one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Status.h"

namespace kinsort {

// The kinds of values that programs know. A value of any other kind is kept just as well.
constexpr uint32_t kRegistryString = 1;
constexpr uint32_t kRegistryBinary = 3;
constexpr uint32_t kRegistryDword = 4;

struct RegistryValue {
    uint32_t type = kRegistryBinary;
    std::vector<std::byte> data;

    // UTF-16LE with the terminating NUL.
    static RegistryValue OfString(std::u16string_view text);
    // Four bytes, the lowest first.
    static RegistryValue OfDword(uint32_t number);

    // The data as text up to the first NUL unit, whatever the type; half a unit at the end does not count.
    std::u16string AsString() const;
    // The first four bytes as a number, missing ones 0, whatever the type.
    uint32_t AsDword() const;

    bool operator==(const RegistryValue&) const = default;
};

struct RegistryEntry {
    std::u16string name;
    RegistryValue value;

    bool operator==(const RegistryEntry&) const = default;
};

struct RegistryKey {
    std::u16string path;                 // from the root
    std::vector<RegistryEntry> entries;  // by name, lower-cased

    bool operator==(const RegistryKey&) const = default;
};

// One change of one value. Setting makes the key and every key above it; removing what is not there is no failure.
struct RegistryChange {
    std::u16string key;
    std::u16string name;
    std::optional<RegistryValue> value;  // nothing: the value goes
};

class Registry {
  public:
    static constexpr size_t kMaxKeyNameLength = 255;      // units of one name of a path
    static constexpr size_t kMaxValueNameLength = 16383;  // units
    static constexpr size_t kMaxDataBytes = size_t{1} << 20;

    virtual ~Registry() = default;

    // Makes the key with every key above it unless it is there.
    virtual Status CreateKey(std::u16string_view key) = 0;
    virtual Result<bool> HasKey(std::u16string_view key) = 0;
    // kNotFound when there is no such key or no such value in it.
    virtual Result<RegistryValue> QueryValue(std::u16string_view key, std::u16string_view name) = 0;
    // All of the changes, in their order, or none of them. kInvalid, naming it as the path, for a name with a NUL or a
    // lone surrogate, kNameTooLong and kFileTooLarge beyond the limits above.
    virtual Status Apply(std::span<const RegistryChange> changes) = 0;
    // Removes the key with everything below it; of the root only what is in it. kNotFound when there is none.
    virtual Status RemoveKey(std::u16string_view key) = 0;
    // The key and all keys below it, by path, lower-cased; a key without values too. Empty when the key is not there.
    virtual Result<std::vector<RegistryKey>> List(std::u16string_view key) = 0;

    Status SetValue(std::u16string_view key, std::u16string_view name, RegistryValue value);
    Status RemoveValue(std::u16string_view key, std::u16string_view name);
};

// The path as all calls understand it: empty names left out.
std::u16string NormalKeyPath(std::u16string_view key);

// Success, or why the path or the name cannot be one, as Apply says.
Status CheckKeyPath(std::u16string_view key);
Status CheckChange(const RegistryChange& change);

// A store whose content made no sense and that was put out of the way, so that a new, empty one could be begun. Native
// paths.
struct RegistryDamage {
    std::string file;
    std::string setAside;  // its new name; empty when it could not be moved, and then nothing is stored
};
// Called at most once by each registry, in the middle of the call that met the damage, which then goes on.
using ReportRegistryDamage = std::function<void(const RegistryDamage& damage)>;

}  // namespace kinsort
