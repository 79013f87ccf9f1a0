#include "text/PathSyntax.h"

namespace kinsort {

namespace {

constexpr size_t kPrefixLength = 4;     // "\\?\"
constexpr size_t kUncPrefixLength = 8;  // "\\?\UNC\"

size_t SkipSeparators(std::u16string_view path, size_t from) {
    while (from < path.size() && IsSeparator(path[from]))
        ++from;
    return from;
}

size_t SkipName(std::u16string_view path, size_t from) {
    while (from < path.size() && !IsSeparator(path[from]))
        ++from;
    return from;
}

bool StartsWithTwoSeparatorsAnd(std::u16string_view path, char16_t third) {
    return path.size() >= kPrefixLength && IsSeparator(path[0]) && IsSeparator(path[1]) && path[2] == third &&
           IsSeparator(path[3]);
}

bool HasUncPrefix(std::u16string_view path) {
    constexpr std::u16string_view kUpper = u"UNC";
    if (!StartsWithTwoSeparatorsAnd(path, u'?') || path.size() < kUncPrefixLength) return false;
    for (size_t i = 0; i < kUpper.size(); ++i) {
        const char16_t unit = path[kPrefixLength + i];
        if (unit != kUpper[i] && unit != kUpper[i] + (u'a' - u'A')) return false;
    }
    return IsSeparator(path[kUncPrefixLength - 1]);
}

void ParseShare(std::u16string_view body, PathRoot& root) {
    const size_t serverBegin = SkipSeparators(body, 0);
    const size_t serverEnd = SkipName(body, serverBegin);
    const size_t shareBegin = SkipSeparators(body, serverEnd);
    const size_t shareEnd = SkipName(body, shareBegin);
    root.server = body.substr(serverBegin, serverEnd - serverBegin);
    root.share = body.substr(shareBegin, shareEnd - shareBegin);
    root.kind = root.server.empty() || root.share.empty() ? PathRootKind::kDevice : PathRootKind::kShare;
    root.remainder = body.substr(SkipSeparators(body, shareEnd));
}

void ParseDrive(std::u16string_view body, PathRoot& root) {
    root.drive = body[0];
    const bool hasRoot = body.size() > 2 ? IsSeparator(body[2]) : root.isExtended;
    root.kind = hasRoot ? PathRootKind::kDrive : PathRootKind::kDriveRelative;
    root.remainder = body.substr(SkipSeparators(body, 2));
}

// The root in the form it was written in, with "\" and a separator at its end.
std::u16string RootText(const PathRoot& root) {
    std::u16string out;
    if (root.isExtended) out = root.kind == PathRootKind::kShare ? u"\\\\?\\UNC" : u"\\\\?\\";
    if (root.kind == PathRootKind::kShare) {
        out += root.isExtended ? u"\\" : u"\\\\";
        out.append(root.server).append(u"\\").append(root.share).append(u"\\");
    } else {
        out += root.drive;
        out += u":\\";
    }
    return out;
}

}  // namespace

PathRoot ParsePathRoot(std::u16string_view path) {
    PathRoot root;
    root.isExtended = StartsWithTwoSeparatorsAnd(path, u'?');
    const std::u16string_view body = root.isExtended ? path.substr(kPrefixLength) : path;
    if (HasUncPrefix(path)) {
        ParseShare(path.substr(kUncPrefixLength), root);
    } else if (body.size() >= 2 && IsDriveLetter(body[0]) && body[1] == u':') {
        ParseDrive(body, root);
    } else if (root.isExtended || StartsWithTwoSeparatorsAnd(path, u'.')) {
        root.kind = PathRootKind::kDevice;
        root.remainder = body;
    } else if (body.size() >= 2 && IsSeparator(body[0]) && IsSeparator(body[1])) {
        ParseShare(body, root);
    } else {
        root.kind = !body.empty() && IsSeparator(body[0]) ? PathRootKind::kRooted : PathRootKind::kRelative;
        root.remainder = body.substr(SkipSeparators(body, 0));
    }
    return root;
}

std::vector<std::u16string_view> ResolveNames(std::u16string_view remainder) {
    std::vector<std::u16string_view> names;
    for (size_t begin = SkipSeparators(remainder, 0); begin < remainder.size();) {
        const size_t end = SkipName(remainder, begin);
        const std::u16string_view name = remainder.substr(begin, end - begin);
        if (name == u"..") {
            if (!names.empty()) names.pop_back();
        } else if (name != u".") {
            names.push_back(name);
        }
        begin = SkipSeparators(remainder, end);
    }
    return names;
}

std::u16string ResolvePathText(std::u16string_view path, std::u16string_view currentFolder) {
    const PathRoot root = ParsePathRoot(path);
    if (root.kind == PathRootKind::kDevice) return std::u16string(path);

    const PathRoot current = ParsePathRoot(currentFolder);
    const bool isAbsolute = root.kind == PathRootKind::kDrive || root.kind == PathRootKind::kShare;
    const bool isOnOtherDrive =
        root.kind == PathRootKind::kDriveRelative && (root.drive | 0x20) != (current.drive | 0x20);
    std::u16string out = RootText(isAbsolute || isOnOtherDrive ? root : current);
    std::u16string joined;
    std::u16string_view names = root.remainder;
    if (!isAbsolute && !isOnOtherDrive && root.kind != PathRootKind::kRooted) {
        joined.append(current.remainder).append(u"\\").append(root.remainder);
        names = joined;
    }

    const std::vector<std::u16string_view> resolved = ResolveNames(names);
    out.reserve(out.size() + names.size() + 1);
    for (const std::u16string_view name : resolved)
        out.append(name).append(u"\\");
    const bool keepsSeparator = !root.remainder.empty() && IsSeparator(root.remainder.back());
    if (!resolved.empty() && !keepsSeparator) out.pop_back();
    return out;
}

std::u16string RemoveLongPathPrefix(std::u16string_view path) {
    if (HasUncPrefix(path)) return u"\\\\" + std::u16string(path.substr(kUncPrefixLength));
    if (!StartsWithTwoSeparatorsAnd(path, u'?')) return std::u16string(path);
    return std::u16string(path.substr(kPrefixLength));
}

}  // namespace kinsort
