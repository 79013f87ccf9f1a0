// The user behind a Qt desktop: message boxes, choices, the folder browser, the clipboard, keys, windows and screens.
#pragma once

#include <QPointer>
#include <QWidget>

#include "platform/PathCodec.h"
#include "platform/UserInterface.h"
#include "ui/qt/WindowTexts.h"

namespace kinsort {

class QtUserInterface final : public UserInterface {
  public:
    // Both outlive this. Paths are shown and chosen in the desktop's own form.
    QtUserInterface(const PathCodec& codec, const WindowTexts& texts) : codec_(codec), texts_(texts) {}

    // The program's main window and the number by which it is known to other programs. Null when it is gone.
    void SetMainWindow(QWidget* window, WindowHandle handle);

    MessageAnswer ShowMessage(const MessageRequest& request) override;
    std::optional<size_t> ChooseOne(const ChoiceRequest& request) override;
    std::optional<std::u16string> BrowseForFolder(const FolderRequest& request) override;
    std::u16string GetClipboardText() override;
    void SetClipboardText(std::u16string_view text) override;
    bool IsKeyDown(ModifierKey key) override;
    WindowHandle MainWindow() override { return mainWindow_.isNull() ? kNoWindow : mainHandle_; }
    // Of windows of other programs none: a program started from one gives the focus back when its windows go.
    void BringToForeground(WindowHandle window) override;
    std::optional<ScreenRectangle> WindowRectangle(WindowHandle window) override;
    std::optional<ScreenRectangle> WorkArea(WindowHandle window) override;
    std::vector<ScreenRectangle> Screens() override;

  private:
    QWidget* OwnerFor(WindowHandle owner) const;

    const PathCodec& codec_;
    const WindowTexts& texts_;
    QPointer<QWidget> mainWindow_;
    WindowHandle mainHandle_ = kNoWindow;
};

}  // namespace kinsort
