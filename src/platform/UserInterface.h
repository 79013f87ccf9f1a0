// Everything that the program says to its user or asks of them outside of its own dialog. A toolkit, a console and a
// scripted test implementation stand behind it. All calls block until the user has answered, come from the main thread,
// and are never made while a lock is held.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/WindowHandle.h"

namespace kinsort {

// The values of the platform that the script language was made for: a script gives the sum of one of each kind.
enum class MessageButtons : uint8_t {
    kOk = 0,
    kOkCancel = 1,
    kAbortRetryIgnore = 2,
    kYesNoCancel = 3,
    kYesNo = 4,
    kRetryCancel = 5,
    kCancelTryContinue = 6,
};
enum class MessageIcon : uint8_t { kNone = 0, kError = 0x10, kQuestion = 0x20, kWarning = 0x30, kInformation = 0x40 };
enum class MessageAnswer : uint8_t {
    kOk = 1,
    kCancel = 2,
    kAbort = 3,
    kRetry = 4,
    kIgnore = 5,
    kYes = 6,
    kNo = 7,
    kTryAgain = 10,
    kContinue = 11,
};

struct MessageRequest {
    std::u16string text;
    std::u16string title;
    MessageButtons buttons = MessageButtons::kOk;
    MessageIcon icon = MessageIcon::kNone;
    unsigned defaultButton = 0;  // from the left
    WindowHandle owner = kNoWindow;
};

struct ChoiceRequest {
    std::u16string title;
    std::u16string instruction;
    std::vector<std::u16string> choices;  // at least one
    WindowHandle owner = kNoWindow;
};

struct FolderRequest {
    std::u16string title;
    std::u16string initialFolder;  // inner form; selected when it exists; empty: the platform's choice
    WindowHandle owner = kNoWindow;
};

enum class ModifierKey : uint8_t { kShift, kControl, kAlt };

// A part of the desktop that all screens share, in the pixels that windows are placed by. Right and bottom lie outside.
struct ScreenRectangle {
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;

    bool operator==(const ScreenRectangle&) const = default;
};

class UserInterface {
  public:
    virtual ~UserInterface() = default;

    // One of the buttons of the request. Closing the box without a choice counts as Cancel, as OK where that is the
    // only button, as No where there is a No but no Cancel, and as Abort beside Retry and Ignore.
    virtual MessageAnswer ShowMessage(const MessageRequest& request) = 0;
    // The index of the choice; nothing when the user cancelled.
    virtual std::optional<size_t> ChooseOne(const ChoiceRequest& request) = 0;
    // The folder that was chosen, inner form; nothing when the user cancelled.
    virtual std::optional<std::u16string> BrowseForFolder(const FolderRequest& request) = 0;

    // The clipboard's text; empty when it holds none or cannot be opened.
    virtual std::u16string GetClipboardText() = 0;
    // Empties the clipboard and places the text; nothing happens when it cannot be opened.
    virtual void SetClipboardText(std::u16string_view text) = 0;

    virtual bool IsKeyDown(ModifierKey key) = 0;

    // The program's own main window as it is now; kNoWindow before it exists and on a console.
    virtual WindowHandle MainWindow() = 0;
    // Puts a window of this or another program in front, as far as the desktop allows one program to do that.
    virtual void BringToForeground(WindowHandle window) = 0;

    // Where a window of this or another program stands, its frame included. Nothing when the window is gone or the
    // desktop does not say, and always nothing on a console.
    virtual std::optional<ScreenRectangle> WindowRectangle(WindowHandle) { return std::nullopt; }
    // The screen nearest to that window, or the main one for kNoWindow, less what panels keep for themselves.
    virtual std::optional<ScreenRectangle> WorkArea(WindowHandle) { return std::nullopt; }
    // All screens whole, the main one first; none on a console.
    virtual std::vector<ScreenRectangle> Screens() { return {}; }
};

}  // namespace kinsort
