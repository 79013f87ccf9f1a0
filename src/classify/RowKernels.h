// The implementations of the counting, and which of them this processor can run.
#pragma once

#include <span>

#include "classify/BitRows.h"

namespace kinsort {

// One implementation; all give the same answers.
struct RowKernel {
    const char* name;
    FindSumFunction findSum;
};

// The kernels that this processor can run, the fastest first; never empty. The last one is plain C++.
std::span<const RowKernel> RowKernels();

}  // namespace kinsort
