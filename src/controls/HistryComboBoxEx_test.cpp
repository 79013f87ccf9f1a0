#include "controls/HistryComboBoxEx.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "controls/FolderBox_test.h"
#include "framework/FolderWorld_test.h"
#include "platform/fake/ScriptedUserInterface.h"
#include "text/Utf16Bytes_test.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class HistryComboBoxExTest : public testing::Test, protected FolderWorld {
  protected:
    HistryComboBoxExTest() {
        view.control = &box;
        box.SetHistory(u"Kinsort", 20);
        box.m_bSaveOnDestroy = true;
    }
    void Store(std::initializer_list<std::u16string_view> entries) {
        int index = 0;
        for (const std::u16string_view text : entries)
            settings.WriteCommandString(u"KINSORT00" + std::u16string(1, static_cast<char16_t>(u'0' + index++)), text);
    }
    std::vector<std::u16string> Stored() {
        std::vector<std::u16string> stored;
        for (const char16_t* name : {u"Kinsort000", u"Kinsort001", u"Kinsort002", u"Kinsort003", u"Kinsort019"})
            stored.push_back(settings.ReadCommandString(name, u"-"));
        return stored;
    }
    std::vector<std::u16string> DropDown() {
        view.ResetItems();
        view.OpenList();
        view.isOpen = false;
        return view.items;
    }

    ScriptedUserInterface ui;
    Messages messages{settings, folders, files, ui};
    FolderText texts{*codec, "/home/me"};
    MemoryCombo view;
    CHistryComboBoxEx box{view, files, texts, settings, messages, ui};
};

TEST_F(HistryComboBoxExTest, TheHistoryIsReadWhenTheWindowHasComeUp) {
    Store({u"Z:\\a", u"", u"D:\\c"});
    box.PostLoadHistory();
    EXPECT_THAT(DropDown(), IsEmpty());
    view.tasks.RunAll();
    EXPECT_THAT(DropDown(), ElementsAre(u"/a", u"D:\\c")) << "empty places are not shown";
    box.OnDestroy();
    EXPECT_THAT(Stored(), ElementsAre(u"Z:\\a", u"", u"D:\\c", u"", u"")) << "but keep their number";
    registry.failReads = Status::Failure(StatusCode::kIo);
    box.OnLoadHistory();
    EXPECT_THAT(DropDown(), IsEmpty());
}

TEST_F(HistryComboBoxExTest, TheTextBecomesTheNewestEntryWhenTheWindowGoes) {
    const struct {
        std::u16string text;
        std::vector<std::u16string> stored;
    } cases[] = {
        {u"C", {u"C", u"A", u"B", u"", u""}},
        {u"A", {u"A", u"B", u"C", u"", u""}},
        {u"D", {u"D", u"A", u"B", u"C", u""}},
        {u"a", {u"a", u"A", u"B", u"C", u""}},
        {u"/x y/", {u"Z:\\x y\\", u"A", u"B", u"C", u""}},
        {u"", {u"A", u"B", u"C", u"", u""}},
    };
    for (const auto& one : cases) {
        Store({u"A", u"B", u"C", u""});
        box.OnLoadHistory();
        view.Type(one.text);
        box.OnDestroy();
        EXPECT_EQ(Stored(), one.stored);
    }
}

TEST_F(HistryComboBoxExTest, TheOldestOfTooManyIsDropped) {
    for (char16_t name = u'a'; name <= u'u'; ++name) {
        view.Type(std::u16string(1, name));
        box.OnDestroy();
    }
    EXPECT_THAT(Stored(), ElementsAre(u"u", u"t", u"s", u"r", u"b"));
    box.SetHistory(u"Other", 0);
    box.OnDestroy();
    EXPECT_THAT(Stored(), ElementsAre(u"u", u"t", u"s", u"r", u"b"));
}

TEST_F(HistryComboBoxExTest, NothingIsSavedUnlessWantedAndNobodyHearsOfARegistryThatFails) {
    view.Type(u"A");
    box.m_bSaveOnDestroy = false;
    box.OnDestroy();
    EXPECT_EQ(registry.writes, 0);
    box.m_bSaveOnDestroy = true;
    registry.failWrites = Status::Failure(StatusCode::kReadOnly);
    box.OnDestroy();
    EXPECT_THAT(ui.messages, IsEmpty());
}

TEST_F(HistryComboBoxExTest, ClearingAsksFirst) {
    files.SetContent(u"C:\\V\\Lang\\Msg.ja-JP.txt", Utf16Bytes(u"62400\tc?\r\n63007\t!\r\n"));
    Store({u"A", u"B", u"C", u"", u""});
    box.OnLoadHistory();
    view.Type(u"/x");
    const BoxKeyPress ctrlH = {BoxKey::kH, false, true, false};
    for (const auto& [answer, stored] : {std::pair(MessageAnswer::kNo, u"A"), std::pair(MessageAnswer::kYes, u"")}) {
        ui.messageAnswers = {answer};
        EXPECT_THAT(DropDown(), SizeIs(3));
        EXPECT_TRUE(box.OnKey(ctrlH));
        EXPECT_EQ(settings.ReadCommandString(u"Kinsort000", u"-"), u"A") << "not before the question is gone";
        view.tasks.RunAll();
        EXPECT_EQ(settings.ReadCommandString(u"Kinsort000", u"-"), stored);
    }
    EXPECT_THAT(view.items, IsEmpty());
    EXPECT_THAT(DropDown(), IsEmpty());
    EXPECT_EQ(view.text, u"/x");
    ASSERT_THAT(ui.messages, SizeIs(2));
    EXPECT_EQ(ui.messages[0].text, u"c?!");
    EXPECT_EQ(ui.messages[0].buttons, MessageButtons::kYesNo);
}

}  // namespace
}  // namespace kinsort
