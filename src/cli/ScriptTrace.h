// Prints each line of a script before it is run.
#pragma once

#include <string>

#include "cli/Console.h"
#include "script/ScriptServices.h"

namespace kinsort {

class ScriptTrace final : public ScriptObserver {
  public:
    explicit ScriptTrace(Console& console) : console_(console) {}

    // "main.ecs:12: x=a+1" to standard error, and where filling in changes what stands behind the first "=" or the
    // keyword, "main.ecs:12: x=a+1  ->  x=3+1".
    void OnLine(ScriptRun& run, const ScriptLine& line) override;

  private:
    Console& console_;
};

// The statement as the run will see it: filled in behind its first "=", or behind its first word when it has none.
std::u16string FilledIn(ScriptRun& run, const ScriptLine& line);

}  // namespace kinsort
