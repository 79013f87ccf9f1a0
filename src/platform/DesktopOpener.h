// Opening programs, documents, folders and addresses the way a double click does.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Status.h"
#include "platform/WindowHandle.h"

namespace kinsort {

enum class OpenVerb : uint8_t {
    kDefault,
    kRunAs,  // with an administrator's rights, after the system has asked for them
};

struct OpenRequest {
    std::u16string file;  // inner path, URL, or the bare name of a program
    // Of a program only; a document's program gets none.
    std::vector<std::u16string> arguments;
    std::u16string startFolder;  // inner form; one that does not exist counts as none
    OpenVerb verb = OpenVerb::kDefault;
    uint16_t showState = 1;      // how a window should open; only a hint
    bool waitForOpener = false;  // return only when the request was handed over, not when the program ends
    WindowHandle owner = kNoWindow;
};

class DesktopOpener {
  public:
    virtual ~DesktopOpener() = default;

    // Success once the program runs or the desktop has taken the document over. kNotFound names what is missing: the
    // file, or the desktop's own opener. kUnsupported: the desktop knows no program for it. What the opened program
    // does afterwards is nobody's business here.
    virtual Status Open(const OpenRequest& request) = 0;
};

}  // namespace kinsort
