// The variables that the program was started with.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kinsort {

class Environment {
  public:
    virtual ~Environment() = default;

    // The value as text, nothing when the variable is not set. A variable that is set to nothing gives an empty text.
    // Bytes that are no text become U+FFFD.
    virtual std::optional<std::u16string> GetVariable(std::u16string_view name) const = 0;
};

}  // namespace kinsort
