// The registry as an SQLite file, which "sqlite3 registry.db .dump" shows. Rollback journal, every change synced.
#pragma once

#include <memory>
#include <string>

#include "platform/PathCodec.h"
#include "platform/Registry.h"

namespace kinsort {

// The registry in `file`, stored form, empty when there is no place for one. The file and its folder are made by the
// first change, for their user only. Where they cannot be written, what is stored can still be read. A damaged file is
// renamed to "registry.db.damaged-1" (or the next number that is free) and `report` told; a file of a later format
// gives kTooNew and is left alone. kLocked after `busyMs` of another program's writing. Failures name the file, made
// inner by `codec`, which outlives the registry.
std::unique_ptr<Registry> MakeSqliteRegistry(std::string file, const PathCodec& codec, ReportRegistryDamage report,
                                             int busyMs = 5000);

}  // namespace kinsort
