#include "controls/ComplementComboBox.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/FolderBox_test.h"
#include "platform/fake/MemoryFileSystem.h"
#include "platform/linux/LinuxPathCodec.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::chrono::seconds kLong{60};

class Box final : public CComplementComboBox {
  public:
    using CComplementComboBox::CComplementComboBox;
    using CComplementComboBox::m_listItems;
    int asked = 0;

  protected:
    void AskToClearHistory() override { ++asked; }
};

constexpr BoxKeyPress Plain(BoxKey key) {
    return {key, false, false, false};
}
constexpr BoxKeyPress Ctrl(BoxKey key) {
    return {key, false, true, false};
}
constexpr BoxKeyPress Shift(BoxKey key) {
    return {key, true, false, false};
}
constexpr BoxKeyPress Alt(BoxKey key) {
    return {key, false, false, true};
}

class ComplementComboBoxTest : public testing::Test {
  protected:
    using Texts = std::vector<std::u16string>;

    ComplementComboBoxTest() {
        for (const char16_t* folder :
             {u"D:\\Projects", u"D:\\MyProgs", u"D:\\other", u"Z:\\home\\me\\Pictures", u"Z:\\home\\me\\Pixels",
              u"Z:\\home\\me\\epic", u"Z:\\home\\you", u"Z:\\opt", u"Z:\\down\\inside", u"\\\\nas\\share\\deep"})
            files.AddFolder(folder);
        files.AddFile(u"D:\\Program.txt");
        view.control = &box;
        box.m_bFoldersOnly = true;
    }
    void TakeAnswers() {
        EXPECT_TRUE(box.WaitForListing(kLong));
        view.tasks.RunAll();
    }
    bool Press(const BoxKeyPress& press) {
        const bool used = box.OnKey(press);
        TakeAnswers();
        return used;
    }
    // The text, then the items of an open list.
    Texts Complete(std::u16string_view typed) {
        view.CloseList();
        view.ResetItems();
        view.Type(typed);
        EXPECT_TRUE(Press(Plain(BoxKey::kDown)));
        Texts result = {view.text};
        if (view.isOpen) result.insert(result.end(), view.items.begin(), view.items.end());
        return result;
    }
    // Has the one answer come only when `meanwhile` is over.
    void CompleteSlowly(const std::function<void()>& meanwhile) {
        EXPECT_TRUE(box.OnKey(Plain(BoxKey::kDown)));
        EXPECT_TRUE(view.isBusy);
        meanwhile();
        EXPECT_TRUE(box.WaitForListing(kLong));
        EXPECT_EQ(view.tasks.RunAll(), 1);
        EXPECT_FALSE(view.isBusy);
    }

    MemoryFileSystem files;
    std::unique_ptr<PathCodec> codec = MakeLinuxPathCodec("");
    FolderText texts{*codec, "/home/me"};
    MemoryCombo view;
    Box box{view, files, texts};
};

