#include "platform/linux/LinuxPathCodec.h"

#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#include <errno.h>

#include "platform/linux/LinuxError.h"
#include "text/AsciiCase.h"
#include "text/PathSyntax.h"
#include "text/Utf8.h"

namespace kinsort {

namespace {

constexpr char16_t kByteBase = 0xDC00;  // + a byte of 0x80 or more
constexpr char16_t kAsciiBase = 0xF000;
constexpr char16_t kAsciiLast = 0xF07F;

constexpr bool IsControl(char32_t point) {
    return point < 0x20 || point == 0x7F;
}
// "/" and NUL are in no name; they are escaped so that not even a wrong caller gets a separator or an end.
constexpr bool NeedsAsciiEscape(char32_t point) {
    return IsControl(point) || point == U'\\' || point == U'/';
}
constexpr bool IsAsciiEscape(char16_t unit) {
    return unit >= kAsciiBase && unit <= kAsciiLast;
}
constexpr bool IsByteEscape(char16_t unit) {
    return unit >= kByteBase + 0x80 && unit <= kByteBase + 0xFF;
}

// What stands for itself in both forms: nearly every character of nearly every name.
template <typename Unit>
constexpr bool IsPlain(Unit unit) {
    const auto code = static_cast<char32_t>(unit);
    return code < 0x80 && !NeedsAsciiEscape(code);
}

void AppendStoredUnit(std::string& out, char16_t unit) {
    const char16_t plain = IsAsciiEscape(unit) ? static_cast<char16_t>(unit - kAsciiBase) : unit;
    if (IsByteEscape(unit)) {
        out += static_cast<char>(unit - kByteBase);
    } else if (plain == 0 || plain == u'/') {
        AppendUtf8(out, kAsciiBase + plain);
    } else if (IsAsciiEscape(unit) && !NeedsAsciiEscape(plain)) {
        AppendUtf8(out, unit);
    } else {
        AppendUtf8(out, plain);
    }
}

// Format characters that can turn a whole line of a terminal around or break it in two.
constexpr bool HidesText(char32_t point) {
    return IsControl(point) || (point >= 0x80 && point <= 0x9F) || (point >= 0x2028 && point <= 0x202E) ||
           (point >= 0x2066 && point <= 0x2069);
}

std::string EscapeForTerminal(std::string_view bytes) {
    std::string out;
    while (!bytes.empty()) {
        const DecodedUtf8 decoded = DecodeUtf8(bytes);
        const std::string_view used = bytes.substr(0, decoded.length == 0 ? 1 : decoded.length);
        if (decoded.length == 0 || HidesText(decoded.point)) {
            for (const char byte : used) {
                char escaped[5];
                std::snprintf(escaped, sizeof escaped, "\\x%02X", static_cast<unsigned>(byte) & 0xFFu);
                out += escaped;
            }
        } else {
            out += used;
        }
        bytes.remove_prefix(used.size());
    }
    return out;
}

class LinuxPathCodec final : public PathCodec {
  public:
    explicit LinuxPathCodec(std::string drivesFolder) : drivesFolder_(std::move(drivesFolder)) {}

    std::u16string NameToInner(std::string_view storedName) const override {
        std::u16string out;
        out.reserve(storedName.size());
        AppendInner(out, storedName);
        return out;
    }

    static void AppendInner(std::u16string& out, std::string_view storedName) {
        while (!storedName.empty()) {
            if (IsPlain(storedName.front())) {
                out += static_cast<char16_t>(storedName.front());
                storedName.remove_prefix(1);
                continue;
            }
            const DecodedUtf8 decoded = DecodeUtf8(storedName);
            const size_t used = decoded.length == 0 ? 1 : decoded.length;
            if (decoded.length == 0 || (decoded.point >= kAsciiBase && decoded.point <= kAsciiLast)) {
                for (const char byte : storedName.substr(0, used)) {
                    out += static_cast<char16_t>(kByteBase + static_cast<unsigned char>(byte));
                }
            } else if (NeedsAsciiEscape(decoded.point)) {
                out += static_cast<char16_t>(kAsciiBase + decoded.point);
            } else {
                AppendUtf16(out, decoded.point);
            }
            storedName.remove_prefix(used);
        }
    }

