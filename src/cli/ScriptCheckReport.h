// "kinsort script check": what is wrong with scripts, for people and for editors.
#pragma once

#include "cli/CliContext.h"
#include "cli/ExitCode.h"

namespace kinsort {

struct CommandLine;

// Checks the files of the operands behind the action. For people "file:line:column: message", the line and a mark under
// what is meant; with --json one array of all findings. kDone when nothing was found, kPartly when something was,
// kNothing when a file could not be read.
ExitCode ReportScriptCheck(CliContext& context, const CommandLine& line);

}  // namespace kinsort
