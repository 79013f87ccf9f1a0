#include "platform/linux/LinuxEnvironment.h"

#include <cstdlib>

#include "text/Utf8.h"

namespace kinsort {

std::optional<std::u16string> LinuxEnvironment::GetVariable(std::u16string_view name) const {
    const char* value = std::getenv(ToUtf8(name).c_str());
    if (value == nullptr) return std::nullopt;
    return FromUtf8(value);
}

}  // namespace kinsort
