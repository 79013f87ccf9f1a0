// 64 columns at a step in ordinary C++.
#include "classify/RowCounting.h"
#include "classify/RowKernelList.h"

namespace kinsort {
namespace {

struct PlainLanes {
    using V = uint64_t;
    static V Load(const uint64_t* from) { return *from; }
    static void Store(uint64_t* to, V value) { *to = value; }
    static V Fill(bool bit) { return bit ? ~V{0} : V{0}; }
    static bool IsZero(V value) { return value == 0; }
    static V And(V a, V b) { return a & b; }
    static V Or(V a, V b) { return a | b; }
    static V Xor(V a, V b) { return a ^ b; }
    static V Xor3(V a, V b, V c) { return a ^ b ^ c; }
    static V Majority(V a, V b, V c) { return (a & b) | (c & (a ^ b)); }
};

}  // namespace

size_t FindSumPlain(const RowSum& sum, size_t from, size_t limit, RowSumHits& found) {
    return FindSumWith<PlainLanes>(sum, from, limit, found);
}

}  // namespace kinsort
