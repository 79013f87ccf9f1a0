// The small icons of files and folders, by index in one list of the program. Index 0 is the plain icon that stands
// where no better one is known.
#pragma once

#include <cstdint>
#include <string_view>

namespace kinsort {

class Icons {
  public:
    virtual ~Icons() = default;

    // Both may be called from any thread, several at a time, and give -1 when nothing fits.

    // Of what stands at `path` (inner form). Looks at the disk and can take as long as the disk does.
    virtual int IndexOfPath(std::u16string_view path) = 0;
    // Of something called `name` with these kAttribute... bits, whether it exists or not. Never looks at the disk.
    virtual int IndexOfName(std::u16string_view name, uint32_t attributes) = 0;
};

}  // namespace kinsort
