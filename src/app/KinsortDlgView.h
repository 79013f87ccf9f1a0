// The dialog's window as its presenter sees it: controls by their ids, the window among others, the loop. The view
// forwards what happens to KinsortDlgEvents and draws what it is told; it decides nothing. Everything runs on the
// thread of the view.
//
// Paths: the folder field shows and takes what people know ("/home/me/Pictures", "~/x", "file:///..."); its presenter,
// CHistryComboBoxEx, alone turns that into the inner form and back (controls/FolderText.h), and the view hands on what
// stands in the field. Texts of labels, titles and popup menus are ready to be shown. Every other path that passes here
// is in the inner form, dropped paths included.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/DialogTemplate.h"
#include "platform/WindowHandle.h"
#include "platform/WindowMessages.h"

namespace kinsort {

class CCmdListCtrl;
class CHistryComboBoxEx;
class CmdListView;
class DirMenuView;
class HistoryComboView;

// The class under which the dialog's window is known to other programs.
inline constexpr std::u16string_view kDialogWindowClass = u"#32770";

// What the dialog ended with.
constexpr int kDialogOk = kIdOk;
constexpr int kDialogCancel = kIdCancel;

// What a view reports. OnData, OnNumbers and OnDrop are what other programs send to the window.
class KinsortDlgEvents : public MessageHandler {
  public:
    // Once, when the controls exist and before the window is shown. True: the view gives the focus to the first
    // control that takes it.
    virtual bool OnInitDialog() = 0;
    // A button was pressed or a check box or radio button was clicked (which has changed its state by then). Enter and
    // Esc are kIdOk and kIdCancel where no control wants the key; so is the window's close button kIdCancel. Never for
    // a disabled control.
    virtual void OnCommand(int controlId) = 0;
    virtual void OnTimer(int timerId) = 0;
    // Paths that were dropped on the window but not on a control that takes drops itself; inner form, in their order.
    virtual void OnDropFiles(const std::vector<std::u16string>& paths) = 0;
    // F1. True: handled.
    virtual bool OnHelpInfo() = 0;
};

class KinsortDlgView {
  public:
    virtual ~KinsortDlgView() = default;

    // --- the loop ----------------------------------------------------------------------------------------------------

    // Makes the window known under kDialogWindowClass, calls OnInitDialog, shows the window, owned by `parent` (another
    // program's window, or kNoWindow), and handles events until EndDialog was called and the event that called it has
    // been worked off. Returns EndDialog's result. Called once; `events` outlives the call.
    virtual int DoModal(WindowHandle parent, KinsortDlgEvents& events) = 0;
    // Hides the window. From now on nothing is reported any more, and other programs do not find the window. It and its
    // controls stay in existence, and it owns other windows, as long as the view lives.
    virtual void EndDialog(int result) = 0;
    // Runs `work` from the loop, after what is being worked off now and, when the window is about to be shown, after
    // that.
    virtual void CallSoon(std::function<void()> work) = 0;
    // OnTimer(timerId) every `milliseconds` until it is killed; starting it again starts the time anew.
    virtual void StartTimer(int timerId, int milliseconds) = 0;
    virtual void KillTimer(int timerId) = 0;

    // --- the window --------------------------------------------------------------------------------------------------

    virtual WindowHandle Handle() const = 0;
    // Where the frame is to stand, in the pixels of UserInterface::WindowRectangle; size and order unchanged.
    virtual void MoveTo(int x, int y) = 0;
    // In front of all windows that are not topmost themselves, or no longer so. Place and size unchanged.
    virtual void SetTopmost(bool isTopmost) = 0;
    // A small caption, and no entry in the list of running programs.
    virtual void MakeToolWindow() = 0;
    virtual std::u16string Title() const = 0;
    virtual void SetTitle(std::u16string_view text) = 0;

    // --- controls ----------------------------------------------------------------------------------------------------
    // An id that the dialog does not have, or of a control of another kind, does nothing and reads as nothing.

    // With "&" before the accelerator, where the control has one. Of kIdFolder: what the edit field holds.
    virtual std::u16string ControlText(int controlId) const = 0;
    virtual void SetControlText(int controlId, std::u16string_view text) = 0;
    virtual bool IsChecked(int controlId) const = 0;
    virtual void SetChecked(int controlId, bool isChecked) = 0;
    virtual void EnableControl(int controlId, bool isEnabled) = 0;
    virtual void FocusControl(int controlId) = 0;
    // Takes the selection off the text of the folder field, caret at its end.
    virtual void ClearFolderSelection() = 0;
    // From now on the control takes dropped files itself (CHistryComboBoxEx::OnDropFiles); the window does so always.
    virtual void AcceptDroppedFiles(int controlId) = 0;
    // Shows a popup menu centred on the middle of a control, one item for each text ("&" is an ordinary character
    // there), and waits. The index of the chosen one; nothing when the menu was dismissed.
    virtual std::optional<size_t> ShowPopupMenu(int controlId, const std::vector<std::u16string>& texts) = 0;

    // --- the list (kIdList) ------------------------------------------------------------------------------------------

    // Small icons in front of the rows, whole rows selected.
    virtual void PrepareList() = 0;
    // Adds a column, left-aligned; `width` in pixels at 100 %.
    virtual void InsertListColumn(size_t index, std::u16string_view title, int width) = 0;
    // How many rows the list asks CCmdListCtrl for. Draws nothing yet; what was scrolled to and selected stays, as far
    // as it is still there.
    virtual void SetListCount(size_t count) = 0;
    // Erases and draws the list before it returns.
    virtual void RedrawList() = 0;
    virtual std::optional<size_t> SelectedListRow() const = 0;

    // --- controls with presenters of their own -----------------------------------------------------------------------

    // What those presenters need of the screen. They live as long as the view.
    virtual CmdListView& List() = 0;
    virtual HistoryComboView& FolderBox() = 0;
    virtual DirMenuView& FavoritesMenu() = 0;  // shows its menu at kIdFavorites
    // Tells the view whom its list and its folder field report to: once before DoModal, and once with nulls before
    // those two go.
    virtual void AttachControls(CCmdListCtrl* list, CHistryComboBoxEx* folderBox) = 0;
};

}  // namespace kinsort
