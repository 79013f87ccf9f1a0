// Text in the encodings of other places and times, known by the numbers of the platform that the path language was made
// for: 932, 51932, 65001.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Status.h"

namespace kinsort {

constexpr uint32_t kCodePageAnsi = 0;  // whatever AnsiCodePage() says
constexpr uint32_t kCodePageShiftJis = 932;
constexpr uint32_t kCodePageUtf16 = 1200;
constexpr uint32_t kCodePageUtf16BigEndian = 1201;
constexpr uint32_t kCodePageUtf32 = 12000;
constexpr uint32_t kCodePageUtf32BigEndian = 12001;
constexpr uint32_t kCodePageAscii = 20127;
constexpr uint32_t kCodePageIso2022Jp = 50220;
constexpr uint32_t kCodePageEucJp = 51932;
constexpr uint32_t kCodePageUtf8 = 65001;

// May be used from several threads.
class CodePages {
  public:
    virtual ~CodePages() = default;

    // True when both conversions know the code page.
    virtual bool IsKnown(uint32_t codePage) const = 0;

    // The text that the bytes mean. Each malformed sequence, and each that the code page gives no character, becomes
    // one U+FFFD; a byte-order mark becomes U+FEFF like any other character. kUnsupported for an unknown code page,
    // kOutOfMemory.
    virtual Result<std::u16string> ToUnicode(uint32_t codePage, std::string_view bytes) const = 0;

    // The bytes of the text, without a byte-order mark unless the text begins with U+FEFF. A character that the code
    // page lacks becomes the one that looks like it where there is one ("é" may become "e"), else "?"; so does half a
    // surrogate pair, which in the Unicode encodings becomes U+FFFD. Failures as above.
    virtual Result<std::string> FromUnicode(uint32_t codePage, std::u16string_view text) const = 0;

    // The code page that the bytes, text of eight-bit units in some encoding, are most likely written in. Bytes below
    // 0x80 alone are kCodePageAscii. Nothing for no bytes, and when nothing fits. A guess: the shorter the text, the
    // bolder.
    virtual std::optional<uint32_t> Detect(std::string_view bytes) const = 0;

    // The code page of the user's language for eight-bit text, never kCodePageAnsi.
    virtual uint32_t AnsiCodePage() const = 0;
};

}  // namespace kinsort
