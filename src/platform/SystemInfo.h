// What programs ask of the system they run on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kinsort {

struct ProgramVersion {
    uint32_t major = 0;
    uint32_t minor = 0;
    uint32_t build = 0;
};

class SystemInfo {
  public:
    virtual ~SystemInfo() = default;

    // The folder of the system's own libraries, inner form, without a trailing separator.
    virtual std::u16string SystemFolder() const = 0;
    // The version of the desktop's shell, in the counting of the platform that the path language was made for.
    virtual ProgramVersion ShellVersion() const = 0;
    // The 8.3 form of an existing path; empty where the volume keeps none.
    virtual std::u16string ShortPath(std::u16string_view path) const = 0;
};

}  // namespace kinsort
