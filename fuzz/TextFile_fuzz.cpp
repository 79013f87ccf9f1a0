// Any bytes as a text file: lines as an obvious reader cuts them, and conversion from and to the code page that the
// first byte picks, or that is detected.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "framework/TextFile.h"
#include "platform/fake/MemoryFileSystem.h"
#include "platform/linux/IcuCodePages.h"

namespace {

using namespace kinsort;

void Require(bool holds) {
    if (!holds) std::abort();
}

// One unit at a time.
std::vector<std::u16string> SlowLines(std::string_view bytes) {
    std::u16string text;
    for (size_t i = 0; i < bytes.size(); i += 2) {
        const auto low = static_cast<uint8_t>(bytes[i]);
        const uint8_t high = i + 1 < bytes.size() ? static_cast<uint8_t>(bytes[i + 1]) : uint8_t{0};
        text += static_cast<char16_t>(high << 8 | low);
    }
    std::vector<std::u16string> lines;
    std::u16string line;
    size_t at = text.starts_with(u'\uFEFF') ? 1 : 0;
    for (; at < text.size(); ++at) {
        if (text[at] != u'\r' && text[at] != u'\n') {
            line += text[at];
            if (line.size() == 32'767) return lines;
            if (at + 1 < text.size()) continue;
        }
        if (text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n') ++at;
        lines.push_back(line.substr(0, line.find(u'\0')));
        line.clear();
    }
    return lines;
}

std::vector<std::u16string> Lines(CTextFile& file) {
    std::vector<std::u16string> lines;
    for (std::u16string_view line; file.ReadLine(line);) {
        lines.emplace_back(line);
        Require(file.GetLineNumber() == static_cast<int32_t>(lines.size()));
    }
    return lines;
}

bool IsWellFormed(std::u16string_view text) {
    for (size_t i = 0; i < text.size(); ++i) {
        const bool isPair = text[i] >= 0xD800 && text[i] <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                            text[i + 1] <= 0xDFFF;
        if (text[i] >= 0xD800 && text[i] <= 0xDFFF && !isPair) return false;
        if (isPair) ++i;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    static const std::unique_ptr<CodePages> codePages = MakeIcuCodePages();
    static const std::vector<uint32_t> known = KnownCodePages();
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);

    MemoryFileSystem files;
    files.SetContent(u"Z:\\a.txt", bytes);
    CTextFile file(files);
    Require(file.Open(u"Z:\\a.txt") == 1);
    Require(Lines(file) == SlowLines(bytes));
    file.Rewind();
    Require(Lines(file) == SlowLines(bytes));

    uint32_t codePage = 0;
    if (file.DetectCodePage(*codePages, codePage)) Require(codePages->IsKnown(codePage));
    codePage = known[data[0] % known.size()];
    Require(file.ConvertToUnicode(*codePages, codePage) == 1);
    const std::u16string text(file.GetText());
    Require(IsWellFormed(text));
    // What a code page can say it says again, once what it cannot is "?".
    const std::string written = codePages->FromUnicode(codePage, text).value();
    const std::u16string again = codePages->ToUnicode(codePage, written).value();
    Require(codePages->FromUnicode(codePage, again).value() == written);
    return 0;
}
