#include "app/KinsortDlg.h"

#include <gmock/gmock.h>

#include "app/DialogWorld_test.h"
#include "framework/CopyData.h"
#include "framework/FileDropList.h"

namespace kinsort {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

using Paths = std::vector<std::u16string>;

class KinsortDlgTest : public testing::Test, protected DialogWorld {
  protected:
    // Rows with these names, each in Z:\from; without an initialisation, as if they had been dropped.
    void Drop(const Paths& names) {
        Paths paths;
        for (const std::u16string& name : names)
            paths.push_back(u"Z:\\from\\" + name);
        dialog.OnDropFiles(paths);
    }
    Paths PlanPaths() const {
        Paths paths;
        for (size_t i = 0; i < dialog.m_list.Plan().GetCount(); ++i)
            paths.push_back(dialog.m_list.Plan()[i].strPath);
        return paths;
    }
    // What was said since the last call, in boxes.
    std::vector<std::u16string> Said() {
        std::vector<std::u16string> texts;
        for (const MessageRequest& request : ui.messages)
            texts.push_back(request.text);
        ui.messages.clear();
        return texts;
    }

    CKinsortDlg dialog{view, services, kNoWindow};
};

TEST_F(KinsortDlgTest, ComesUpInThisOrder) {
    ShowHost();
    ui.windowRectangles = {{kHost, {100, 100, 900, 700}}, {RecordingDlgView::kHandle, {0, 0, 400, 300}}};
    ui.workArea = ScreenRectangle{0, 0, 1000, 800};
    handOff.SharedHandOff = 1;
    handOff.SelectedItems = {u"Z:\\from\\report.txt", u"Z:\\from\\zz"};
    settings.WriteCommandDword(kConfirmName, 0);
    dialog.m_strFolder = u"Z:\\sorted\\";
    dialog.m_nMode = 1;
    EXPECT_TRUE(dialog.OnInitDialog());
    EXPECT_THAT(calls, ElementsAre("move 300,250", "list", "column 0 File 200", "column 1 Target sub folder 180",
                                   "drops on 1410", "caret", "count 2", "draw", "count 2", "front 77", "no timer 1000",
                                   "topmost", "not topmost", "front 77"));
    view.tasks.RunAll();
    EXPECT_EQ(calls.back(), "offer recovery");
    EXPECT_EQ(view.box.text, u"/sorted/");
    EXPECT_EQ(view.texts[kIdCount], u"(2)");
    EXPECT_THAT(view.checked, ElementsAre(kIdMove));
    EXPECT_THAT(view.enabled, ElementsAre(kIdOk, kIdSearchAgain, kIdDeleteNoCandidate, kIdDeleteSelected));
    EXPECT_THAT(dialog.m_list.Plan()[0].arrCandidates, ElementsAre(u"report"));
    EXPECT_THAT(dialog.m_list.Plan()[1].arrCandidates, IsEmpty());
}

TEST_F(KinsortDlgTest, WithoutAHandOffItIsEmptyAndSpeaksTheLanguageOfTheSettings) {
    settings.WriteRegString(kSettingsKey, kLanguageName, u".en-US");
    files.SetContent(u"Z:\\opt\\vel\\command\\Default\\.en-US\\Kinsort\\102.txt",
                     Utf16Bytes(u"Sort\r\n1\tButton\tStart\\n(&O)\r\n1410\tComboBoxEx32\tX\r\n4711\tButton\tY\r\n"));
    dialog.m_strFolder = u"Z:\\sorted";
    dialog.OnInitDialog();
    EXPECT_EQ(view.title, u"Sort");
    EXPECT_EQ(view.texts[kIdOk], u"Start\n(&O)");
    EXPECT_EQ(view.box.text, u"/sorted");
    EXPECT_THAT(view.checked, ElementsAre(kIdCopy, kIdConfirm));
    EXPECT_THAT(view.enabled, IsEmpty());
    EXPECT_EQ(view.texts[kIdCount], u"(0)");
    EXPECT_EQ(dialog.m_nLoadState, 0);
    EXPECT_THAT(Said(), IsEmpty());
}

TEST_F(KinsortDlgTest, StandsOverTheMiddleOfTheHostInsideOfTheWorkArea) {
    const struct {
        const char* what;
        ScreenRectangle host, own, work;
        const char* move;
    } cases[] = {
        {"truncated towards zero", {0, 0, 101, 100}, {0, 0, 200, 203}, {-500, -500, 900, 900}, "move -49,-51"},
        {"right and bottom", {800, 700, 1200, 900}, {0, 0, 600, 400}, {0, 0, 1000, 800}, "move 400,400"},
        {"left and top", {-300, -200, 100, 0}, {0, 0, 600, 400}, {0, 30, 1000, 800}, "move 0,30"},
        {"larger than the work area", {0, 0, 800, 600}, {0, 0, 1200, 900}, {50, 20, 850, 620}, "move 50,20"},
    };
    ShowHost();
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        ui.windowRectangles = {{kHost, one.host}, {RecordingDlgView::kHandle, one.own}};
        ui.workArea = one.work;
        calls.clear();
        dialog.OnInitDialog();
        EXPECT_EQ(calls.front(), one.move);
    }
    handOff.ShowMode = 3;
    calls.clear();
    dialog.OnInitDialog();
    handOff.ShowMode = 0;
    ui.workArea.reset();
    dialog.OnInitDialog();
    windows.windows.clear();
    dialog.OnInitDialog();
    EXPECT_THAT(calls, Not(Contains(testing::StartsWith("move"))));
}

