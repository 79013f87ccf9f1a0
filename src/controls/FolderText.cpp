#include "controls/FolderText.h"

#include <utility>

#include "framework/TypedPath.h"
#include "text/AsciiCase.h"
#include "text/PathSyntax.h"
#include "text/Utf8.h"

namespace kinsort {

namespace {

constexpr char16_t kByteBase = 0xDC00;  // + a byte of 0x80 or more that is not text
constexpr char16_t kNativeSeparator = u'/';

constexpr bool IsByte(char16_t unit) {
    return unit >= kByteBase + 0x80 && unit <= kByteBase + 0xFF;
}

std::string StoredFromShown(std::u16string_view shown) {
    std::string stored;
    for (size_t i = 0; i < shown.size(); ++i) {
        if (IsHighSurrogate(shown[i]) && i + 1 < shown.size() && IsLowSurrogate(shown[i + 1])) {
            AppendUtf8(stored, JoinSurrogates(shown[i], shown[i + 1]));
            ++i;
        } else if (IsByte(shown[i])) {
            stored += static_cast<char>(shown[i] - kByteBase);
        } else {
            AppendUtf8(stored, shown[i]);
        }
    }
    return stored;
}

std::u16string ShownFromStored(std::string_view stored) {
    std::u16string shown;
    shown.reserve(stored.size());
    while (!stored.empty()) {
        const DecodedUtf8 decoded = DecodeUtf8(stored);
        if (decoded.length == 0) {
            shown += static_cast<char16_t>(kByteBase + static_cast<unsigned char>(stored[0]));
            stored.remove_prefix(1);
        } else {
            AppendUtf16(shown, decoded.point);
            stored.remove_prefix(decoded.length);
        }
    }
    return shown;
}

bool IsSamePath(std::u16string_view a, std::u16string_view b) {
    if (a.empty() || b.empty()) return a == b;
    return AsciiLower(a[0]) == AsciiLower(b[0]) && a.substr(1) == b.substr(1);  // a drive has either case
}

}  // namespace

FolderText::FolderText(const PathCodec& codec, std::string homeFolder)
    : codec_(codec), home_(std::move(homeFolder)), nativeRoot_(codec.PathToInner("/")) {
    if (ParsePathRoot(nativeRoot_).kind != PathRootKind::kDrive) nativeRoot_.clear();
}

std::u16string FolderText::ToInner(std::u16string_view shown) const {
    const bool isInner = shown.starts_with(u'\\') || BeginsWithDrive(shown);
    if (!isInner && !shown.empty()) {
        TypedPath typed = InnerPathFromTyped(StoredFromShown(shown), home_, codec_);
        if (typed.ok()) return std::move(typed.inner);
    }
    return std::u16string(shown);
}

std::u16string FolderText::ToShown(std::u16string_view inner) const {
    std::u16string native = NativeText(inner);
    return !native.empty() && IsSamePath(ToInner(native), inner) ? native : std::u16string(inner);
}

// Empty when there is none.
std::u16string FolderText::NativeText(std::u16string_view inner) const {
    const PathRoot root = ParsePathRoot(inner);
    std::string stored;
    if (nativeRoot_.empty() || inner.empty()) return {};
    if (root.kind == PathRootKind::kDrive && AsciiLower(root.drive) == AsciiLower(nativeRoot_[0])) {
        const Result<std::string> found = codec_.PathToStored(inner);
        if (!found.ok()) return {};
        stored = *found;
    } else if (root.kind == PathRootKind::kRelative) {
        for (const std::u16string_view name : ResolveNames(inner))
            stored.append(stored.empty() ? "" : "/").append(codec_.NameToStored(name));
    }
    std::u16string shown = ShownFromStored(stored);
    if (IsSeparator(inner.back()) && !shown.empty() && shown.back() != kNativeSeparator) shown += kNativeSeparator;
    return shown;
}

bool BeginsWithDrive(std::u16string_view text) {
    return text.size() >= 2 && IsDriveLetter(text[0]) && text[1] == u':';
}

bool HasFullForm(std::u16string_view text) {
    return BeginsWithDrive(text) || text.starts_with(u"\\\\");
}

}  // namespace kinsort
