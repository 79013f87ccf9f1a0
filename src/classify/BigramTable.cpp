#include "classify/BigramTable.h"

namespace kinsort {

uint32_t BigramTable::FindOrAdd(char16_t first, char16_t second) {
    const uint32_t key = KeyOf(first, second);
    size_t at = (key * kMultiplier) >> shift_;
    while (slots_[at].value != kAbsent) {
        if (slots_[at].key == key) return slots_[at].value;
        at = (at + 1) & (slots_.size() - 1);
    }
    const auto value = static_cast<uint32_t>(count_++);
    slots_[at] = {key, value};
    if (count_ * 2 > slots_.size()) Grow();
    return value;
}

void BigramTable::Grow() {
    std::vector<Slot> old(slots_.size() * 2);
    old.swap(slots_);
    --shift_;
    for (const Slot& slot : old) {
        if (slot.value == kAbsent) continue;
        size_t at = (slot.key * kMultiplier) >> shift_;
        while (slots_[at].value != kAbsent)
            at = (at + 1) & (slots_.size() - 1);
        slots_[at] = slot;
    }
}

void BigramTable::Renumber(const std::vector<uint32_t>& values) {
    for (Slot& slot : slots_) {
        if (slot.value != kAbsent) slot.value = values[slot.value];
    }
}

}  // namespace kinsort