TEST_F(ComplementComboBoxTest, TypedTextsAreCompleted) {
    const struct {
        std::u16string typed;
        Texts result;  // the text, then the list that opens
    } cases[] = {
        {u"d", {u"d:\\"}},
        {u"D:", {u"D:\\"}},
        {u"\\", {u"\\\\"}},
        {u"z", {u"/"}},
        {u"~", {u"/home/me/"}},
        {u"", {u""}},
        {u"D:\\Pro", {u"D:\\Pro", u"D:\\MyProgs\\", u"D:\\Projects\\"}},
        {u"D:\\P", {u"D:\\Projects\\"}},
        {u"d:\\PROJ", {u"d:\\Projects\\"}},
        {u"D:\\none", {u"D:\\none"}},
        {u"Q:\\gone\\x", {u"Q:\\gone\\x"}},
        {u"/home/me/Pi", {u"/home/me/Pi", u"/home/me/epic/", u"/home/me/Pictures/", u"/home/me/Pixels/"}},
        {u"/home/me/e", {u"/home/me/epic/"}},
        {u"~/pix", {u"/home/me/Pixels/"}},
        {u"/", {u"/", u"/down/", u"/home/", u"/opt/"}},
        {u"/o", {u"/opt/"}},
        {u"Z:\\op", {u"/opt/"}},
        {u"\\\\nas\\share\\d", {u"\\\\nas\\share\\deep\\"}},
        {u"file:///home/me/pix", {u"/home/me/Pixels/"}},
        {u"op", {u"opt/"}},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(Complete(one.typed), one.result);
        EXPECT_TRUE(view.IsCaretAtEnd());
        EXPECT_FALSE(view.isBusy);
    }
    box.m_bFoldersOnly = false;
    EXPECT_EQ(Complete(u"D:\\pro"), (Texts{u"D:\\pro", u"D:\\MyProgs\\", u"D:\\Program.txt", u"D:\\Projects\\"}));

    for (int i = 0; i < 5200; ++i)
        files.AddFolder(u"Z:\\many\\" + std::u16string(1, static_cast<char16_t>(0x4E00 + i)));
    EXPECT_EQ(Complete(u"/many/").size(), 1 + CComplementComboBox::kMaxCandidates + 1) << "enough is enough";
}

TEST_F(ComplementComboBoxTest, RelativeTextsCountFromBaseAndDropFolder) {
    box.m_strBaseDir = u"Z:\\home\\me";
    EXPECT_THAT(Complete(u"pix"), ElementsAre(u"/home/me/Pixels/"));
    EXPECT_THAT(Complete(u"../yo"), ElementsAre(u"/home/you/"));
    EXPECT_THAT(Complete(u"D:\\o"), ElementsAre(u"D:\\other\\"));
    box.m_strBaseDir.clear();
    box.OnDropFiles(u"\\\\?\\Z:\\down");
    EXPECT_EQ(view.text, u"/down");
    EXPECT_THAT(Complete(u"ins"), ElementsAre(u"/down/inside/"));
    EXPECT_THAT(Complete(u"\\ins"), ElementsAre(u"/down/inside/"));
    EXPECT_THAT(Complete(u"/o"), ElementsAre(u"/opt/"));
}

TEST_F(ComplementComboBoxTest, LongTextsAreShownShortenedAndTakenWhole) {
    view.width = 14;
    EXPECT_THAT(Complete(u"/home/me/pi"),
                ElementsAre(u"/home/me/pi", u"/home/me/epic/", u"/ho\u2026/Pictures/", u"/home\u2026/Pixels/"));
    view.Pick(1);
    EXPECT_EQ(view.text, u"/home/me/Pictures/");
}

TEST_F(ComplementComboBoxTest, KeysOfAnOpenListStepChooseAndLeave) {
    Complete(u"/home/me/pi");
    ASSERT_TRUE(view.isOpen);
    const std::pair<BoxKeyPress, size_t> steps[] = {
        {Plain(BoxKey::kTab), 0},  {Plain(BoxKey::kDown), 1}, {Ctrl(BoxKey::kJ), 2},
        {Ctrl(BoxKey::kSpace), 0}, {Shift(BoxKey::kTab), 2},  {Plain(BoxKey::kUp), 1},
        {Shift(BoxKey::kTab), 0},  {Plain(BoxKey::kUp), 2},   {Plain(BoxKey::kTab), 0},
    };
    for (const auto& [press, selected] : steps) {
        EXPECT_TRUE(Press(press));
        EXPECT_EQ(view.selected, selected);
    }
    for (const BoxKeyPress& press : {Plain(BoxKey::kPageUp), Ctrl(BoxKey::kK), Ctrl(BoxKey::kL), Ctrl(BoxKey::kH)})
        EXPECT_FALSE(Press(press)) << "a key of the closed list only";
    EXPECT_TRUE(Press(Plain(BoxKey::kEnter)));
    EXPECT_FALSE(view.isOpen);
    EXPECT_EQ(view.text, u"/home/me/epic/");
    EXPECT_TRUE(view.IsCaretAtEnd());

    const auto left = [this](const std::function<void()>& how) {
        Complete(u"/home/me/pi");
        EXPECT_TRUE(view.isOpen);
        how();
        EXPECT_FALSE(view.isOpen);
        return view.text;
    };
    const auto byEscape = [this] {
        Press(Plain(BoxKey::kUp));
        EXPECT_EQ(view.selected, 2u) << "up from nothing is the last";
        EXPECT_TRUE(Press(Plain(BoxKey::kEscape)));
    };
    EXPECT_EQ(left(byEscape), u"/home/me/pi") << "Esc brings the text back";
    EXPECT_EQ(left([this] { EXPECT_TRUE(Press(Plain(BoxKey::kEnter))); }), u"/home/me/pi") << "nothing was selected";
    EXPECT_EQ(left([this] { view.Type(u"/home/me/pix"); }), u"/home/me/pix") << "it no longer fits";
}

