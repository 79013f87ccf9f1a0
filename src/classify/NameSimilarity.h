// How much a file's name looks like a folder's: the number of the file name's overlapping two-unit pieces that occur
// in the folder's name, after both went through the same normalisation. This file is the readable reference; the fast
// search is CandidateIndex, which must give the same answers.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/LocaleMap.h"

namespace kinsort {

// Drops the noise from a name: the ASCII characters space " $ % & ' ( ) 0-9 : ; = [ ] _, the ideographic space and
// the brackets 「」【】 (of the first pair the narrow forms too, since folding has narrowed them by then).
std::u16string RemoveNameNoise(std::u16string_view name);

// Lower case, hiragana, half width, noise removal, in this order, through one table over all 65,536 code units.
class NameNormalizer {
  public:
    // One unit becomes two at most; the table is made here, `locale` is not needed afterwards.
    explicit NameNormalizer(const LocaleMap& locale);

    std::u16string Normalize(std::u16string_view name) const;
    // The same into a buffer with room for twice the units of `name`; returns the end of what was written.
    char16_t* NormalizeInto(std::u16string_view name, char16_t* out) const;

  private:
    std::vector<uint32_t> mappings_;  // for each unit what NormalizeInto writes: see NameSimilarity.cpp
};

// The score of two names that are normalised already.
int CountSharedPieces(std::u16string_view normalizedFile, std::u16string_view normalizedFolder);

// The score, 0 or more. Not symmetric: the file's name is cut into pieces, the folder's is searched.
int GetNameSimilarity(const NameNormalizer& normalizer, std::u16string_view fileName, std::u16string_view folderName);

// The index of the folder with the highest score, the first of several; -1 when all score 0.
int PickCandidateFolder(const NameNormalizer& normalizer, std::u16string_view fileName,
                        std::span<const std::u16string> folderNames);

}  // namespace kinsort
