#include "text/NaturalOrder.h"

#include <algorithm>

#include "text/AsciiCase.h"
#include "text/Numbers.h"

namespace kinsort {

namespace {

struct DigitRun {
    size_t zeros;
    std::u16string_view digits;  // without the leading zeros
};

// Takes the run that `text` begins with.
DigitRun TakeRun(std::u16string_view& text) {
    const auto end = std::find_if_not(text.begin(), text.end(), IsDigit);
    std::u16string_view run = text.substr(0, static_cast<size_t>(end - text.begin()));
    text.remove_prefix(run.size());
    const size_t zeros = std::min(run.find_first_not_of(u'0'), run.size());
    return {zeros, run.substr(zeros)};
}

int CompareSizes(size_t a, size_t b) {
    return a < b ? -1 : a > b ? 1 : 0;
}

int CompareValues(const DigitRun& a, const DigitRun& b) {
    const int byLength = CompareSizes(a.digits.size(), b.digits.size());
    return byLength != 0 ? byLength : a.digits.compare(b.digits);
}

}  // namespace

int CompareNatural(std::u16string_view a, std::u16string_view b) {
    int byZeros = 0;
    while (!a.empty() && !b.empty()) {
        if (IsDigit(a.front()) && IsDigit(b.front())) {
            const DigitRun runA = TakeRun(a);
            const DigitRun runB = TakeRun(b);
            if (const int order = CompareValues(runA, runB); order != 0) return order;
            if (byZeros == 0) byZeros = CompareSizes(runB.zeros, runA.zeros);
            continue;
        }
        if (const int order = AsciiLower(a.front()) - AsciiLower(b.front()); order != 0) return order;
        a.remove_prefix(1);
        b.remove_prefix(1);
    }
    const int byRest = CompareSizes(a.size(), b.size());
    return byRest != 0 ? byRest : byZeros;
}

}  // namespace kinsort
