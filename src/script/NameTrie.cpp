#include "script/NameTrie.h"

#include <utility>

namespace kinsort {

namespace {

constexpr size_t kFirstPlaces = 64;

}  // namespace

NameTrie::NameTrie() : numbers_{kNone}, edges_(kFirstPlaces) {
    firstChildren_.fill(kNone);
}

void NameTrie::Grow() {
    const std::vector<Edge> old = std::exchange(edges_, std::vector<Edge>(edges_.size() * 2));
    for (const Edge& edge : old)
        if (edge.key != 0) edges_[PlaceOf(edge.key)] = edge;
}

void NameTrie::Add(std::u16string_view name, uint32_t number) {
    uint32_t node = kRoot;
    Mark(firstUnits_, name.front());
    for (const char16_t unit : name) {
        Mark(units_, unit);
        // Every node but the root has one edge that leads to it.
        if (numbers_.size() * 2 > edges_.size()) Grow();
        Edge& edge = edges_[PlaceOf(Key(node, unit))];
        if (edge.key == 0) {
            edge = {Key(node, unit), static_cast<uint32_t>(numbers_.size())};
            if (node == kRoot && unit < kDirectUnits) firstChildren_[unit] = edge.child;
            numbers_.push_back(kNone);
        }
        node = edge.child;
    }
    numbers_[node] = number;
}

uint32_t NameTrie::Find(std::u16string_view name) const {
    uint32_t node = kRoot;
    for (const char16_t unit : name) {
        node = Child(node, unit);
        if (node == kNone) return kNone;
    }
    return numbers_[node];
}

}  // namespace kinsort