    std::string NameToStored(std::u16string_view innerName) const override {
        std::string out;
        out.reserve(innerName.size() + innerName.size() / 2);
        for (size_t i = 0; i < innerName.size(); ++i) {
            if (IsPlain(innerName[i])) {
                out += static_cast<char>(innerName[i]);
                continue;
            }
            const bool isPair =
                IsHighSurrogate(innerName[i]) && i + 1 < innerName.size() && IsLowSurrogate(innerName[i + 1]);
            if (isPair) {
                AppendUtf8(out, JoinSurrogates(innerName[i], innerName[i + 1]));
                ++i;
            } else {
                AppendStoredUnit(out, innerName[i]);
            }
        }
        return out;
    }

    std::u16string PathToInner(std::string_view storedPath) const override {
        const bool isAbsolute = storedPath.starts_with('/');
        std::u16string out = isAbsolute ? u"Z:\\" : u"";
        out.reserve(storedPath.size() + 2);
        while (!storedPath.empty()) {
            const size_t end = storedPath.find('/');
            const std::string_view name = storedPath.substr(0, end);
            AppendInner(out, name);
            if (end == std::string_view::npos) break;
            if (!name.empty()) out += u'\\';
            storedPath.remove_prefix(end + 1);
        }
        // A relative path whose first name looks like a drive must stay relative.
        return isAbsolute || ParsePathRoot(out).kind == PathRootKind::kRelative ? out : u".\\" + out;
    }

    Result<std::string> PathToStored(std::u16string_view innerPath) const override {
        const PathRoot root = ParsePathRoot(innerPath);
        Result<std::string> base = FolderOfRoot(root);
        if (!base.ok()) return base.status().At(std::u16string(innerPath));
        std::string out = std::move(*base);
        for (const std::u16string_view name : ResolveNames(root.remainder))
            out.append("/").append(NameToStored(name));
        return out.empty() ? "/" : out;
    }

    std::string PathForPeople(std::u16string_view innerPath) const override {
        const Result<std::string> stored = PathToStored(innerPath);
        if (stored.ok()) return EscapeForTerminal(*stored);
        std::string text;
        size_t begin = 0;
        for (size_t i = 0; i <= innerPath.size(); ++i) {
            if (i < innerPath.size() && !IsSeparator(innerPath[i])) continue;
            text += NameToStored(innerPath.substr(begin, i - begin));
            if (i < innerPath.size()) text += static_cast<char>(innerPath[i]);
            begin = i + 1;
        }
        return EscapeForTerminal(text);
    }

  private:
    // The stored path of the drive or share, without a separator at its end, hence empty for "/".
    Result<std::string> FolderOfRoot(const PathRoot& root) const {
        if (root.kind == PathRootKind::kDrive || IsBareDrive(root)) {
            const char16_t letter = AsciiLower(root.drive);
            if (letter == u'z') return std::string();
            return ResolveEntry(std::string(1, static_cast<char>(letter)) + ":");
        }
        if (root.kind != PathRootKind::kShare || IsDots(root.server) || IsDots(root.share)) {
            return StatusFromErrno(EINVAL);
        }
        Result<std::string> asWritten =
            ResolveEntry("unc/" + NameToStored(root.server) + "/" + NameToStored(root.share));
        if (asWritten.ok() || asWritten.code() != StatusCode::kNotFound) return asWritten;
        return ResolveEntry("unc/" + NameToStored(AsciiLower(root.server)) + "/" +
                            NameToStored(AsciiLower(root.share)));
    }

    // "C:", what is left of a drive's root when its separator was taken off.
    static bool IsBareDrive(const PathRoot& root) {
        return root.kind == PathRootKind::kDriveRelative && root.remainder.empty();
    }

    static bool IsDots(std::u16string_view name) { return name == u"." || name == u".."; }

    Result<std::string> ResolveEntry(const std::string& entry) const {
        if (drivesFolder_.empty()) return StatusFromErrno(ENOENT);
        const std::unique_ptr<char, decltype(&std::free)> resolved(
            realpath((drivesFolder_ + "/" + entry).c_str(), nullptr), &std::free);
        if (resolved == nullptr) return StatusFromErrno(errno);
        std::string path = resolved.get();
        if (path == "/") path.clear();
        return path;
    }

    std::string drivesFolder_;
};

}  // namespace

std::unique_ptr<PathCodec> MakeLinuxPathCodec(std::string drivesFolder) {
    return std::make_unique<LinuxPathCodec>(std::move(drivesFolder));
}

}  // namespace kinsort
