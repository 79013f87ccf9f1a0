// The language that the desktop's user speaks, as far as there are texts of it.
#pragma once

#include "cli/CliContext.h"

namespace kinsort {

// By the first of LC_ALL, LC_MESSAGES and LANG that is set.
inline bool PrefersJapanese(const CliServices& services) {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const std::string locale = services.environment(name);
        if (!locale.empty()) return locale == "ja" || locale.starts_with("ja_") || locale.starts_with("ja.");
    }
    return false;
}

}  // namespace kinsort
