#include "platform/linux/IcuCodePages.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include <langinfo.h>
#include <locale.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>
#include <unicode/ucsdet.h>

namespace kinsort {
namespace {

struct CodePageRow {
    uint32_t number;
    const char* name;                   // the converter's
    const char* readingName = nullptr;  // where reading takes more than writing gives
};

// To add one: its number, in ascending order, and the name of the converter, which should be the one that the detector
// uses where it knows the encoding.
constexpr CodePageRow kCodePages[] = {
    {37, "ibm-37"},
    {437, "ibm-437"},
    {500, "ibm-500"},
    {720, "ibm-720"},
    {737, "ibm-737"},
    {775, "ibm-775"},
    {850, "ibm-850"},
    {852, "ibm-852"},
    {855, "ibm-855"},
    {857, "ibm-857"},
    {858, "ibm-858"},
    {860, "ibm-860"},
    {861, "ibm-861"},
    {862, "ibm-862"},
    {863, "ibm-863"},
    {864, "ibm-864"},
    {865, "ibm-865"},
    {866, "ibm-866"},
    {869, "ibm-869"},
    {874, "windows-874"},
    {932, "Shift_JIS"},
    {936, "GBK"},
    {949, "windows-949"},
    {950, "Big5"},
    {1047, "ibm-1047"},
    {kCodePageUtf16, "UTF-16LE"},
    {kCodePageUtf16BigEndian, "UTF-16BE"},
    {1250, "windows-1250"},
    {1251, "windows-1251"},
    {1252, "windows-1252"},
    {1253, "windows-1253"},
    {1254, "windows-1254"},
    {1255, "windows-1255"},
    {1256, "windows-1256"},
    {1257, "windows-1257"},
    {1258, "windows-1258"},
    {10000, "macintosh"},
    {10006, "x-mac-greek"},
    {10007, "x-mac-cyrillic"},
    {10029, "x-mac-centraleurroman"},
    {10081, "x-mac-turkish"},
    {kCodePageUtf32, "UTF-32LE"},
    {kCodePageUtf32BigEndian, "UTF-32BE"},
    {kCodePageAscii, "US-ASCII"},
    {20866, "KOI8-R"},
    {20932, "EUC-JP"},
    {20936, "GB2312"},
    {21866, "KOI8-U"},
    {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"},
    {28593, "ISO-8859-3"},
    {28594, "ISO-8859-4"},
    {28595, "ISO-8859-5"},
    {28596, "ISO-8859-6"},
    {28597, "ISO-8859-7"},
    {28598, "ISO-8859-8"},
    {28599, "ISO-8859-9"},
    {28600, "iso-8859_10-1998"},
    {28601, "iso-8859_11-2001"},
    {28603, "ISO-8859-13"},
    {28604, "iso-8859_14-1998"},
    {28605, "ISO-8859-15"},
    {38598, "ISO-8859-8-I"},
    {kCodePageIso2022Jp, "ISO-2022-JP", "JIS7"},  // half-width katakana is read, but written full-width
    {50221, "ISO-2022-JP", "JIS7"},
    {50222, "JIS7"},  // half-width katakana between SO and SI
    {50225, "ISO-2022-KR"},
    {50227, "ISO-2022-CN"},
    {kCodePageEucJp, "EUC-JP"},
    {51936, "GB2312"},
    {51949, "EUC-KR"},
    {51950, "EUC-TW"},
    {52936, "HZ"},
    {54936, "GB18030"},
    {65000, "UTF-7"},
    {kCodePageUtf8, "UTF-8"},
};
static_assert(std::is_sorted(std::begin(kCodePages), std::end(kCodePages),
                             [](const CodePageRow& a, const CodePageRow& b) { return a.number < b.number; }));

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;
struct CloseDetector {
    void operator()(UCharsetDetector* detector) const { ucsdet_close(detector); }
};

constexpr size_t kMaxIcuLength = std::numeric_limits<int32_t>::max();

// What ICU would do by itself differs from one converter to the other; these two do the same for all.
void U_CALLCONV ReplaceUnread(const void*, UConverterToUnicodeArgs* args, const char*, int32_t,
                              UConverterCallbackReason reason, UErrorCode* error) {
    if (reason > UCNV_IRREGULAR) return;  // not about a character
    constexpr char16_t kReplacement = 0xFFFD;
    *error = U_ZERO_ERROR;
    ucnv_cbToUWriteUChars(args, &kReplacement, 1, 0, error);
}

void U_CALLCONV ReplaceUnwritten(const void*, UConverterFromUnicodeArgs* args, const char16_t*, int32_t, UChar32,
                                 UConverterCallbackReason reason, UErrorCode* error) {
    if (reason > UCNV_IRREGULAR) return;
    *error = U_ZERO_ERROR;
    ucnv_cbFromUWriteSub(args, 0, error);
}

bool IsUnicode(const UConverter* converter) {
    switch (ucnv_getType(converter)) {
        case UCNV_UTF8:
        case UCNV_UTF16_LittleEndian:
        case UCNV_UTF16_BigEndian:
        case UCNV_UTF32_LittleEndian:
        case UCNV_UTF32_BigEndian:
        case UCNV_UTF7:
            return true;
        default:
            return false;
    }
}

Status StatusOf(UErrorCode error) {
    return Status::Failure(error == U_MEMORY_ALLOCATION_ERROR ? StatusCode::kOutOfMemory : StatusCode::kUnsupported);
}

Converter Open(const char* name, UErrorCode& error) {
    Converter converter(ucnv_open(name, &error));
    if (U_FAILURE(error)) return nullptr;
    ucnv_setFallback(converter.get(), true);
    if (!IsUnicode(converter.get())) ucnv_setSubstString(converter.get(), u"?", 1, &error);
    ucnv_setToUCallBack(converter.get(), ReplaceUnread, nullptr, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(converter.get(), ReplaceUnwritten, nullptr, nullptr, nullptr, &error);
    return converter;
}

// Runs one of ICU's conversions of a whole text: into the room that nearly always does, and once more when it did not.
template <typename Text, typename Convert>
Result<Text> Run(size_t room, Convert convert) {
    Text out(std::min(room, kMaxIcuLength), typename Text::value_type{});
    UErrorCode error = U_ZERO_ERROR;
    int32_t length = convert(out.data(), static_cast<int32_t>(out.size()), error);
    if (error == U_BUFFER_OVERFLOW_ERROR) {
        out.resize(static_cast<size_t>(length));
        error = U_ZERO_ERROR;
        length = convert(out.data(), length, error);
    }
    if (U_FAILURE(error)) return StatusOf(error);
    out.resize(static_cast<size_t>(length));
    return out;
}

// The row whose converter is the one that `name` stands for, in whatever spelling; null when there is none.
const CodePageRow* FindByName(const char* name) {
    const auto row = std::find_if(std::begin(kCodePages), std::end(kCodePages), [&](const CodePageRow& candidate) {
        return ucnv_compareNames(candidate.name, name) == 0;
    });
    return row == std::end(kCodePages) ? nullptr : row;
}

constexpr bool IsWide(uint32_t codePage) {
    return codePage == kCodePageUtf16 || codePage == kCodePageUtf16BigEndian || codePage == kCodePageUtf32 ||
           codePage == kCodePageUtf32BigEndian;
}

uint32_t CodePageOfUser() {
    const locale_t user = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (user == nullptr) return kCodePageUtf8;
    const CodePageRow* row = FindByName(nl_langinfo_l(CODESET, user));
    freelocale(user);
    // A locale without a language has ASCII only, of which UTF-8 loses nothing.
    return row == nullptr || row->number == kCodePageAscii ? kCodePageUtf8 : row->number;
}

class IcuCodePages final : public CodePages {
  public:
    bool IsKnown(uint32_t codePage) const override { return Find(codePage) != nullptr; }

    Result<std::u16string> ToUnicode(uint32_t codePage, std::string_view bytes) const override {
        if (bytes.size() > kMaxIcuLength) return Status::Failure(StatusCode::kFileTooLarge);
        const CodePageRow* row = Find(codePage);
        if (row == nullptr) return Status::Failure(StatusCode::kUnsupported);
        UErrorCode opening = U_ZERO_ERROR;
        const Converter converter = Open(row->readingName != nullptr ? row->readingName : row->name, opening);
        if (U_FAILURE(opening)) return StatusOf(opening);
        return Run<std::u16string>(bytes.size() + 1, [&](char16_t* out, int32_t room, UErrorCode& error) {
            return ucnv_toUChars(converter.get(), out, room, bytes.data(), static_cast<int32_t>(bytes.size()), &error);
        });
    }

    Result<std::string> FromUnicode(uint32_t codePage, std::u16string_view text) const override {
        if (text.size() > kMaxIcuLength) return Status::Failure(StatusCode::kFileTooLarge);
        const CodePageRow* row = Find(codePage);
        if (row == nullptr) return Status::Failure(StatusCode::kUnsupported);
        UErrorCode opening = U_ZERO_ERROR;
        const Converter converter = Open(row->name, opening);
        if (U_FAILURE(opening)) return StatusOf(opening);
        return Run<std::string>(text.size() * 3 + 1, [&](char* out, int32_t room, UErrorCode& error) {
            return ucnv_fromUChars(converter.get(), out, room, text.data(), static_cast<int32_t>(text.size()), &error);
        });
    }

    std::optional<uint32_t> Detect(std::string_view bytes) const override {
        if (bytes.empty()) return std::nullopt;
        const auto isAscii = [](char c) { return static_cast<uint8_t>(c) < 0x80; };
        if (std::all_of(bytes.begin(), bytes.end(), isAscii)) return kCodePageAscii;
        UErrorCode error = U_ZERO_ERROR;
        const std::unique_ptr<UCharsetDetector, CloseDetector> detector(ucsdet_open(&error));
        const auto length = static_cast<int32_t>(std::min(bytes.size(), kMaxIcuLength));
        ucsdet_setText(detector.get(), bytes.data(), length, &error);
        int32_t count = 0;
        const UCharsetMatch** matches = ucsdet_detectAll(detector.get(), &count, &error);
        // Best first; some of its encodings have no number, and some are not made of eight-bit units.
        for (int32_t i = 0; U_SUCCESS(error) && i < count; ++i) {
            const char* name = ucsdet_getName(matches[i], &error);
            const CodePageRow* row = U_SUCCESS(error) ? FindByName(name) : nullptr;
            if (row != nullptr && !IsWide(row->number)) return row->number;
        }
        return std::nullopt;
    }

    uint32_t AnsiCodePage() const override { return ansi_; }

  private:
    const CodePageRow* Find(uint32_t codePage) const {
        const uint32_t number = codePage == kCodePageAnsi ? ansi_ : codePage;
        const auto* row = std::lower_bound(std::begin(kCodePages), std::end(kCodePages), number,
                                           [](const CodePageRow& r, uint32_t n) { return r.number < n; });
        return row == std::end(kCodePages) || row->number != number ? nullptr : row;
    }

    uint32_t ansi_ = CodePageOfUser();
};

}  // namespace

std::unique_ptr<CodePages> MakeIcuCodePages() {
    return std::make_unique<IcuCodePages>();
}

std::vector<uint32_t> KnownCodePages() {
    std::vector<uint32_t> numbers;
    for (const CodePageRow& row : kCodePages)
        numbers.push_back(row.number);
    return numbers;
}

}  // namespace kinsort
