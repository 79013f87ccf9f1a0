// Finds which of many names occur in a text, in one look at the text however many names there are.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace kinsort {

// Names and the number that each stands for. Names are added and never taken away.
class NameTrie {
  public:
    static constexpr uint32_t kNone = UINT32_MAX;

    NameTrie();

    // Gives the name, which must not be empty, its number; an earlier number of the same name is forgotten.
    void Add(std::u16string_view name, uint32_t number);

    // The number of exactly this name, or kNone.
    uint32_t Find(std::u16string_view name) const;

    // Calls `see(number, start)` for every occurrence of every name, by start, overlapping ones included, until it
    // returns false.
    template <typename See>
    void ForEachOccurrence(std::u16string_view text, See&& see) const {
        for (size_t start = 0; start < text.size(); ++start) {
            if (!firstUnits_[LowByte(text[start])]) continue;
            uint32_t node = kRoot;
            for (size_t i = start; i < text.size(); ++i) {
                node = Child(node, text[i]);
                if (node == kNone) break;
                const uint32_t number = nodes_[node].number;
                if (number != kNone && !see(number, start)) return;
            }
        }
    }

    // True when the unit stands in some name; now and then also when it does not.
    bool MayHold(char16_t unit) const { return units_[LowByte(unit)]; }

  private:
    static constexpr uint32_t kRoot = 0;
    static constexpr size_t kDirectUnits = 128;

    using LowBytes = std::array<bool, 256>;  // of the units of a set
    static size_t LowByte(char16_t unit) { return unit & 0xFFu; }

    // Most nodes have one child; the others of a node are edges.
    struct Node {
        uint32_t number = kNone;  // kNone where no name ends
        uint32_t child = kNone;   // the first one, by `unit`
        char16_t unit = 0;
        bool hasEdges = false;
    };
    // One edge of the tree, in an open-addressed table: from a node, by a unit, to a child.
    struct Edge {
        uint64_t key = 0;  // node and unit; 0 is a free place (no edge is keyed by the root and U+0000, see Key)
        uint32_t child = kNone;
    };
    static uint64_t Key(uint32_t node, char16_t unit) { return (uint64_t{node} + 1) << 16 | unit; }
    // The place of the key, or the free one where it would go.
    size_t PlaceOf(uint64_t key) const {
        const size_t mask = edges_.size() - 1;
        size_t place = (key * 0x9E3779B97F4A7C15u >> 32) & mask;
        while (edges_[place].key != key && edges_[place].key != 0)
            place = (place + 1) & mask;
        return place;
    }
    uint32_t Child(uint32_t node, char16_t unit) const {
        if (node == kRoot && unit < kDirectUnits) return firstChildren_[unit];
        const Node& from = nodes_[node];
        if (from.unit == unit && from.child != kNone) return from.child;
        return from.hasEdges ? edges_[PlaceOf(Key(node, unit))].child : kNone;
    }
    uint32_t AddChild(uint32_t node, char16_t unit);
    void AddEdge(const Edge& edge);

    std::vector<Node> nodes_;
    std::vector<Edge> edges_;  // a power of two of places, at most half of them taken
    size_t edgeCount_ = 0;
    std::array<uint32_t, kDirectUnits> firstChildren_;  // of the root, once more, by unit
    LowBytes firstUnits_{};                             // of each name
    LowBytes units_{};                                  // of all names
};

}  // namespace kinsort
