// How the steps of a group are shared out to threads: threads that make names in one folder wait for each other, so
// each gets a folder's steps for itself.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "fileop/Batch.h"

namespace kinsort {

// Splits the steps with these indices, which stand in the order of the plan, into runs that one thread each works off:
// positions in `indices`, each once. All of a run have one target folder, and a run is short enough, in steps and in
// bytes to be read, that the threads finish at about the same time. Where one step takes names from a folder and
// another puts names into it, their order may matter: all that touch such folders are one run, in the plan's order.
std::vector<std::vector<size_t>> SplitByFolder(const std::vector<Step>& steps, std::span<const uint32_t> indices);

}  // namespace kinsort
