// Telling the encodings of Japanese text apart by what their bytes look like.
#pragma once

#include <cstdint>
#include <string_view>

namespace kinsort {

// kCodePageIso2022Jp for bytes with one of its escape sequences; else kCodePageEucJp, kCodePageShiftJis or
// kCodePageUtf8, whichever explains more of the bytes as its characters than both others; 0 on a tie, for bytes that
// are no text, and for plain ASCII.
uint32_t DetectJapaneseEncoding(std::string_view bytes);

}  // namespace kinsort
