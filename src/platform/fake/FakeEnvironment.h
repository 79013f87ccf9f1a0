// Variables that a test sets.
#pragma once

#include <map>

#include "platform/Environment.h"

namespace kinsort {

class FakeEnvironment : public Environment {
  public:
    std::map<std::u16string, std::u16string, std::less<>> variables;

    std::optional<std::u16string> GetVariable(std::u16string_view name) const override {
        const auto found = variables.find(name);
        if (found == variables.end()) return std::nullopt;
        return found->second;
    }
};

}  // namespace kinsort
