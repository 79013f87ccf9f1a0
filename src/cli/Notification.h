// The outcome of an undo as a notification of the desktop, for those who started it from a menu and see no terminal.
#pragma once

#include "cli/BatchReport.h"
#include "cli/CliContext.h"

namespace kinsort {

// In the language of the dialog. A desktop without a program for notifications is said to the console.
void NotifyOutcome(CliContext& context, const BatchReport& report);

}  // namespace kinsort
