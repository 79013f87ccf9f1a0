#include "platform/linux/LinuxSystemInfo.h"

namespace kinsort {

namespace {

class LinuxSystemInfo final : public SystemInfo {
  public:
    std::u16string SystemFolder() const override { return u"Z:\\usr\\lib"; }
    ProgramVersion ShellVersion() const override { return {.major = 10, .minor = 0, .build = 0}; }
    std::u16string ShortPath(std::u16string_view) const override { return {}; }
};

}  // namespace

std::unique_ptr<SystemInfo> MakeLinuxSystemInfo() {
    return std::make_unique<LinuxSystemInfo>();
}

}  // namespace kinsort
