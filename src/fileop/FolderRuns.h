// How the steps of a group are shared out to threads: threads that make names in one folder wait for each other, so
// each gets a folder's steps for itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "fileop/Batch.h"

namespace kinsort {

// Splits the steps with these indices into runs that one thread each works off: positions in `indices`, each once, all
// of a run with one target folder. A run is short enough, in steps and in bytes to be copied, that the threads finish
// at about the same time.
std::vector<std::vector<size_t>> SplitByFolder(const std::vector<Step>& steps, std::span<const uint32_t> indices);

}  // namespace kinsort
