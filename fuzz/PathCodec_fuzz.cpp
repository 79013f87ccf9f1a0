// Any bytes as a name, as a path and as UTF-16 text: stored names round-trip, texts from anywhere give names without a
// separator, and what people see holds nothing that a terminal obeys.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/LinuxPathCodec.h"
#include "text/Utf8.h"

namespace {

using kinsort::PathCodec;

void Require(bool holds) {
    if (!holds) std::abort();
}

void CheckName(const PathCodec& codec, std::string_view name) {
    if (name.find('/') != name.npos || name.find('\0') != name.npos) return;
    const std::u16string inner = codec.NameToInner(name);
    Require(codec.NameToStored(inner) == name);
    Require(inner.find_first_of(u"\\/\x7F") == inner.npos);
    for (const char16_t unit : inner)
        Require(unit >= 0x20);
}

void CheckText(const PathCodec& codec, std::u16string_view text) {
    const std::string stored = codec.NameToStored(text);
    Require(stored.find('/') == stored.npos && stored.find('\0') == stored.npos);
    CheckName(codec, stored);

    const kinsort::Result<std::string> path = codec.PathToStored(text);
    Require(!path.ok() || path->starts_with('/'));
    const std::string shown = codec.PathForPeople(text);
    for (const char byte : shown)
        Require(static_cast<unsigned char>(byte) >= 0x20 && byte != 0x7F);
    Require(kinsort::ToUtf8(kinsort::FromUtf8(shown)) == shown);
}

void CheckPath(const PathCodec& codec, std::string_view below) {
    if (below.find('\0') != below.npos) return;
    const std::string path = "/" + std::string(below);
    const kinsort::Result<std::string> once = codec.PathToStored(codec.PathToInner(path));
    Require(once.ok());
    // The way there tidies up; after that nothing changes any more.
    const kinsort::Result<std::string> twice = codec.PathToStored(codec.PathToInner(*once));
    Require(twice.ok() && *twice == *once);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::unique_ptr<PathCodec> codec = kinsort::MakeLinuxPathCodec("");
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    CheckName(*codec, bytes);
    CheckPath(*codec, bytes);
    std::u16string text(size / 2, u'\0');
    if (!text.empty()) std::memcpy(text.data(), data, text.size() * 2);
    CheckText(*codec, text);
    CheckText(*codec, u"Z:\\" + text);
    return 0;
}
