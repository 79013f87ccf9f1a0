#include "script/NameTrie.h"

#include <utility>

namespace kinsort {

namespace {

constexpr size_t kFirstPlaces = 64;

}  // namespace

NameTrie::NameTrie() : nodes_(1), edges_(kFirstPlaces) {
    firstChildren_.fill(kNone);
}

void NameTrie::AddEdge(const Edge& edge) {
    if (++edgeCount_ * 2 > edges_.size()) {
        const std::vector<Edge> old = std::exchange(edges_, std::vector<Edge>(edges_.size() * 2));
        for (const Edge& one : old)
            if (one.key != 0) edges_[PlaceOf(one.key)] = one;
    }
    edges_[PlaceOf(edge.key)] = edge;
}

uint32_t NameTrie::AddChild(uint32_t node, char16_t unit) {
    const auto child = static_cast<uint32_t>(nodes_.size());
    nodes_.emplace_back();
    Node& from = nodes_[node];
    if (node == kRoot && unit < kDirectUnits) {
        firstChildren_[unit] = child;
    } else if (from.child == kNone) {
        from.unit = unit;
        from.child = child;
    } else {
        from.hasEdges = true;
        AddEdge({Key(node, unit), child});
    }
    return child;
}

void NameTrie::Add(std::u16string_view name, uint32_t number) {
    firstUnits_[LowByte(name.front())] = true;
    uint32_t node = kRoot;
    for (const char16_t unit : name) {
        units_[LowByte(unit)] = true;
        const uint32_t child = Child(node, unit);
        node = child == kNone ? AddChild(node, unit) : child;
    }
    nodes_[node].number = number;
}

uint32_t NameTrie::Find(std::u16string_view name) const {
    uint32_t node = kRoot;
    for (const char16_t unit : name) {
        node = Child(node, unit);
        if (node == kNone) return kNone;
    }
    return nodes_[node].number;
}

}  // namespace kinsort
