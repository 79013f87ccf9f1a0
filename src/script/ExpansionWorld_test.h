// What expansion reads, as a test sets it.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "framework/FolderWorld_test.h"
#include "platform/fake/ManualClock.h"
#include "script/ExpandLine.h"

namespace kinsort {

// Knows one short name.
class FakeShortNames final : public SystemInfo {
  public:
    std::u16string longPath;
    std::u16string shortPath;

    std::u16string SystemFolder() const override { return u"Z:\\usr\\lib"; }
    ProgramVersion ShellVersion() const override { return {}; }
    std::u16string ShortPath(std::u16string_view path) const override {
        return !longPath.empty() && path.ends_with(longPath.substr(3)) ? shortPath : std::u16string();
    }
};

struct ExpansionWorld : FolderWorld {
    FakeShortNames system;
    ManualClock clock;
    VariableTable variables;
    std::vector<std::u16string> items;
    ExpansionScope scope{variables, folders, system, clock, {}, {}, items, -1};

    // Declares and assigns, whatever the names overlap with.
    void Set(std::u16string_view name, std::u16string_view value) {
        variables.Create(name);
        variables.Assign(name, std::u16string(value));
    }
};

}  // namespace kinsort
