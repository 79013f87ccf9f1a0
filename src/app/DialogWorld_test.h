// A dialog without a screen: a view that writes down what it is told, and everything else that the dialog works with,
// in memory. Texts of messages are "m" and their number.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "app/KinsortDlg.h"
#include "controls/DirMenu.h"
#include "controls/FolderBox_test.h"
#include "framework/FolderWorld_test.h"
#include "platform/fake/FakeLocaleMap.h"
#include "platform/fake/ManualClock.h"
#include "platform/fake/RecordingOpener.h"
#include "platform/fake/RecordingWindowMessages.h"
#include "platform/fake/ScriptedProcesses.h"
#include "platform/fake/ScriptedUserInterface.h"
#include "text/Utf16Bytes_test.h"
#include "text/Utf8.h"

namespace kinsort {

using CallLog = std::vector<std::string>;

class RecordingDlgView final : public KinsortDlgView, private CmdListView, private DirMenuView {
  public:
    static constexpr WindowHandle kHandle = 77;

    explicit RecordingDlgView(CallLog& log) : calls(log) {}

    int DoModal(WindowHandle parent, KinsortDlgEvents& events) override {
        Record("modal " + std::to_string(parent));
        events.OnInitDialog();
        tasks.RunAll();
        if (whileModal) whileModal(events);
        return result;
    }
    void EndDialog(int newResult) override {
        result = newResult;
        Record("end " + std::to_string(newResult));
    }
    void CallSoon(std::function<void()> work) override { tasks.Post(std::move(work)); }
    void StartTimer(int id, int ms) override { Record("timer " + std::to_string(id) + " " + std::to_string(ms)); }
    void KillTimer(int id) override { Record("no timer " + std::to_string(id)); }

    WindowHandle Handle() const override { return kHandle; }
    void MoveTo(int x, int y) override { Record("move " + std::to_string(x) + "," + std::to_string(y)); }
    void SetTopmost(bool isTopmost) override { Record(isTopmost ? "topmost" : "not topmost"); }
    void MakeToolWindow() override { Record("tool window"); }
    std::u16string Title() const override { return title; }
    void SetTitle(std::u16string_view text) override { title = text; }

    std::u16string ControlText(int id) const override {
        if (id == kIdFolder) return box.text;
        const auto found = texts.find(id);
        return found == texts.end() ? std::u16string(FindControl(id)->text) : found->second;
    }
    void SetControlText(int id, std::u16string_view text) override {
        if (FindControl(id) != nullptr) texts[id] = text;
    }
    bool IsChecked(int id) const override { return checked.contains(id); }
    void SetChecked(int id, bool isChecked) override { isChecked ? (void)checked.insert(id) : (void)checked.erase(id); }
    void EnableControl(int id, bool isEnabled) override {
        isEnabled ? (void)enabled.insert(id) : (void)enabled.erase(id);
    }
    void FocusControl(int id) override { Record("focus " + std::to_string(id)); }
    void ClearFolderSelection() override { Record("caret"); }
    void AcceptDroppedFiles(int id) override { Record("drops on " + std::to_string(id)); }
    std::optional<size_t> ShowPopupMenu(int id, const std::vector<std::u16string>& items) override {
        Record("menu at " + std::to_string(id));
        menuTexts = items;
        return menuChoice;
    }
    void PrepareList() override { Record("list"); }
    void InsertListColumn(size_t index, std::u16string_view text, int width) override {
        Record("column " + std::to_string(index) + " " + ToUtf8(text) + " " + std::to_string(width));
    }
    void SetListCount(size_t count) override { Record("count " + std::to_string(count)); }
    void RedrawList() override { Record("draw"); }
    std::optional<size_t> SelectedListRow() const override { return selectedRow; }
    CmdListView& List() override { return *this; }
    HistoryComboView& FolderBox() override { return box; }
    DirMenuView& FavoritesMenu() override { return *this; }
    void AttachControls(CCmdListCtrl*, CHistryComboBoxEx* folderBox) override { box.control = folderBox; }

    CallLog& calls;
    std::function<void(KinsortDlgEvents&)> whileModal;
    int result = kDialogCancel;
    PostedTasks tasks;
    MemoryCombo box;
    std::u16string title{kDialogTemplate.title};
    std::map<int, std::u16string> texts;
    std::set<int> checked;
    std::set<int> enabled;
    std::vector<std::u16string> menuTexts;
    std::optional<size_t> menuChoice;
    std::u16string favorite;  // the file of the favourites' top menu that is chosen; empty: none
    std::optional<size_t> selectedRow;

