#pragma once

#include "platform/Environment.h"

namespace kinsort {

class LinuxEnvironment : public Environment {
  public:
    std::optional<std::u16string> GetVariable(std::u16string_view name) const override;
};

}  // namespace kinsort
