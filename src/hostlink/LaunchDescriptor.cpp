#include "hostlink/LaunchDescriptor.h"

#include <vector>

#include "text/Numbers.h"
#include "text/Split.h"

namespace kinsort {
namespace {

constexpr size_t kMaxUnits = 2047;
constexpr size_t kFieldCount = 10;
constexpr size_t kKindField = 8;
constexpr std::u16string_view kSharedKind = u"Share";

}  // namespace

std::u16string ReadLaunchDescriptor(const Environment& environment) {
    std::u16string value = environment.GetVariable(kLaunchDescriptorVariable).value_or(u"");
    if (value.size() > kMaxUnits) value.clear();
    return value;
}

std::optional<LaunchDescriptor> ParseLaunchDescriptor(std::u16string_view text) {
    const std::vector<std::u16string> fields = Split(text.substr(0, text.find(u'\0')), u':');
    if (fields.size() != kFieldCount) return std::nullopt;
    return LaunchDescriptor{.showMode = ReadInt32(fields[0]),
                            .returnFocus = ReadInt32(fields[1]),
                            .first = ReadInt32(fields[2]),
                            .second = ReadInt32(fields[3]),
                            .size = ReadInt32(fields[4]),
                            .isShared = fields[kKindField] == kSharedKind};
}

std::u16string FormatLaunchDescriptor(const LaunchDescriptor& descriptor) {
    std::u16string text;
    for (int32_t number :
         {descriptor.showMode, descriptor.returnFocus, descriptor.first, descriptor.second, descriptor.size})
        text += FormatInteger(number) + u":";
    text += u":::";
    if (descriptor.isShared) text += kSharedKind;
    return text + u":";
}

}  // namespace kinsort