TEST_F(KinsortDlgTest, ShowsItselfAsTheHostWishes) {
    const CallLog toFront = {"no timer 1000", "topmost", "not topmost", "front 77"};
    const struct {
        int32_t mode;
        CallLog expected;
    } cases[] = {
        {0, toFront},
        {1, {"topmost", "front 77"}},
        {2, {"tool window", "topmost", "front 77"}},
        {3, {}},
        {4, {"tool window", "no timer 1000", "topmost", "not topmost", "front 77"}},
        {5, toFront},
        {-1, toFront},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.mode);
        handOff.ShowMode = one.mode;
        calls.clear();
        dialog.OnInitDialog();
        const auto caret = std::find(calls.begin(), calls.end(), "caret");
        EXPECT_THAT(CallLog(caret + 1, calls.end()), ElementsAreArray(one.expected));
    }
}

TEST_F(KinsortDlgTest, WaitsBehindTheHostWhileShiftOrControlIsHeld) {
    const CallLog waits = {"no timer 1000", "timer 1000 50"};
    for (const ModifierKey key : {ModifierKey::kShift, ModifierKey::kControl}) {
        ui.keysDown = {key};
        calls.clear();
        dialog.OnTimer(CKinsortDlg::kForegroundTimer);
        EXPECT_EQ(calls, waits);
    }
    ui.keysDown = {ModifierKey::kAlt};
    calls.clear();
    dialog.OnTimer(CKinsortDlg::kForegroundTimer);
    EXPECT_THAT(calls, ElementsAre("no timer 1000", "topmost", "not topmost", "front 77"));
}