  private:
    void Record(std::string call) { calls.push_back(std::move(call)); }

    void RedrawItems(size_t, size_t) override {}
    std::optional<size_t> FocusedItem() const override { return selectedRow; }
    void DeselectItem(size_t) override {}
    void SelectItem(size_t row) override {
        selectedRow = row;
        Record("select " + std::to_string(row));
    }
    void EnsureVisible(size_t row) override { Record("show " + std::to_string(row)); }
    void Post(std::function<void()> task) override { tasks.Post(std::move(task)); }

    uint16_t TrackPopup(CDirMenu& menu, CDirMenuObj& top) override {
        menu.OnInitMenuPopup(top);
        for (const DirMenuItem& item : top.Items()) {
            if (item.text == favorite) return item.commandId;
        }
        return 0;
    }
};

// The scripted user, with what concerns the order of things in the same log as the view.
class LoggedUserInterface final : public ScriptedUserInterface {
  public:
    explicit LoggedUserInterface(CallLog& log) : calls(log) {}

    MessageAnswer ShowMessage(const MessageRequest& request) override {
        calls.push_back("says " + ToUtf8(request.text));
        return ScriptedUserInterface::ShowMessage(request);
    }
    void BringToForeground(WindowHandle window) override { calls.push_back("front " + std::to_string(window)); }

    CallLog& calls;
};

class RecordingRunner final : public OperationRunner {
  public:
    explicit RecordingRunner(CallLog& log) : calls(log) {}

    void CarryOut(std::vector<ItemRequest> newItems, uint32_t newFlags) override {
        calls.push_back("carry out");
        items = std::move(newItems);
        flags = newFlags;
    }
    void OfferUndo() override { calls.push_back("offer undo"); }
    void OfferRecovery() override { calls.push_back("offer recovery"); }

    CallLog& calls;
    std::vector<ItemRequest> items;
    uint32_t flags = 0;
};

class NoIcons final : public Icons {
  public:
    int IndexOfPath(std::u16string_view) override { return -1; }
    int IndexOfName(std::u16string_view, uint32_t) override { return -1; }
};

// The program lies in Z:\opt\vel\command\Default; the user folder is Z:\user.
struct DialogWorld : FolderWorld {
    static constexpr WindowHandle kHost = 5;
    static constexpr std::u16string_view kMessageFile = u"Z:\\opt\\vel\\Lang\\Msg.ja-JP.txt";

    DialogWorld() : FolderWorld(u"Z:\\opt\\vel\\command\\Default\\Kinsort") {
        std::string texts;
        for (const char* number : {"62304", "62325", "62401", "62402", "63503", "64080", "64095", "64096"})
            texts += number + std::string("\tm") + number + "\r\n";
        files.SetContent(kMessageFile, Utf16Bytes(FromUtf8(texts)));
        files.AddFolder(u"Z:\\sorted\\report");
        files.AddFolder(u"Z:\\sorted\\music");
        settings.WriteRegString(kSettingsKey, kUserDirName, u"Z:\\user");
        settings.WriteRegDword(kSettingsKey, kUserDirModeName, kUserDirChosen);
    }

    void ShowHost() { windows.windows[kHost] = kHostWindowClass; }

    CallLog calls;
    LoggedUserInterface ui{calls};
    Messages messages{settings, folders, files, ui};
    RecordingWindowMessages windows;
    NoIcons icons;
    ManualClock clock;
    NameNormalizer normalizer{FakeLocaleMap()};
    FolderText folderText{*codec, "/home/me"};
    ScriptedProcesses processes;
    RecordingOpener opener;
    ProcessContext context{processes, opener, ui, files, environment, *codec, {}};
    HostHandOff handOff;
    RecordingRunner runner{calls};
    struct ScriptRun {
        std::u16string path;
        WindowHandle window;
        uint32_t openMode;
    };
    std::vector<ScriptRun> scripts;
    KinsortDlgServices services{ui,
                                windows,
                                files,
                                icons,
                                clock,
                                normalizer,
                                folderText,
                                settings,
                                messages,
                                folders,
                                context,
                                handOff,
                                runner,
                                [this](const ScriptCall& call) {
                                    scripts.push_back({call.scriptPath, call.hostWindow, call.forcedOpenMode});
                                }};
    RecordingDlgView view{calls};
};

}  // namespace kinsort
