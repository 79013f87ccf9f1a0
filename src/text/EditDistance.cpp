#include "text/EditDistance.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <vector>

#include "text/AsciiCase.h"

namespace kinsort {

size_t EditDistance(std::u16string_view a, std::u16string_view b) {
    // Three rows of the table: of the prefix of `a` that ends two before, one before, and here.
    std::array<std::vector<size_t>, 3> rows;
    rows.fill(std::vector<size_t>(b.size() + 1));
    auto& [beforeLast, last, row] = rows;
    std::iota(last.begin(), last.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const char16_t unitA = AsciiLower(a[i - 1]);
            const char16_t unitB = AsciiLower(b[j - 1]);
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + (unitA == unitB ? 0u : 1u)});
            const bool isSwap = i > 1 && j > 1 && unitA == AsciiLower(b[j - 2]) && unitB == AsciiLower(a[i - 2]);
            if (isSwap) row[j] = std::min(row[j], beforeLast[j - 2] + 1);
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last[b.size()];
}

bool LooksLikeTypo(std::u16string_view typed, std::u16string_view meant) {
    constexpr size_t kShortest = 3;
    constexpr size_t kLong = 7;
    constexpr size_t kLongest = 64;  // what is longer was never a word
    if (std::min(typed.size(), meant.size()) < kShortest || std::max(typed.size(), meant.size()) > kLongest)
        return false;
    const size_t most = meant.size() < kLong ? 1 : 2;
    const size_t apart = typed.size() > meant.size() ? typed.size() - meant.size() : meant.size() - typed.size();
    return apart <= most && EditDistance(typed, meant) <= most;
}

}  // namespace kinsort
