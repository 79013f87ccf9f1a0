// The one window of Kinsort: a folder, copy or move, the list of the selected files with the sub-folders that they go
// to, and the button that starts. Knows every rule of the dialog; sees the screen through KinsortDlgView only.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/KinsortDlgView.h"
#include "app/OperationRunner.h"
#include "classify/PlanPresenter.h"
#include "controls/CmdListCtrl.h"
#include "controls/HistryComboBoxEx.h"
#include "framework/Messages.h"
#include "framework/Processes.h"
#include "framework/Settings.h"
#include "framework/VelFolders.h"
#include "hostlink/HostHandOff.h"
#include "platform/UserInterface.h"
#include "script/Script.h"

namespace kinsort {

// What the dialog works with; all references outlive it.
struct KinsortDlgServices {
    UserInterface& ui;
    WindowMessages& windows;
    FileSystem& files;
    Icons& icons;
    Clock& clock;
    const NameNormalizer& normalizer;
    const FolderText& folderText;
    Settings& settings;
    Messages& messages;
    VelFolders& folders;
    ProcessContext& processes;
    HostHandOff& handOff;
    OperationRunner& operation;
    std::function<void(const ScriptCall&)> runScript;
};

// What the folder field takes, in code units of the inner form.
constexpr size_t kMaxFolderLength = 250;

class CKinsortDlg final : public KinsortDlgEvents, private PlanView {
  public:
    static constexpr int kForegroundTimer = 1000;

    // `parent`: the window of another program that owns the dialog, or kNoWindow.
    CKinsortDlg(KinsortDlgView& view, const KinsortDlgServices& services, WindowHandle parent);
    ~CKinsortDlg() override;

    // Shows the dialog and returns what it ended with, kDialogOk or kDialogCancel. Once; by then the batch has been
    // carried out and the folder history is saved.
    int DoModal();

    // --- the fields; all but the first three are the dialog's own business -------------------------------------------

    std::u16string m_strFolder;     // the search folder, inner form
    int m_nMode = 0;                // 0 copy, 1 move
    int m_bTwoStep = 0;             // the first drop brings the files, the second the folder
    int m_nLoadState = 0;           // 0: no rows yet; 1: rows have arrived; 2: the folder too, in two steps
    std::u16string m_strTargetDir;  // the search folder with a separator at its end; set by OnOK
    std::u16string m_strCount = u"(0)";
    int m_bConfirm = 1;  // ask about conflicts
    CCmdListCtrl m_list;
    CHistryComboBoxEx m_cbFolder;

    // --- what the view reports ---------------------------------------------------------------------------------------

    bool OnInitDialog() override;
    void OnCommand(int controlId) override;
    void OnTimer(int timerId) override;
    void OnDropFiles(const std::vector<std::u16string>& paths) override;
    bool OnHelpInfo() override;

    // --- what other programs and scripts send ------------------------------------------------------------------------

    // A block of selected items (255) as long as there are no rows, or a folder to jump to (100, 200, 300). Always 0.
    int64_t OnData(WindowHandle sender, uint64_t number, std::span<const std::byte> data) override;
    // Answers 1 to 0x8030, by which others find out whether this is such a dialog.
    int64_t OnNumbers(uint32_t message, uint64_t first, int64_t second) override;
    void OnDrop(std::span<const std::byte> dropList) override;

  private:
    struct CommandRow;
    static const CommandRow kCommandRows[];

    void OnBrowseFolder();
    void OnFavoriteFolder();
    void OnOtherTabFolder();
    void OnSearchAgain() { m_plan.SearchCandidates(); }
    void OnDeleteSelected() { m_plan.OnDeleteSelected(); }
    void OnDeleteNoCandidate() { m_plan.OnDeleteNoCandidate(); }
    void OnOK();
    void OnCancel() { m_view.EndDialog(kDialogCancel); }

    void CenterOverHost();
    void PrepareControls();
    void ApplyShowMode();
    void BringToFront();
    void BringToForeground();

    void TakeHandedItems(const std::vector<std::u16string>& items);
    void ReplacePlan(const std::vector<std::u16string>& items);
    void TakeDroppedFolder(const std::vector<std::u16string>& paths);
    void EnableAndSearch();
    void SetFolder(std::u16string folder);

    bool HasAllCandidates();
    bool TakeTargetDir();
    void CarryOutPlan();
    void ShowMessageWithRetry(uint16_t number);

    // PlanView
    bool ReadControls() override;
    std::u16string SearchFolder() const override { return m_strFolder; }
    void PushFields() override;
    void SetItemCount(size_t count) override { m_view.SetListCount(count); }
    void Redraw() override { m_view.RedrawList(); }
    std::optional<size_t> SelectedRow() const override { return m_view.SelectedListRow(); }
    void SelectRow(size_t row) override { m_view.List().SelectItem(row); }
    void EnsureVisible(size_t row) override { m_view.List().EnsureVisible(row); }
    void FocusList() override { m_view.FocusControl(kIdList); }
    void SetCountLabel(std::u16string_view text) override;
    void ShowMessage(std::u16string_view text) override;

    KinsortDlgView& m_view;
    KinsortDlgServices m_services;
    WindowHandle m_hParent;
    PlanPresenter m_plan;
};

}  // namespace kinsort
