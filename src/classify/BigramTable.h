// Finds the number that belongs to a piece of two code units. An open-addressing hash table, because one look-up for
// every piece of every file name is most of what a search among few folders costs.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kinsort {

class BigramTable {
  public:
    static constexpr uint32_t kAbsent = 0xFFFFFFFF;  // never a value

    BigramTable() : slots_(kSmallest) {}

    // The value of the piece, kAbsent when it was never added.
    uint32_t Find(char16_t first, char16_t second) const {
        const uint32_t key = KeyOf(first, second);
        size_t at = (key * kMultiplier) >> shift_;
        // One condition on purpose: found and absent alternate at random, and only "look further" is predictable.
        while (static_cast<int>(slots_[at].key != key) & static_cast<int>(slots_[at].value != kAbsent)) {
            at = (at + 1) & (slots_.size() - 1);
        }
        return slots_[at].value;
    }

    // The value of the piece; an absent piece is added with the next number, counted from 0.
    uint32_t FindOrAdd(char16_t first, char16_t second);

    // Replaces every value v by values[v].
    void Renumber(const std::vector<uint32_t>& values);

    size_t GetCount() const { return count_; }
    size_t MemoryBytes() const { return slots_.capacity() * sizeof(Slot); }

  private:
    struct Slot {
        uint32_t key = 0;
        uint32_t value = kAbsent;
    };
    static constexpr size_t kSmallest = 256;
    static constexpr uint32_t kMultiplier = 0x9E3779B1;  // 2^32 over the golden ratio: spreads neighbouring keys

    static uint32_t KeyOf(char16_t first, char16_t second) { return static_cast<uint32_t>(first) << 16 | second; }
    void Grow();

    std::vector<Slot> slots_;  // a power of two of them, at most half of them taken
    unsigned shift_ = 32 - 8;  // leaves as many bits of a hash as there are slots
    size_t count_ = 0;
};

}  // namespace kinsort