TEST_F(ComplementComboBoxTest, KeysOfAClosedListEditTheText) {
    const struct {
        BoxKeyPress press;
        std::u16string before;
        TextSelection selection;
        std::u16string after;
    } cases[] = {
        {Plain(BoxKey::kPageUp), u"C:\\a\\b\\file.txt", {0, 0}, u"C:\\a\\b\\"},
        {Ctrl(BoxKey::kBackspace), u"C:\\a\\b\\", {0, 0}, u"C:\\a\\b"},
        {Ctrl(BoxKey::kK), u"C:\\a\\b", {0, 0}, u"C:\\a\\"},
        {Ctrl(BoxKey::kK), u"C:\\", {0, 0}, u"C:"},
        {Ctrl(BoxKey::kK), u"C:", {0, 0}, u""},
        {Ctrl(BoxKey::kK), u"", {0, 0}, u""},
        {Ctrl(BoxKey::kK), u"/home/me/x.txt", {0, 0}, u"/home/me/"},
        {Ctrl(BoxKey::kK), u"/home/", {0, 0}, u"/home"},
        {Ctrl(BoxKey::kK), u"/home", {0, 0}, u"/"},
        {Ctrl(BoxKey::kK), u"/", {0, 0}, u""},
        {Ctrl(BoxKey::kK), u"\\\\nas\\share", {0, 0}, u"\\\\nas\\"},
        {Plain(BoxKey::kPageDown), u"/home/me", {5, 5}, u"/home"},
        {Ctrl(BoxKey::kL), u"/home/me", {1, 5}, u"/home"},
        {Ctrl(BoxKey::kL), u"/home/me", {8, 8}, u"/home/me"},
        {Ctrl(BoxKey::kL), u"/home/me", {0, 0}, u""},
    };
    for (const auto& one : cases) {
        view.Type(one.before);
        view.selection = one.selection;
        EXPECT_TRUE(Press(one.press));
        EXPECT_EQ(view.text, one.after);
        EXPECT_TRUE(view.IsCaretAtEnd());
    }
}

