#include "framework/TypedPath.h"

#include "text/AsciiCase.h"
#include "text/Numbers.h"
#include "text/PathSyntax.h"
#include "text/Utf8.h"

namespace kinsort {

namespace {

constexpr std::string_view kScheme = "file:";
constexpr std::string_view kThisHost = "localhost";

bool StartsWithNoCase(std::string_view text, std::string_view prefix) {
    return kinsort::StartsWithNoCase(FromUtf8(text.substr(0, prefix.size())), FromUtf8(prefix));
}

int HexValue(char digit) {
    const auto unit = static_cast<char16_t>(static_cast<unsigned char>(digit));
    if (!IsHexDigit(unit)) return -1;
    return IsDigit(unit) ? unit - u'0' : (unit | 0x20) - u'a' + 10;
}

TypedPathProblem DecodePercent(std::string_view text, std::string& out) {
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '?' || text[i] == '#') return TypedPathProblem::kHasFragment;
        if (text[i] != '%') {
            out += text[i];
            continue;
        }
        const int high = i + 2 < text.size() ? HexValue(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? HexValue(text[i + 2]) : -1;
        if (high < 0 || low < 0) return TypedPathProblem::kBadPercent;
        const auto byte = static_cast<char>(high * 16 + low);
        if (byte == '/' || byte == '\0') return TypedPathProblem::kForbiddenByte;
        out += byte;
        i += 2;
    }
    return TypedPathProblem::kNone;
}

// `rest` is what follows "file:".
TypedPath FromFileUri(std::string_view rest, const PathCodec& codec) {
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        const std::string_view host = rest.substr(0, rest.find('/'));
        const bool isHere = host.empty() || (host.size() == kThisHost.size() && StartsWithNoCase(host, kThisHost));
        if (!isHere) return {{}, TypedPathProblem::kForeignHost};
        rest.remove_prefix(host.size());
    }
    if (!rest.starts_with('/')) return {{}, TypedPathProblem::kNotAbsolute};
    std::string stored;
    const TypedPathProblem problem = DecodePercent(rest, stored);
    if (problem != TypedPathProblem::kNone) return {{}, problem};
    return {codec.PathToInner(stored), TypedPathProblem::kNone};
}

bool IsInnerForm(std::u16string_view text) {
    const PathRoot root = ParsePathRoot(text);
    if (root.kind == PathRootKind::kDrive) return true;
    return root.kind == PathRootKind::kShare && text.starts_with(u"\\\\");
}

}  // namespace

TypedPath InnerPathFromTyped(std::string_view typed, std::string_view homeFolder, const PathCodec& codec) {
    if (typed.empty()) return {{}, TypedPathProblem::kEmpty};
    if (typed.find('\0') != typed.npos) return {{}, TypedPathProblem::kForbiddenByte};
    if (StartsWithNoCase(typed, kScheme) && typed.size() > kScheme.size()) {
        return FromFileUri(typed.substr(kScheme.size()), codec);
    }
    if (typed == "~" || typed.starts_with("~/")) {
        if (homeFolder.empty()) return {{}, TypedPathProblem::kNoHome};
        return {codec.PathToInner(std::string(homeFolder) + std::string(typed.substr(1))), TypedPathProblem::kNone};
    }
    if (std::u16string text = FromUtf8(typed); IsInnerForm(text)) return {std::move(text), TypedPathProblem::kNone};
    return {codec.PathToInner(typed), TypedPathProblem::kNone};
}

std::string_view DescribeProblem(TypedPathProblem problem) {
    switch (problem) {
        case TypedPathProblem::kNone:
            return "";
        case TypedPathProblem::kEmpty:
            return "The path is empty. Give a file or folder.";
        case TypedPathProblem::kNoHome:
            return "The home folder is not known. Set HOME, or write the path out.";
        case TypedPathProblem::kForeignHost:
            return "The URI names another computer. Mount its folder and give the path here.";
        case TypedPathProblem::kNotAbsolute:
            return "A file URI needs an absolute path. Write file:///folder/name.";
        case TypedPathProblem::kBadPercent:
            return "A '%' in the URI is not followed by two hexadecimal digits. Write %25 for the sign itself.";
        case TypedPathProblem::kForbiddenByte:
            return "No file name can hold this character (%2F, %00). Check the URI.";
        case TypedPathProblem::kHasFragment:
            return "A file URI has no '?' or '#' part. Write %3F or %23 for the sign itself.";
    }
    return "";
}

}  // namespace kinsort
