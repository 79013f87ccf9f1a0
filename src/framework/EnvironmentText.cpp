#include "framework/EnvironmentText.h"

#include <optional>

#include "text/AsciiCase.h"
#include "text/Utf8.h"

namespace kinsort {

namespace {

std::optional<std::u16string> ValueOf(std::u16string_view name, const Environment& environment,
                                      const PathCodec& codec) {
    if (name.empty()) return std::nullopt;
    std::optional<std::u16string> value = environment.GetVariable(name);
    if (!value) value = environment.GetVariable(AsciiUpper(name));
    if (value && value->starts_with(u'/')) value = codec.PathToInner(ToUtf8(*value));
    return value;
}

}  // namespace

std::u16string ExpandEnvironment(std::u16string_view text, const Environment& environment, const PathCodec& codec) {
    std::u16string out;
    while (true) {
        const size_t open = text.find(u'%');
        const size_t close = open == text.npos ? text.npos : text.find(u'%', open + 1);
        if (close == text.npos) return out.append(text);
        out += text.substr(0, open);
        const std::optional<std::u16string> value =
            ValueOf(text.substr(open + 1, close - open - 1), environment, codec);
        if (value) out += *value;
        // The second "%" of what is no variable may be the first of one.
        if (!value) out += text.substr(open, close - open);
        text.remove_prefix(value ? close + 1 : close);
    }
}

}  // namespace kinsort