TEST_F(ComplementComboBoxTest, WhatAKeyDoesDependsOnSwitchesAndModifiers) {
    view.Type(u"/op");
    EXPECT_FALSE(Press(Plain(BoxKey::kTab))) << "moves on to the next control";
    EXPECT_EQ(view.text, u"/op");
    box.m_bTabComplete = true;
    for (const BoxKeyPress& press :
         {Shift(BoxKey::kTab), Ctrl(BoxKey::kTab), Alt(BoxKey::kTab), Alt(BoxKey::kDown), Plain(BoxKey::kBackspace),
          Plain(BoxKey::kSpace), Plain(BoxKey::kH), Plain(BoxKey::kOther)}) {
        EXPECT_FALSE(Press(press));
        EXPECT_EQ(view.text, u"/op");
    }
    EXPECT_TRUE(Press(Plain(BoxKey::kTab)));
    EXPECT_EQ(view.text, u"/opt/");

    EXPECT_FALSE(Press(Plain(BoxKey::kEnter)));
    EXPECT_THAT(view.commands, IsEmpty());
    box.m_hNotifyWnd = 77;
    box.m_nNotifyId = 5;
    EXPECT_FALSE(Press(Plain(BoxKey::kEnter))) << "goes on to the default button";
    EXPECT_THAT(view.commands, ElementsAre(std::pair(WindowHandle{77}, 5)));

    EXPECT_TRUE(Press(Ctrl(BoxKey::kH)));
    EXPECT_EQ(box.asked, 1);

    view.Type(u"/ho");
    box.OnDoubleClick();
    TakeAnswers();
    EXPECT_EQ(view.text, u"/home/");
}

TEST_F(ComplementComboBoxTest, OpeningTheListShowsTheHistoryUnlessSomethingWasCompleted) {
    box.m_listItems = {u"Z:\\opt", u"D:\\other"};
    view.Type(u"x");
    view.OpenList();
    EXPECT_THAT(view.items, ElementsAre(u"/opt", u"D:\\other"));
    view.Pick(0);
    EXPECT_EQ(view.text, u"/opt");
    Complete(u"/home/me/pi");
    Press(Plain(BoxKey::kEscape));
    view.OpenList();
    EXPECT_EQ(view.items.size(), 3u);
    Press(Plain(BoxKey::kEscape));
    EXPECT_TRUE(Press(Plain(BoxKey::kUp)));
    EXPECT_TRUE(view.isOpen);
    EXPECT_THAT(view.items, ElementsAre(u"/opt", u"D:\\other")) << "Up brings the history";
}

TEST_F(ComplementComboBoxTest, TheTextStaysAsTypedWhereItSaysTheSame) {
    view.Type(u"/home//me");
    view.selection = {3, 3};
    box.SetText(u"Z:\\home\\me");
    EXPECT_EQ(view.text, u"/home//me");
    EXPECT_EQ(view.selection, (TextSelection{3, 3}));
    box.SetText(u"Z:\\home\\you");
    EXPECT_EQ(view.text, u"/home/you");
}

TEST_F(ComplementComboBoxTest, DroppedFilesStandForTheirFolder) {
    const auto drop = [this](std::u16string_view path) {
        box.OnDropFiles(path);
        return view.text;
    };
    EXPECT_EQ(drop(u"D:\\Program.txt"), u"D:\\");
    EXPECT_EQ(drop(u"D:\\Projects"), u"D:\\Projects");
    EXPECT_EQ(drop(u"Z:\\home\\gone"), u"/home/");
    box.m_bFoldersOnly = false;
    EXPECT_EQ(drop(u"D:\\Program.txt"), u"D:\\Program.txt");
}

TEST_F(ComplementComboBoxTest, WhoTypesOnWhileASlowListingRunsIsNotDisturbed) {
    view.Type(u"/home/me/pi");
    CompleteSlowly([this] {
        EXPECT_TRUE(box.OnKey(Plain(BoxKey::kDown))) << "the key repeats";
        view.Type(u"/home/yo");
        EXPECT_FALSE(view.isBusy);
    });
    EXPECT_FALSE(view.isOpen);
    EXPECT_THAT(view.items, IsEmpty());
    EXPECT_EQ(view.text, u"/home/yo");
    CompleteSlowly([this] { box.OnKillFocus(); });
    EXPECT_EQ(view.text, u"/home/yo") << "the keyboard was elsewhere";
    CompleteSlowly([this] { box.SetText(u"Z:\\opt"); });
    EXPECT_EQ(view.text, u"/opt") << "the program put another folder there";
}

}  // namespace
}  // namespace kinsort
