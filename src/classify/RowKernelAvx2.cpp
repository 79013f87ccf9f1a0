// 256 columns at a step. This file alone is compiled for processors with AVX2.
#include <immintrin.h>

#include "classify/RowCounting.h"
#include "classify/RowKernelList.h"

namespace kinsort {
namespace {

struct Avx2Lanes {
    using V = __m256i;
    static V Load(const uint64_t* from) { return _mm256_load_si256(reinterpret_cast<const V*>(from)); }
    static void Store(uint64_t* to, V value) { _mm256_store_si256(reinterpret_cast<V*>(to), value); }
    static V Fill(bool bit) { return _mm256_set1_epi64x(bit ? -1 : 0); }
    static bool IsZero(V value) { return _mm256_testz_si256(value, value) != 0; }
    static V And(V a, V b) { return _mm256_and_si256(a, b); }
    static V Or(V a, V b) { return _mm256_or_si256(a, b); }
    static V Xor(V a, V b) { return _mm256_xor_si256(a, b); }
    static V Xor3(V a, V b, V c) { return Xor(Xor(a, b), c); }
    static V Majority(V a, V b, V c) { return Or(And(a, b), And(c, Xor(a, b))); }
};

}  // namespace

size_t FindSumAvx2(const RowSum& sum, size_t from, size_t limit, RowSumHits& found) {
    return FindSumWith<Avx2Lanes>(sum, from, limit, found);
}

}  // namespace kinsort
