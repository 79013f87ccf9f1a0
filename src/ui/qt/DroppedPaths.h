// Files that are dragged here from a file manager.
#pragma once

#include <QDropEvent>
#include <string>
#include <vector>

#include "platform/PathCodec.h"

namespace kinsort {

// Accepts a drag (that enters, moves or is dropped) if it holds addresses of files, looking at none of them. Always as
// a copy, since a source may delete what it was told is moved, and all that is taken here is the names.
bool AcceptFiles(QDropEvent& drag);

// The local files among what is dragged, in their order, inner form. Every name survives, also one that is no text.
std::vector<std::u16string> DroppedPaths(const QDropEvent& drag, const PathCodec& codec);

}  // namespace kinsort
