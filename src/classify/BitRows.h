// Counting by columns: a row is one bit per folder ("has this piece"), and adding up rows gives every folder's score.
// The sums are kept as bit planes and added with full adders, 64 to 512 folders at a step. Types only: RowKernels.h has
// the functions.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kinsort {

// 512 folders of a row: one cache line.
struct alignas(64) Stripe {
    uint64_t words[8];
};
constexpr size_t kStripeBits = 512;

constexpr unsigned kMaxPlanes = 8;
constexpr size_t kMaxRows = (1U << kMaxPlanes) - 1;  // more could not be told apart in the planes

// What to add up, and the sum that is worth reporting.
struct RowSum {
    const Stripe* const* rows =
        nullptr;          // a row may stand here several times; padded with zero rows to a multiple of 4
    size_t rowCount = 0;  // the padding included, at most kMaxRows + 1
    unsigned planes = 0;  // 2..kMaxPlanes: no column's sum reaches 2^planes
    unsigned wanted = 0;  // 1 or more, below 2^planes: the smallest sum to report
};

// The stripe that was found. A column of `hits` is set when its sum is wanted; then the planes hold by how much the sum
// is above `wanted`, the lowest bit in planes[0]. The planes that the sum does not have are left alone.
struct RowSumHits {
    Stripe hits;
    Stripe planes[kMaxPlanes];
};

// The first stripe in [from, limit) with a wanted sum, `limit` when there is none. The counters start at
// 2^planes - wanted, so that "wanted" is the carry out of the highest plane and costs no comparison.
using FindSumFunction = size_t (*)(const RowSum& sum, size_t from, size_t limit, RowSumHits& found);

}  // namespace kinsort
