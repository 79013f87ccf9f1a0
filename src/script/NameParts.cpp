#include "script/NameParts.h"

namespace kinsort {

uint64_t NameParts::PieceAt(std::u16string_view text, size_t start) {
    return uint64_t{text[start]} << 32 | uint64_t{text[start + 1]} << 16 | text[start + 2];
}

void NameParts::Add(std::u16string_view name) {
    const auto number = static_cast<uint32_t>(size_++);
    for (size_t start = 0; start + kPieceUnits <= name.size(); ++start) {
        std::vector<uint32_t>& numbers = names_[PieceAt(name, start)];
        if (numbers.empty() || numbers.back() != number) numbers.push_back(number);
    }
}

const std::vector<uint32_t>& NameParts::HoldersOf(std::u16string_view part) const {
    static const std::vector<uint32_t> kNobody;
    const std::vector<uint32_t>* fewest = nullptr;
    for (size_t start = 0; start + kPieceUnits <= part.size(); ++start) {
        const auto found = names_.find(PieceAt(part, start));
        if (found == names_.end()) return kNobody;
        if (fewest == nullptr || found->second.size() < fewest->size()) fewest = &found->second;
    }
    return fewest == nullptr ? kNobody : *fewest;
}

}  // namespace kinsort
