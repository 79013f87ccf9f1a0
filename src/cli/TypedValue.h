// What somebody typed for a setting, as a value of the registry.
#pragma once

#include <string>

#include "cli/CliContext.h"
#include "cli/KnownSettings.h"
#include "platform/Registry.h"

namespace kinsort {

// A value, or what is wrong with what was typed.
struct TypedValue {
    RegistryValue value;
    std::string error;  // empty when nothing is
};

TypedValue ReadKnownValue(CliContext& context, const KnownSetting& known, const std::string& typed);

// Of the type `type`; when that is empty, of the type that is stored, else a text.
TypedValue ReadOtherValue(CliContext& context, const NamedSetting& setting, const std::string& typed, std::string type);

}  // namespace kinsort
