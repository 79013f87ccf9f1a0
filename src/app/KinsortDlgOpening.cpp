// How the dialog comes up: its texts, its place, its controls, in front of other windows or not.
#include <algorithm>

#include "app/KinsortDlg.h"
#include "framework/DialogTexts.h"

namespace kinsort {
namespace {

constexpr int kForegroundRetryMs = 50;
constexpr size_t kHistoryEntries = 20;

enum ShowMode : int32_t { kShowTopmost = 1, kShowTopmostTool = 2, kShowOwned = 3, kShowTool = 4 };

// One direction of centring: over the host, but not beyond the work area, whose left or upper edge counts more.
int CenteredStart(int hostStart, int hostEnd, int ownLength, int workStart, int workEnd) {
    int start = ((hostEnd - hostStart) - ownLength) / 2 + hostStart;
    if (start + ownLength > workEnd) start = workEnd - ownLength;
    return std::max(start, workStart);
}

// The dialog as files of texts know it. It has no plain combo box, so there are no items to set.
class DialogTextsOfView final : public DialogTextTarget {
  public:
    explicit DialogTextsOfView(KinsortDlgView& view) : view_(view) {}

    std::u16string Title() override { return view_.Title(); }
    void SetTitle(std::u16string_view title) override { view_.SetTitle(title); }
    std::vector<DialogControlTexts> Controls() override {
        std::vector<DialogControlTexts> controls;
        controls.reserve(kDialogControls.size());
        for (const DialogControl& control : kDialogControls) {
            controls.push_back(
                {control.id, std::u16string(WindowClassOf(control.kind)), view_.ControlText(control.id), {}});
        }
        return controls;
    }
    void SetControlText(int number, std::u16string_view text) override { view_.SetControlText(number, text); }
    void ClearComboBox(int) override {}
    void AddComboBoxItem(int, std::u16string_view) override {}

  private:
    KinsortDlgView& view_;
};

}  // namespace

bool CKinsortDlg::OnInitDialog() {
    PushFields();
    DialogTextsOfView texts(m_view);
    TranslateDialog({m_services.settings, m_services.folders, m_services.files}, texts, kDialogTemplate.id);
    CenterOverHost();
    PrepareControls();
    m_bConfirm = static_cast<int>(m_services.settings.ReadCommandDword(kConfirmName).value_or(1));
    PushFields();
    m_view.ClearFolderSelection();
    if (m_services.handOff.SharedHandOff == 1) TakeHandedItems(m_services.handOff.SelectedItems);
    ApplyShowMode();
    m_view.CallSoon([&operation = m_services.operation] { operation.OfferRecovery(); });
    return true;
}

void CKinsortDlg::CenterOverHost() {
    if (m_services.handOff.ShowMode == kShowOwned) return;
    const WindowHandle host = m_services.windows.FindTopLevel(kHostWindowClass);
    if (host == kNoWindow) return;
    const std::optional<ScreenRectangle> over = m_services.ui.WindowRectangle(host);
    const std::optional<ScreenRectangle> own = m_services.ui.WindowRectangle(m_view.Handle());
    const std::optional<ScreenRectangle> work = m_services.ui.WorkArea(host);
    if (!over || !own || !work) return;
    m_view.MoveTo(CenteredStart(over->left, over->right, own->right - own->left, work->left, work->right),
                  CenteredStart(over->top, over->bottom, own->bottom - own->top, work->top, work->bottom));
}

void CKinsortDlg::PrepareControls() {
    m_view.PrepareList();
    // In every language, as the host's commands head their lists.
    m_view.InsertListColumn(0, u"File", 200);
    m_view.InsertListColumn(1, u"Target sub folder", 180);
    m_view.AcceptDroppedFiles(kIdFolder);
    m_cbFolder.SetHistory(u"Kinsort", kHistoryEntries);
    m_cbFolder.PostLoadHistory();
    m_cbFolder.m_bSaveOnDestroy = true;
}

void CKinsortDlg::ApplyShowMode() {
    switch (m_services.handOff.ShowMode) {
        case kShowTopmostTool:
            m_view.MakeToolWindow();
            [[fallthrough]];
        case kShowTopmost:
            m_view.SetTopmost(true);
            BringToForeground();
            return;
        case kShowOwned:
            return;
        case kShowTool:
            m_view.MakeToolWindow();
            break;
        default:
            break;
    }
    BringToFront();
}

// As long as Shift or Ctrl is held, the user is busy with the host's window: wait for both to go up.
void CKinsortDlg::BringToFront() {
    m_view.KillTimer(kForegroundTimer);
    if (m_services.ui.IsKeyDown(ModifierKey::kShift) || m_services.ui.IsKeyDown(ModifierKey::kControl)) {
        m_view.StartTimer(kForegroundTimer, kForegroundRetryMs);
        return;
    }
    m_view.SetTopmost(true);
    m_view.SetTopmost(false);
    BringToForeground();
}

void CKinsortDlg::BringToForeground() {
    m_services.ui.BringToForeground(m_view.Handle());
}

void CKinsortDlg::OnTimer(int) {
    BringToFront();
}

}  // namespace kinsort
