// 512 columns at a step; a full adder is two instructions. This file alone is compiled for processors with AVX-512F.
#include <immintrin.h>

#include "classify/RowCounting.h"
#include "classify/RowKernelList.h"

namespace kinsort {
namespace {

struct Avx512Lanes {
    using V = __m512i;
    static V Load(const uint64_t* from) { return _mm512_load_si512(from); }
    static void Store(uint64_t* to, V value) { _mm512_store_si512(to, value); }
    static V Fill(bool bit) { return _mm512_set1_epi64(bit ? -1 : 0); }
    static bool IsZero(V value) { return _mm512_test_epi64_mask(value, value) == 0; }
    static V And(V a, V b) { return _mm512_and_si512(a, b); }
    static V Or(V a, V b) { return _mm512_or_si512(a, b); }
    static V Xor(V a, V b) { return _mm512_xor_si512(a, b); }
    static V Xor3(V a, V b, V c) { return _mm512_ternarylogic_epi64(a, b, c, 0x96); }      // truth table of the sum bit
    static V Majority(V a, V b, V c) { return _mm512_ternarylogic_epi64(a, b, c, 0xE8); }  // and of the carry
};

}  // namespace

size_t FindSumAvx512(const RowSum& sum, size_t from, size_t limit, RowSumHits& found) {
    return FindSumWith<Avx512Lanes>(sum, from, limit, found);
}

}  // namespace kinsort
