// Names as people's folders hold them, made from a seed: titles in Japanese and in Latin letters, numbered series,
// packages, photos and documents; folders that partly are named after what is in the files, with many that differ
// little.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace kinsort {

struct MatchingNames {
    std::vector<std::u16string> files;
    std::vector<std::u16string> folders;
};

// `allDistinct`: no two files have the same normalised name. Otherwise numbered series repeat as they do in reality.
MatchingNames MakeMatchingNames(size_t files, size_t folders, bool allDistinct, uint32_t seed);

}  // namespace kinsort
