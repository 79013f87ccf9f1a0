#include "framework/DialogTexts.h"

#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "framework/FolderWorld_test.h"
#include "text/Utf16Bytes_test.h"

namespace kinsort {
namespace {

using testing::ElementsAre;

struct SampleDialog final : DialogTextTarget {
    std::u16string title = u"題名";
    std::vector<DialogControlTexts> controls = {
        {1, u"Button", u"処理開始\n(&O)", {}},
        {-1, u"Static", u"a\tb\r\nc", {}},
        {10, u"Static", u"", {}},
        {20, u"Edit", u"typed by the user", {}},
        {21, u"SysListView32", u"list", {}},
        {22, u"SysTabControl32", u"tabs", {}},
        {30, u"ComboBox", u"second", {u"first", u"a\\nb", u"third"}},
    };

    std::u16string Title() override { return title; }
    void SetTitle(std::u16string_view text) override { title = text; }
    std::vector<DialogControlTexts> Controls() override { return controls; }
    void SetControlText(int number, std::u16string_view text) override {
        if (DialogControlTexts* control = Find(number)) control->text = text;
    }
    void ClearComboBox(int number) override {
        if (DialogControlTexts* control = Find(number)) control->items.clear();
    }
    void AddComboBoxItem(int number, std::u16string_view item) override {
        if (DialogControlTexts* control = Find(number)) control->items.emplace_back(item);
    }
    DialogControlTexts* Find(int number) {
        for (DialogControlTexts& control : controls) {
            if (control.number == number) return &control;
        }
        return nullptr;
    }
};

constexpr std::u16string_view kFile = u"Z:\\V\\command\\Default\\.en-US\\Kinsort\\102.txt";
constexpr std::u16string_view kExported =
    u"\uFEFF題名\r\n"
    u"1\tButton\t処理開始\\n(&O)\r\n"
    u"-1\tStatic\ta\\tb\\r\\nc\r\n"
    u"30\tComboBoxStart\r\n"
    u"30\tComboBox\tfirst\r\n"
    u"30\tComboBox\ta\\nb\r\n"
    u"30\tComboBox\tthird\r\n";

class DialogTextsTest : public testing::Test, protected FolderWorld {
  protected:
    DialogTextsTest() : FolderWorld(u"Z:\\V\\command\\Default\\Kinsort.exe") {}

    int Apply(std::u16string_view text) {
        files.SetContent(kFile, Utf16Bytes(text));
        return ApplyDialogTranslation(context_, dialog_, 102, u".en-US");
    }
    // A new start of the program, with these settings.
    void Start(std::u16string_view suffix, uint32_t exports) {
        Settings fresh(registry, u"Kinsort");
        ASSERT_EQ(fresh.WriteRegString(kSettingsKey, kLanguageName, suffix), 1);
        ASSERT_EQ(fresh.WriteRegDword(kSettingsKey, kTextExportName, exports), 1);
        TranslateDialog({fresh, folders, files}, dialog_, 102);
    }

    DialogTextContext context_{settings, folders, files};
    SampleDialog dialog_;
};

TEST_F(DialogTextsTest, AreWrittenAndReadBack) {
    ExportDialogTexts(context_, dialog_, 102, u".en-US");
    EXPECT_EQ(files.ContentOf(kFile), Utf16Bytes(kExported));

    const SampleDialog before = dialog_;
    dialog_.title.clear();
    for (const int number : {1, -1, 30}) {
        dialog_.Find(number)->text = u"?";
        dialog_.Find(number)->items.assign(5, u"?");
    }
    EXPECT_EQ(ApplyDialogTranslation(context_, dialog_, 102, u".en-US"), 1);
    EXPECT_EQ(dialog_.title, before.title);
    EXPECT_EQ(dialog_.Find(1)->text, before.controls[0].text);
    EXPECT_EQ(dialog_.Find(-1)->text, before.controls[1].text);
    EXPECT_EQ(dialog_.Find(30)->items, before.controls[6].items);
}

TEST_F(DialogTextsTest, OfAFileAreAppliedLineByLine) {
    EXPECT_EQ(Apply(u"// comment\r\n"
                    u"  \uFEFFTitle\uFEFF  \r\n"
                    u"another line without a tab\r\n"
                    u"1\tButton\t Go\\n(&G) \r\n"
                    u"10x\tAnything\tten\n"
                    u"4711\tButton\tnobody\r\n"
                    u"4711\tComboBoxStart\r\n"
                    u"20\tEdit\tone\ttoo many\r\n"
                    u"30\tComboBoxStart\r\n"
                    u"30\tComboBox\t\r\n"
                    u"30\tComboBox\ta\\tb\r\n"
                    u"21\tSysListView32\r\n"
                    u" EOF \r\n"
                    u"22\tSysTabControl32\tbehind the end\r\n"),
              1);
    EXPECT_EQ(dialog_.title, u"Title");
    EXPECT_EQ(dialog_.Find(1)->text, u" Go\n(&G)");
    EXPECT_EQ(dialog_.Find(10)->text, u"ten");
    EXPECT_EQ(dialog_.Find(20)->text, u"typed by the user");
    EXPECT_EQ(dialog_.Find(21)->text, u"list");
    EXPECT_EQ(dialog_.Find(22)->text, u"tabs");
    EXPECT_THAT(dialog_.Find(30)->items, ElementsAre(u"a\\tb"));
}

TEST_F(DialogTextsTest, FollowTheLanguageAndTheExportSwitch) {
    Start(u".ja-JP", 0);
    EXPECT_EQ(files.GetAttributes(u"Z:\\V"), kInvalidAttributes) << "nothing was to be done";
    Start(u".ja-JP", 1);
    EXPECT_EQ(files.ContentOf(u"Z:\\V\\command\\Default\\.ja-JP\\Kinsort\\102.txt"), Utf16Bytes(kExported));
    Start(u".en-US", 0);
    EXPECT_EQ(files.ContentOf(kFile), Utf16Bytes(kExported)) << "without a translation one is begun";

    files.SetContent(kFile, Utf16Bytes(u"Title\r\n"));
    Start(u".en-US", 1);
    EXPECT_EQ(dialog_.title, u"Title");
    EXPECT_EQ(files.ContentOf(kFile), Utf16Bytes(u"Title\r\n")) << "a translation is never overwritten";

    files.SetContent(kFile, "");
    Start(u".en-US", 1);
    EXPECT_EQ(dialog_.title, u"Title");
    EXPECT_EQ(files.ContentOf(kFile), "") << "an empty file is a translation";
}

TEST_F(DialogTextsTest, StayWhenTheFileCannotBeWritten) {
    files.AddFolder(u"Z:\\V\\command\\Default");
    files.DenyFolder(u"Z:\\V\\command\\Default");
    ExportDialogTexts(context_, dialog_, 102, u".en-US");
    EXPECT_EQ(files.GetAttributes(kFile), kInvalidAttributes);

    const std::u16string_view full = u"Z:\\V\\command\\Default\\.ja-JP\\Kinsort\\102.txt";
    files.SetContent(full, "old");
    files.FillUp(full);
    ExportDialogTexts(context_, dialog_, 102, u".ja-JP");
    EXPECT_EQ(files.ContentOf(full), "");
}

}  // namespace
}  // namespace kinsort