TEST_F(KinsortDlgTest, TakesDropsByModeAndState) {
    const Paths files2 = {u"\\\\?\\Z:\\from\\report.txt", u"Z:\\from\\b"};
    const struct {
        const char* what;
        int isTwoStep, state;
        Paths tabs, dropped;
        Paths rows;
        int stateAfter, enabled;
        const char16_t* folder;
    } cases[] = {
        {"one step", 0, 0, {}, files2, {u"Z:\\from\\report.txt", u"Z:\\from\\b"}, 1, 4, u"Z:\\sorted"},
        {"one step, again", 0, 1, {u"Z:\\tab"}, {u"Z:\\c"}, {u"Z:\\c"}, 1, 4, u"Z:\\sorted"},
        {"first of two", 1, 0, {u"Z:\\tab"}, files2, {u"Z:\\from\\report.txt", u"Z:\\from\\b"}, 1, 0, u"Z:\\sorted"},
        {"second of two", 1, 1, {}, {u"", u"Z:\\sorted\\music", u"Z:\\x"}, {u"Z:\\old"}, 2, 4, u"Z:\\sorted\\music"},
        {"an earlier tab comes first", 1, 1, {u"Z:\\tab"}, {u"Z:\\x"}, {u"Z:\\old"}, 2, 4, u"Z:\\tab"},
        {"nothing but empty paths", 1, 1, {}, {u""}, {u"Z:\\old"}, 2, 4, u"Z:\\sorted"},
        {"third of two", 1, 2, {}, {u"Z:\\x"}, {u"Z:\\old"}, 2, 0, u"Z:\\sorted"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        dialog.m_list.Plan().RemoveAll();
        dialog.m_list.Plan().AddItem(u"Z:\\old");
        dialog.m_bTwoStep = one.isTwoStep;
        dialog.m_nLoadState = one.state;
        handOff.OtherTabFolders = one.tabs;
        view.box.Type(u"/sorted");
        dialog.m_strFolder = u"Z:\\sorted";
        view.enabled.clear();
        dialog.OnDropFiles(one.dropped);
        EXPECT_EQ(PlanPaths(), one.rows);
        EXPECT_EQ(dialog.m_nLoadState, one.stateAfter);
        EXPECT_EQ(dialog.m_strFolder, one.folder);
        EXPECT_EQ(static_cast<int>(view.enabled.size()), one.enabled);
    }
    dialog.m_bTwoStep = 0;
    dialog.OnDrop(BuildFileDropList({u"Z:\\from\\sent"}));
    EXPECT_THAT(PlanPaths(), ElementsAre(u"Z:\\from\\sent"));
    dialog.OnDrop({});
    EXPECT_THAT(PlanPaths(), SizeIs(1));
}

TEST_F(KinsortDlgTest, TakesItemsOnceAndFoldersAlways) {
    dialog.m_bTwoStep = 1;
    dialog.m_strFolder = u"Z:\\before";
    const std::u16string block = u"2\t1\tZ:\\now\toption\tZ:\\from\\report.txt\tZ:\\b\tZ:\\sorted\t";
    EXPECT_EQ(dialog.OnData(kNoWindow, 255, CopyDataBytes(block)), 0);
    EXPECT_THAT(PlanPaths(), ElementsAre(u"Z:\\from\\report.txt", u"Z:\\b"));
    EXPECT_EQ(handOff.CurrentDir, u"Z:\\now");
    EXPECT_EQ(dialog.m_strFolder, u"Z:\\sorted");
    EXPECT_EQ(view.texts[kIdCount], u"(2)");
    EXPECT_EQ(calls.back(), "front 77");
    EXPECT_THAT(view.enabled, SizeIs(4));
    EXPECT_THAT(dialog.m_list.Plan()[0].arrCandidates, ElementsAre(u"report"));
    dialog.OnData(kNoWindow, 255, CopyDataBytes(u"1\t0\t\t\tZ:\\late\t"));
    EXPECT_THAT(PlanPaths(), SizeIs(2)) << "there are rows already";

    for (const uint64_t code : {100, 200, 300}) {
        calls.clear();
        const std::u16string folder = u"Z:\\jump" + FromUtf8(std::to_string(code));
        EXPECT_EQ(dialog.OnData(kNoWindow, code, CopyDataBytes(folder)), 0);
        EXPECT_EQ(dialog.m_strFolder, folder);
        EXPECT_EQ(view.box.text, u"/jump" + FromUtf8(std::to_string(code)));
        EXPECT_THAT(calls, ElementsAre("caret")) << "no search";
    }
    std::vector<std::byte> cut = CopyDataBytes(u"Z:\\x");
    cut.pop_back();
    dialog.OnData(kNoWindow, 100, cut);  // neither an end nor whole units
    EXPECT_EQ(dialog.m_strFolder, u"Z:\\x");
    for (const uint64_t code : {0, 1, 99, 101, 256}) {
        EXPECT_EQ(dialog.OnData(kNoWindow, code, CopyDataBytes(u"Z:\\y")), 0);
        EXPECT_EQ(dialog.m_strFolder, u"Z:\\x");
    }
    EXPECT_EQ(dialog.OnNumbers(0x8030, 1, 2), 1);
    EXPECT_EQ(dialog.OnNumbers(0x8031, 1, 2), 0);
}

TEST_F(KinsortDlgTest, ChecksInThisOrderBeforeItStarts) {
    const std::u16string tooLong = u"/sorted/" + std::u16string(250, u'x');
    const std::u16string longest(247, u'y');
    const struct {
        const char* what;
        std::u16string typed;
        Paths rows;
        std::vector<std::u16string> said;
        std::u16string targetDir;  // empty: refused
    } cases[] = {
        {"no rows", u"", {}, {}, u""},
        {"too long, then nothing else", tooLong, {u"zz"}, {u"m64095"}, u""},
        {"a row without a candidate before the folder", u"", {u"report1", u"zz"}, {u"No target!"}, u""},
        {"empty", u"", {u"report"}, {u"m62304"}, u""},
        {"blank", u"  ", {u"report"}, {u"m62304"}, u""},
        {"relative", u"Sorted", {u"report"}, {u"m62304"}, u""},
        {"one letter", u"D", {u"report"}, {u"m62304"}, u""},
        {"only two backslashes", u"\\\\", {u"report"}, {u"m62304"}, u""},
        {"no letter before the colon", u"1:\\x", {u"report"}, {u"m62304"}, u""},
        {"another machine's file", u"file://nas/x", {u"report"}, {u"m62304"}, u""},
        {"native, with blanks around", u" /sorted  ", {u"report"}, {}, u"Z:\\sorted\\"},
        {"home", u"~/x", {u"report"}, {}, u"Z:\\home\\me\\x\\"},
        {"a drive", u"d:", {u"report"}, {}, u"d:\\"},
        {"a separator at the end", u"D:\\a\\", {u"report"}, {}, u"D:\\a\\"},
        {"a share", u"\\\\server\\share", {u"report"}, {}, u"\\\\server\\share\\"},
        {"the longest", u"/" + longest, {u"report"}, {}, u"Z:\\" + longest + u"\\"},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        view.box.Type(u"/sorted");
        Drop(one.rows);
        Said();
        calls.clear();
        runner.items.clear();
        view.box.Type(one.typed);
        dialog.OnCommand(kIdOk);
        EXPECT_EQ(Said(), one.said);
        if (one.targetDir.empty()) {
            EXPECT_THAT(calls, Not(Contains("end 1")));
            EXPECT_THAT(runner.items, IsEmpty());
            continue;
        }
        EXPECT_THAT(CallLog(calls.end() - 2, calls.end()), ElementsAre("end 1", "carry out"));
        EXPECT_EQ(dialog.m_strTargetDir, one.targetDir);
        ASSERT_THAT(runner.items, SizeIs(1));
        EXPECT_EQ(runner.items[0].destination, one.targetDir + u"report");
    }

    view.box.Type(u"/sorted");
    Drop({u"report", u"zz", u"music", u"qq"});
    calls.clear();
    dialog.OnCommand(kIdOk);
    EXPECT_THAT(calls, ElementsAre("select 1", "show 1", "says No target!", "focus 1200"));
    EXPECT_EQ(ui.messages.back().owner, RecordingDlgView::kHandle);
}

TEST_F(KinsortDlgTest, HandsOverWhatWasChosen) {
    const uint32_t asks = 0x2840;
    const struct {
        bool isMove, isConfirm, isShift;
        uint32_t flags;
        std::optional<uint32_t> stored;
    } cases[] = {
        {false, false, false, asks | 0x10, 0},
        {true, true, false, asks, 1},
        {true, false, true, asks | 0x10, 7},  // Shift: not stored
    };
    view.box.Type(u"/sorted");
    Drop({u"report.txt", u"music.mp3"});
    for (const auto& one : cases) {
        settings.WriteCommandDword(kConfirmName, 7);
        view.SetChecked(kIdMove, one.isMove);
        view.SetChecked(kIdConfirm, one.isConfirm);
        ui.keysDown = one.isShift ? std::set<ModifierKey>{ModifierKey::kShift} : std::set<ModifierKey>{};
        dialog.OnCommand(kIdOk);
        EXPECT_EQ(runner.flags, one.flags);
        EXPECT_EQ(settings.ReadCommandDword(kConfirmName), one.stored);
        ASSERT_THAT(runner.items, SizeIs(2));
        EXPECT_EQ(runner.items[1].source, u"Z:\\from\\music.mp3");
        EXPECT_EQ(runner.items[1].destination, u"Z:\\sorted\\music");
        EXPECT_EQ(runner.items[1].isMove, one.isMove);
    }
    registry.failWrites = Status::Failure(StatusCode::kReadOnly);
    runner.items.clear();
    ui.keysDown.clear();
    dialog.OnCommand(kIdOk);
    EXPECT_THAT(runner.items, SizeIs(2)) << "a setting that cannot be stored holds nothing up";
}

TEST_F(KinsortDlgTest, FindsAFolderByBrowsingAndAmongTheOtherTabs) {
    view.box.Type(u"/sorted");
    ui.folders = {std::nullopt, u"Z:\\home\\me", std::u16string(32'768, u'x')};
    dialog.OnCommand(kIdBrowse);
    EXPECT_EQ(dialog.m_strFolder, u"Z:\\sorted");
    dialog.OnCommand(kIdBrowse);
    EXPECT_EQ(view.box.text, u"/home/me");
    dialog.OnCommand(kIdBrowse);
    EXPECT_EQ(dialog.m_strFolder, u"Z:\\home\\me");
    EXPECT_EQ(ui.folderRequests[1].initialFolder, u"Z:\\sorted");
    EXPECT_EQ(ui.folderRequests[1].title, u"m63503");

    dialog.OnCommand(kIdOtherTabs);
    EXPECT_THAT(Said(), ElementsAre(u"m62401m62325"));
    handOff.OtherTabFolders = {u"Z:\\a&b", u"D:\\c"};
    dialog.OnCommand(kIdOtherTabs);
    EXPECT_THAT(view.menuTexts, ElementsAre(u"/a&b", u"D:\\c"));
    EXPECT_EQ(dialog.m_strFolder, u"Z:\\home\\me") << "dismissed";
    view.menuChoice = 1;
    dialog.OnCommand(kIdOtherTabs);
    EXPECT_EQ(view.box.text, u"D:\\c");
    EXPECT_THAT(calls, Not(Contains("draw"))) << "no search";
}

TEST_F(KinsortDlgTest, RunsFavorites) {
    dialog.OnCommand(kIdFavorites);
    EXPECT_THAT(Said(), ElementsAre(u"m62402m62325"));
    files.AddFile(u"Z:\\user\\Bar\\Favorite\\Photos.txt");
    dialog.OnCommand(kIdFavorites);
    EXPECT_THAT(scripts, IsEmpty()) << "dismissed";
    view.favorite = u"Photos.txt";
    dialog.OnCommand(kIdFavorites);
    ASSERT_THAT(scripts, SizeIs(1));
    EXPECT_EQ(scripts[0].path, u"Z:\\user\\Bar\\Favorite\\Photos.txt");
    EXPECT_EQ(scripts[0].window, RecordingDlgView::kHandle);
    EXPECT_EQ(scripts[0].openMode, 2u);
}

TEST_F(KinsortDlgTest, OpensTheHelpPageAndSaysWhenItIsMissing) {
    const Status missing = Status::Failure(StatusCode::kNotFound, 2, u"not there");
    opener.results = {Status(), missing};
    EXPECT_TRUE(dialog.OnHelpInfo());
    EXPECT_EQ(opener.opened[0].file, u"Z:\\opt\\vel\\docs\\vel\\man5\\6.Command\\2.DefaultCommand\\Kinsort.html");
    EXPECT_THAT(Said(), IsEmpty());
    EXPECT_TRUE(dialog.OnHelpInfo());
    EXPECT_THAT(Said(), ElementsAre(u"not there"));
}

TEST_F(KinsortDlgTest, KeepsTheFolderForNextTimeWhateverItEndsWith) {
    for (const int button : {kIdCancel, kIdOk}) {
        view.whileModal = [&](KinsortDlgEvents& events) {
            view.box.Type(u"/sorted");
            Drop({u"report"});
            view.box.Type(button == kIdOk ? u"/sorted" : u"/elsewhere");
            events.OnCommand(button);
        };
        EXPECT_EQ(dialog.DoModal(), button);
        EXPECT_EQ(settings.ReadCommandString(u"Kinsort000"), button == kIdOk ? u"Z:\\sorted" : u"Z:\\elsewhere");
    }
    EXPECT_THAT(runner.items, SizeIs(1));
    EXPECT_EQ(settings.ReadCommandString(u"Kinsort001"), u"Z:\\elsewhere");
}

TEST_F(KinsortDlgTest, EveryButtonOfTheTemplateDoesSomething) {
    for (const DialogControl& control : kDialogControls) {
        const bool isPush = control.kind == ControlKind::kPushButton || control.kind == ControlKind::kDefaultPushButton;
        if (!isPush) continue;
        SCOPED_TRACE(control.id);
        view.box.Type(u"/sorted");
        Drop({u"report"});
        view.selectedRow = 0;
        calls.clear();
        const size_t asked = ui.folderRequests.size();
        dialog.OnCommand(control.id);
        EXPECT_TRUE(!calls.empty() || ui.folderRequests.size() > asked);
    }
}

}  // namespace
}  // namespace kinsort
