// The counting functions of the kernels. Each is callable only on a processor that has what it is compiled for; ask
// RowKernels() instead.
#pragma once

#include "classify/BitRows.h"

namespace kinsort {

size_t FindSumPlain(const RowSum& sum, size_t from, size_t limit, RowSumHits& found);
size_t FindSumAvx2(const RowSum& sum, size_t from, size_t limit, RowSumHits& found);
size_t FindSumAvx512(const RowSum& sum, size_t from, size_t limit, RowSumHits& found);

}  // namespace kinsort
