#include "app/KinsortDlg.h"

#include <algorithm>
#include <array>
#include <utility>

#include "controls/DirMenu.h"
#include "framework/FileDropList.h"
#include "framework/MessageNumbers.h"
#include "framework/Paths.h"
#include "text/Numbers.h"
#include "text/Trim.h"
#include "text/Utf16Bytes.h"

namespace kinsort {
namespace {

constexpr uint64_t kItemsCode = 255;
constexpr std::array<uint64_t, 3> kFolderCodes = {100, 200, 300};  // the ways in which a script jumps to a folder
constexpr uint32_t kAreYouADialog = 0x8030;
constexpr size_t kMaxChosenFolder = 32'768;
constexpr uint32_t kFavoriteOpenMode = 2;

constexpr std::u16string_view kFavoritesFolder = u"Bar\\Favorite";
constexpr std::u16string_view kManualFolder = u"docs\\vel\\man5\\";
constexpr std::u16string_view kHelpPage = u"6.Command\\2.DefaultCommand\\Kinsort.html";

// The text of a block up to its first NUL or its end.
std::u16string TextOf(std::span<const std::byte> data) {
    std::u16string text;
    for (size_t i = 0; i + 1 < data.size(); i += 2) {
        const char16_t unit = Utf16UnitAt(data, i);
        if (unit == u'\0') break;
        text += unit;
    }
    return text;
}

}  // namespace

struct CKinsortDlg::CommandRow {
    int controlId;
    void (CKinsortDlg::*handler)();
};

// The buttons. To add one: a control in DialogTemplate.h, a handler, a row.
const CKinsortDlg::CommandRow CKinsortDlg::kCommandRows[] = {
    {kIdBrowse, &CKinsortDlg::OnBrowseFolder},
    {kIdFavorites, &CKinsortDlg::OnFavoriteFolder},
    {kIdOtherTabs, &CKinsortDlg::OnOtherTabFolder},
    {kIdSearchAgain, &CKinsortDlg::OnSearchAgain},
    {kIdDeleteSelected, &CKinsortDlg::OnDeleteSelected},
    {kIdDeleteNoCandidate, &CKinsortDlg::OnDeleteNoCandidate},
    {kIdOk, &CKinsortDlg::OnOK},
    {kIdCancel, &CKinsortDlg::OnCancel},
};

CKinsortDlg::CKinsortDlg(KinsortDlgView& view, const KinsortDlgServices& services, WindowHandle parent)
    : m_list(view.List(), services.icons, services.files, services.clock),
      m_cbFolder(view.FolderBox(), services.files, services.folderText, services.settings, services.messages,
                 services.ui),
      m_view(view),
      m_services(services),
      m_hParent(parent),
      m_plan(m_list.Plan(), *this, services.files, services.normalizer) {
    m_cbFolder.m_bFoldersOnly = true;
    m_cbFolder.m_bTabComplete = false;
    m_view.AttachControls(&m_list, &m_cbFolder);
}

CKinsortDlg::~CKinsortDlg() {
    m_view.AttachControls(nullptr, nullptr);
}

int CKinsortDlg::DoModal() {
    const int result = m_view.DoModal(m_hParent, *this);
    m_cbFolder.OnDestroy();
    return result;
}

// --- rows and folders arrive -----------------------------------------------------------------------------------------

// The host's selection, at start or sent later; in two steps the first other tab is the folder.
void CKinsortDlg::TakeHandedItems(const std::vector<std::u16string>& items) {
    for (const std::u16string& item : items)
        m_list.Plan().AddItem(item);
    m_nLoadState = 1;
    if (m_bTwoStep != 0 && !m_services.handOff.OtherTabFolders.empty()) {
        SetFolder(m_services.handOff.OtherTabFolders.front());
    }
    m_plan.UpdateCountLabel();
    PushFields();
    EnableAndSearch();
    m_view.SetListCount(m_list.Plan().GetCount());
    BringToForeground();
}

void CKinsortDlg::EnableAndSearch() {
    for (const int id : {kIdOk, kIdSearchAgain, kIdDeleteNoCandidate, kIdDeleteSelected})
        m_view.EnableControl(id, true);
    m_plan.SearchCandidates();
}

int64_t CKinsortDlg::OnData(WindowHandle, uint64_t number, std::span<const std::byte> data) {
    if (m_nLoadState == 0 && number == kItemsCode) {
        std::vector<std::byte> block(data.begin(), data.end());  // reading marks what was read
        HostHandOff sent;
        ParseHandOffBlock(block, sent);
        HostHandOff& handOff = m_services.handOff;
        handOff.CurrentDir = sent.CurrentDir;
        handOff.Option = sent.Option;
        handOff.OtherTabFolders.insert(handOff.OtherTabFolders.end(), sent.OtherTabFolders.begin(),
                                       sent.OtherTabFolders.end());
        TakeHandedItems(sent.SelectedItems);
    } else if (std::find(kFolderCodes.begin(), kFolderCodes.end(), number) != kFolderCodes.end()) {
        SetFolder(TextOf(data));
    }
    return 0;
}

int64_t CKinsortDlg::OnNumbers(uint32_t message, uint64_t, int64_t) {
    return message == kAreYouADialog ? 1 : 0;
}

void CKinsortDlg::OnDrop(std::span<const std::byte> dropList) {
    if (const auto paths = ParseFileDropList(dropList)) OnDropFiles(*paths);
}

void CKinsortDlg::OnDropFiles(const std::vector<std::u16string>& paths) {
    std::vector<std::u16string> clean;
    clean.reserve(paths.size());
    for (const std::u16string& path : paths)
        clean.push_back(RemoveLongPathPrefix(path));
    if (m_bTwoStep == 0 || m_nLoadState == 0) {
        ReplacePlan(clean);
        if (m_bTwoStep == 0) EnableAndSearch();
    } else if (m_nLoadState == 1) {
        TakeDroppedFolder(clean);
    }
}

void CKinsortDlg::ReplacePlan(const std::vector<std::u16string>& items) {
    (void)ReadControls();
    m_view.SetListCount(0);  // so that the list asks for no row while they go
    m_list.Plan().RemoveAll();
    for (const std::u16string& item : items)
        m_list.Plan().AddItem(item);
    m_nLoadState = 1;
    m_plan.UpdateCountLabel();
    PushFields();
    m_view.SetListCount(m_list.Plan().GetCount());
}

void CKinsortDlg::TakeDroppedFolder(const std::vector<std::u16string>& paths) {
    std::vector<std::u16string>& folders = m_services.handOff.OtherTabFolders;
    std::copy_if(paths.begin(), paths.end(), std::back_inserter(folders),
                 [](const std::u16string& path) { return !path.empty(); });
    m_nLoadState = 2;
    SetFolder(folders.empty() ? m_strFolder : folders.front());
    EnableAndSearch();
}

void CKinsortDlg::SetFolder(std::u16string folder) {
    m_strFolder = std::move(folder);
    PushFields();
    m_view.ClearFolderSelection();
}

// --- buttons ---------------------------------------------------------------------------------------------------------

void CKinsortDlg::OnCommand(int controlId) {
    const auto row = std::find_if(std::begin(kCommandRows), std::end(kCommandRows),
                                  [controlId](const CommandRow& each) { return each.controlId == controlId; });
    if (row != std::end(kCommandRows)) (this->*row->handler)();
}

void CKinsortDlg::OnBrowseFolder() {
    (void)ReadControls();
    std::optional<std::u16string> chosen = m_services.ui.BrowseForFolder(
        {m_services.messages.GetMessageText(kMsgChooseFolder), m_strFolder, m_view.Handle()});
    if (chosen && chosen->size() < kMaxChosenFolder) SetFolder(std::move(*chosen));
}

void CKinsortDlg::OnOtherTabFolder() {
    const std::vector<std::u16string>& folders = m_services.handOff.OtherTabFolders;
    if (folders.empty()) {
        ShowMessageWithRetry(kMsgNoOtherTabs);
        return;
    }
    std::vector<std::u16string> texts;
    texts.reserve(folders.size());
    for (const std::u16string& folder : folders)
        texts.push_back(m_services.folderText.ToShown(folder));
    const std::optional<size_t> chosen = m_view.ShowPopupMenu(kIdOtherTabs, texts);
    if (!chosen || *chosen >= folders.size()) return;
    m_strFolder = folders[*chosen];
    PushFields();
}

void CKinsortDlg::OnFavoriteFolder() {
    const std::u16string folder = AddTrailingSeparator(m_services.folders.GetUserDir()).append(kFavoritesFolder);
    if (!FileExists(m_services.files, folder)) {
        ShowMessageWithRetry(kMsgNoFavorites);
        return;
    }
    CDirMenu menu(m_services.files, folder);
    const std::u16string script = menu.ShowPopup(m_view.FavoritesMenu());
    if (script.empty()) return;
    std::vector<std::u16string> noItems;
    m_services.runScript({.scriptPath = script,
                          .currentFolder = {},
                          .otherFolder = {},
                          .selectedItems = noItems,
                          .forcedOpenMode = kFavoriteOpenMode,
                          .takesCommandLineOption = 0,
                          .hostWindow = m_view.Handle(),
                          .marksSelectedFile = 0,
                          .handedOn = 1,
                          .reserved = 0});
}

bool CKinsortDlg::OnHelpInfo() {
    OpenDocument(m_services.processes, m_services.folders.GetAppDir() + std::u16string(kManualFolder), kHelpPage);
    ShowLastError(m_services.processes);
    return true;
}

// --- starting --------------------------------------------------------------------------------------------------------

void CKinsortDlg::OnOK() {
    if (!ReadControls() || m_list.Plan().GetCount() == 0) return;
    if (!HasAllCandidates()) return;
    // Blanks go before the text is read as a path: with one in front, a native path would be a relative one.
    SetFolder(m_services.folderText.ToInner(Trim(m_view.ControlText(kIdFolder))));
    if (!TakeTargetDir()) {
        ShowMessage(m_services.messages.GetMessageText(kMsgBadFolder));
        return;
    }
    if (!m_services.ui.IsKeyDown(ModifierKey::kShift)) {
        m_services.settings.WriteCommandDword(kConfirmName, static_cast<uint32_t>(m_bConfirm));
    }
    m_view.EndDialog(kDialogOk);
    CarryOutPlan();
}

bool CKinsortDlg::HasAllCandidates() {
    const ClassificationPlan& plan = m_list.Plan();
    const size_t count = plan.GetCount();
    for (size_t row = 0; row < count; ++row) {
        if (!plan[row].arrCandidates.empty()) continue;
        SelectRow(row);
        EnsureVisible(row);
        ShowMessage(u"No target!");
        FocusList();
        return false;
    }
    return true;
}

bool CKinsortDlg::TakeTargetDir() {
    if (!HasFullForm(m_strFolder)) return false;
    m_strTargetDir = AddTrailingSeparator(TrimEnd(m_strFolder));
    return m_strTargetDir != u"\\\\";
}

void CKinsortDlg::CarryOutPlan() {
    const ClassificationPlan& plan = m_list.Plan();
    const size_t count = plan.GetCount();
    std::vector<ItemRequest> items;
    items.reserve(count);
    for (size_t row = 0; row < count; ++row) {
        items.push_back({plan[row].strPath, m_strTargetDir + plan[row].arrCandidates.front(), m_nMode != 0});
    }
    uint32_t flags = kFofAllowUndo | kFofNoCopySecurityAttribs | kFofNoConnectedElements;
    if (m_bConfirm == 0) flags |= kFofNoConfirmation;
    m_services.operation.CarryOut(std::move(items), flags);
}

// --- fields and controls ---------------------------------------------------------------------------------------------

bool CKinsortDlg::ReadControls() {
    m_strFolder = m_cbFolder.GetText();
    if (m_strFolder.size() > kMaxFolderLength) {
        ShowMessage(m_services.messages.GetMessageText(kMsgFolderTooLong, {FormatInteger(kMaxFolderLength)}));
        m_view.FocusControl(kIdFolder);
        return false;
    }
    m_nMode = m_view.IsChecked(kIdMove) ? 1 : 0;
    m_bConfirm = m_view.IsChecked(kIdConfirm) ? 1 : 0;
    return true;
}

void CKinsortDlg::PushFields() {
    m_cbFolder.SetText(m_strFolder);
    m_view.SetChecked(kIdCopy, m_nMode == 0);
    m_view.SetChecked(kIdMove, m_nMode != 0);
    m_view.SetControlText(kIdCount, m_strCount);
    m_view.SetChecked(kIdConfirm, m_bConfirm != 0);
}

void CKinsortDlg::SetCountLabel(std::u16string_view text) {
    m_strCount = text;
    m_view.SetControlText(kIdCount, m_strCount);
}

void CKinsortDlg::ShowMessage(std::u16string_view text) {
    m_services.ui.ShowMessage({.text = std::u16string(text),
                               .title = std::u16string(kProgramTitle),
                               .buttons = MessageButtons::kOk,
                               .icon = MessageIcon::kWarning,
                               .owner = m_view.Handle()});
}

void CKinsortDlg::ShowMessageWithRetry(uint16_t number) {
    ShowMessage(m_services.messages.GetMessageText(number) + m_services.messages.GetMessageText(kMsgTryAgain));
}

}  // namespace kinsort
