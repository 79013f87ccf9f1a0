// The dialog's window in Qt: hands on what happens, draws what it is told, decides nothing.
#pragma once

#include <QEventLoop>
#include <QSocketNotifier>
#include <QTimer>
#include <map>
#include <memory>
#include <optional>

#include "app/KinsortDlgView.h"
#include "platform/WindowMessages.h"
#include "ui/qt/DirMenuPopup.h"
#include "ui/qt/KinsortWindow.h"
#include "ui/qt/QtUserInterface.h"

namespace kinsort {

// All of them outlive the view.
struct QtDialogServices {
    WindowMessages& messages;
    QtUserInterface& ui;  // is told of the window
    const PathCodec& codec;
    const QtIcons& icons;
};

class QtKinsortDlgView final : public KinsortDlgView {
  public:
    explicit QtKinsortDlgView(const QtDialogServices& services);
    ~QtKinsortDlgView() override;

    KinsortWindow& Window() { return window_; }

    int DoModal(WindowHandle parent, KinsortDlgEvents& events) override;
    void EndDialog(int result) override;
    void CallSoon(std::function<void()> work) override;
    void StartTimer(int timerId, int milliseconds) override;
    void KillTimer(int timerId) override;

    WindowHandle Handle() const override { return handle_; }
    void MoveTo(int x, int y) override;
    void SetTopmost(bool isTopmost) override;
    void MakeToolWindow() override;
    std::u16string Title() const override;
    void SetTitle(std::u16string_view text) override;

    std::u16string ControlText(int controlId) const override;
    void SetControlText(int controlId, std::u16string_view text) override;
    bool IsChecked(int controlId) const override;
    void SetChecked(int controlId, bool isChecked) override;
    void EnableControl(int controlId, bool isEnabled) override;
    void FocusControl(int controlId) override;
    void ClearFolderSelection() override;
    void AcceptDroppedFiles(int controlId) override;
    std::optional<size_t> ShowPopupMenu(int controlId, const std::vector<std::u16string>& texts) override;

    void PrepareList() override;
    void InsertListColumn(size_t index, std::u16string_view title, int width) override;
    void SetListCount(size_t count) override;
    void RedrawList() override;
    std::optional<size_t> SelectedListRow() const override;

    CmdListView& List() override { return window_.List(); }
    HistoryComboView& FolderBox() override { return window_.Folder(); }
    DirMenuView& FavoritesMenu() override { return favorites_; }
    void AttachControls(CCmdListCtrl* list, CHistryComboBoxEx* folderBox) override;

  private:
    void Register(KinsortDlgEvents& events);

    QtDialogServices services_;
    KinsortWindow window_;
    DirMenuPopup favorites_;
    KinsortDlgEvents* events_ = nullptr;
    std::unique_ptr<TopLevelWindow> topLevel_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::map<int, std::unique_ptr<QTimer>> timers_;
    std::optional<int> result_;
    QEventLoop loop_;
    bool hasClearedSelection_ = false;
    WindowHandle handle_ = kNoWindow;
};

}  // namespace kinsort
