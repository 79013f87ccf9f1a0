// The counting of BitRows.h for one width of register. Included once by each kernel's source, which is compiled for its
// own processor: everything here is local to that source, so that the linker cannot mix the versions, and no header
// with functions shared by other sources may be included.
#pragma once

#include "classify/BitRows.h"

namespace kinsort {
namespace {

// `Lanes` gives the register type V and Load, Store, Fill(bool), IsZero, And, Or, Xor, Xor3, Majority.
template <class Lanes, unsigned kPlanes>
struct RowCounting {
    using V = typename Lanes::V;
    static constexpr size_t kParts = sizeof(Stripe) / sizeof(V);
    static constexpr size_t kPartWords = sizeof(V) / sizeof(uint64_t);

    struct Counters {
        V planes[kPlanes];
        V overflow;
    };

    // sum += a + b; returns the carry.
    static inline V AddTwo(V& sum, V a, V b) {
        const V carry = Lanes::Majority(sum, a, b);
        sum = Lanes::Xor3(sum, a, b);
        return carry;
    }

    // Adds a bit of weight 2^kPlane.
    template <unsigned kPlane>
    static inline void AddBit(Counters& counters, V bit) {
        if constexpr (kPlane < kPlanes) {
            const V carry = Lanes::And(counters.planes[kPlane], bit);
            counters.planes[kPlane] = Lanes::Xor(counters.planes[kPlane], bit);
            AddBit<kPlane + 1>(counters, carry);
        } else {
            counters.overflow = Lanes::Or(counters.overflow, bit);
        }
    }

    // Adds four rows; returns the carry of weight 4.
    static inline V AddFour(Counters& counters, const Stripe* const* rows, size_t stripe, size_t part) {
        const auto load = [&](size_t row) { return Lanes::Load(rows[row][stripe].words + part * kPartWords); };
        const V carryA = AddTwo(counters.planes[0], load(0), load(1));
        const V carryB = AddTwo(counters.planes[0], load(2), load(3));
        return AddTwo(counters.planes[1], carryA, carryB);
    }

    static inline void Count(const RowSum& sum, size_t stripe, size_t part, Counters& counters) {
        const unsigned start = (1U << kPlanes) - sum.wanted;
        for (unsigned plane = 0; plane < kPlanes; ++plane)
            counters.planes[plane] = Lanes::Fill(start >> plane & 1);
        counters.overflow = Lanes::Fill(false);
        size_t row = 0;
        if constexpr (kPlanes > 2) {
            for (; row + 8 <= sum.rowCount; row += 8) {
                const V carryA = AddFour(counters, sum.rows + row, stripe, part);
                const V carryB = AddFour(counters, sum.rows + row + 4, stripe, part);
                AddBit<3>(counters, AddTwo(counters.planes[2], carryA, carryB));
            }
        }
        for (; row < sum.rowCount; row += 4)
            AddBit<2>(counters, AddFour(counters, sum.rows + row, stripe, part));
    }

    static void Store(const RowSum& sum, size_t stripe, RowSumHits& found) {
        for (size_t part = 0; part < kParts; ++part) {
            Counters counters;
            Count(sum, stripe, part, counters);
            Lanes::Store(found.hits.words + part * kPartWords, counters.overflow);
            for (unsigned plane = 0; plane < kPlanes; ++plane) {
                Lanes::Store(found.planes[plane].words + part * kPartWords, counters.planes[plane]);
            }
        }
    }

    static size_t FindSum(const RowSum& sum, size_t from, size_t limit, RowSumHits& found) {
        for (size_t stripe = from; stripe < limit; ++stripe) {
            V overflow = Lanes::Fill(false);
            for (size_t part = 0; part < kParts; ++part) {
                Counters counters;
                Count(sum, stripe, part, counters);
                overflow = Lanes::Or(overflow, counters.overflow);
            }
            if (Lanes::IsZero(overflow)) continue;
            Store(sum, stripe, found);
            return stripe;
        }
        return limit;
    }
};

// Few planes are few registers and few additions, so each number of planes has its own code.
template <class Lanes>
size_t FindSumWith(const RowSum& sum, size_t from, size_t limit, RowSumHits& found) {
    switch (sum.planes) {
        case 2:
            return RowCounting<Lanes, 2>::FindSum(sum, from, limit, found);
        case 3:
            return RowCounting<Lanes, 3>::FindSum(sum, from, limit, found);
        case 4:
            return RowCounting<Lanes, 4>::FindSum(sum, from, limit, found);
        case 5:
            return RowCounting<Lanes, 5>::FindSum(sum, from, limit, found);
        case 6:
            return RowCounting<Lanes, 6>::FindSum(sum, from, limit, found);
        case 7:
            return RowCounting<Lanes, 7>::FindSum(sum, from, limit, found);
        default:
            return RowCounting<Lanes, 8>::FindSum(sum, from, limit, found);
    }
}

}  // namespace
}  // namespace kinsort
