#include "classify/NormalizedNames.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace kinsort {
namespace {

// Four units at a time; std::hash goes byte by byte for names this short.
uint64_t HashOf(std::u16string_view text) {
    constexpr uint64_t kMultiplier = 0x9E3779B97F4A7C15;  // 2^64 over the golden ratio
    uint64_t hash = text.size();
    const auto mix = [&](uint64_t units) {
        hash = (hash ^ units) * kMultiplier;
        hash ^= hash >> 32;
    };
    size_t at = 0;
    for (; at + 4 <= text.size(); at += 4) {
        uint64_t units;
        std::memcpy(&units, text.data() + at, sizeof units);
        mix(units);
    }
    uint64_t rest = 0;
    for (; at < text.size(); ++at)
        rest = rest << 16 | text[at];
    mix(rest);
    return hash;
}

}  // namespace

void NormalizedNames::Assign(const NameNormalizer& normalizer, std::span<const std::u16string_view> names) {
    size_t units = 0;
    for (const std::u16string_view name : names)
        units += name.size();
    if (units_.size() < units * 2) units_.resize(units * 2);
    const size_t slotCount = std::bit_ceil(names.size() * 2 + 1);
    slots_.assign(slotCount, 0);
    distinct_.clear();
    distinctOf_.clear();

    char16_t* begin = units_.data();
    for (size_t i = 0; i < names.size(); ++i) {
        // The names lie all over the memory: without asking ahead, waiting for them is half the time spent here.
        if (i + 8 < names.size()) __builtin_prefetch(names[i + 8].data());
        char16_t* end = normalizer.NormalizeInto(names[i], begin);
        const std::u16string_view normalized(begin, static_cast<size_t>(end - begin));
        size_t slot = HashOf(normalized) & (slotCount - 1);
        while (slots_[slot] != 0 && distinct_[slots_[slot] - 1] != normalized)
            slot = (slot + 1) & (slotCount - 1);
        if (slots_[slot] == 0) {
            distinct_.push_back(normalized);
            slots_[slot] = static_cast<uint32_t>(distinct_.size());
            begin = end;
        }
        distinctOf_.push_back(slots_[slot] - 1);
    }
}

}  // namespace kinsort
