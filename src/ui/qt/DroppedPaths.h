// Files that are dragged here from a file manager.
#pragma once

#include <QMimeData>
#include <string>
#include <vector>

#include "platform/PathCodec.h"

namespace kinsort {

// Whether the data holds addresses of files at all; looks at none of them.
bool HoldsFiles(const QMimeData& data);

// The local files among what is dragged, in their order, inner form. Every name survives, also one that is no text.
std::vector<std::u16string> DroppedPaths(const QMimeData& data, const PathCodec& codec);

}  // namespace kinsort
