#include "controls/DirMenu.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/fake/MemoryFileSystem.h"
#include "text/Utf8.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> Texts(const CDirMenuObj& menu) {
    std::vector<std::string> texts;
    for (const DirMenuItem& item : menu.Items())
        texts.push_back(ToUtf8(item.text) + (item.subMenu != nullptr ? ">" : " " + std::to_string(item.commandId)));
    return texts;
}

// What a user does with the menu; the command id that they choose.
using Walk = std::function<uint16_t(CDirMenu& menu, CDirMenuObj& top)>;

class WalkingView final : public DirMenuView {
  public:
    explicit WalkingView(Walk walk) : walk_(std::move(walk)) {}
    uint16_t TrackPopup(CDirMenu& menu, CDirMenuObj& top) override {
        menu.OnInitMenuPopup(top);
        return walk_(menu, top);
    }

  private:
    Walk walk_;
};

CDirMenuObj& Open(CDirMenu& menu, const CDirMenuObj& above, size_t index) {
    CDirMenuObj& sub = *above.Items()[index].subMenu;
    menu.OnInitMenuPopup(sub);
    return sub;
}

class DirMenuTest : public testing::Test {
  protected:
    DirMenuTest() {
        for (const char16_t* file : {u"Z:\\fav\\b.txt", u"Z:\\fav\\A.txt", u"Z:\\fav\\.hidden",
                                     u"Z:\\fav\\Zed\\deep\\x.txt", u"Z:\\fav\\.git\\config", u"Z:\\top.txt"})
            files.AddFile(file);
        files.AddFolder(u"Z:\\fav\\empty");
    }
    std::u16string Choose(const char16_t* root, Walk walk) {
        WalkingView view(std::move(walk));
        return CDirMenu(files, root).ShowPopup(view);
    }
    // The same in a menu that holds just these.
    std::u16string Choose(const char16_t* root, const std::vector<std::string>& texts, uint16_t id) {
        return Choose(root, [&](CDirMenu&, CDirMenuObj& top) {
            EXPECT_EQ(Texts(top), texts);
            return id;
        });
    }
    MemoryFileSystem files;
};

TEST_F(DirMenuTest, FoldersComeFirstThenFilesWithoutWhatIsHidden) {
    const std::vector<std::string> all = {"empty>", "Zed>", "A.txt 1", "b.txt 2"};
    for (const char16_t* root : {u"Z:\\fav", u"Z:\\fav\\", u"Z:\\fav/"})
        EXPECT_EQ(Choose(root, all, 2), u"Z:\\fav\\b.txt");
    EXPECT_EQ(Choose(u"Z:\\", {"fav>", "top.txt 1"}, 1), u"Z:\\top.txt");
    for (const uint16_t noItem : {uint16_t{0}, uint16_t{3}, uint16_t{65535}})
        EXPECT_EQ(Choose(u"Z:\\fav", all, noItem), u"");
    EXPECT_EQ(Choose(u"Z:\\gone", {}, 0), u"");
    files.DenyFolder(u"Z:\\fav");
    EXPECT_EQ(Choose(u"Z:\\fav", {}, 0), u"");
}

TEST_F(DirMenuTest, SubMenusAreReadWhenTheyOpenAndEmptyOnesAgain) {
    const std::u16string chosen = Choose(u"Z:\\fav", [this](CDirMenu& menu, CDirMenuObj& top) {
        const CDirMenuObj& zed = *top.Items()[1].subMenu;
        EXPECT_THAT(Texts(zed), IsEmpty());
        files.AddFile(u"Z:\\fav\\Zed\\late.txt");
        EXPECT_THAT(Texts(Open(menu, top, 1)), ElementsAre("deep>", "late.txt 3"));
        files.AddFile(u"Z:\\fav\\Zed\\later.txt");
        EXPECT_THAT(Texts(Open(menu, top, 1)), ElementsAre("deep>", "late.txt 3")) << "read once is enough";
        EXPECT_THAT(Texts(Open(menu, top, 0)), IsEmpty());
        files.AddFile(u"Z:\\fav\\empty\\new.txt");
        EXPECT_THAT(Texts(Open(menu, top, 0)), ElementsAre("new.txt 4"));
        return Open(menu, zed, 0).Items()[0].commandId;
    });
    EXPECT_EQ(chosen, u"Z:\\fav\\Zed\\deep\\x.txt");
}

TEST_F(DirMenuTest, APopupOffersAsManyFilesAsThereAreCommandIds) {
    for (char16_t i = 0; i < 35000; ++i) {
        const std::u16string name = {static_cast<char16_t>(0x4E00 + i % 500), static_cast<char16_t>(0x4E00 + i / 500)};
        files.AddFile(u"Z:\\many\\" + name);
        files.AddFile(u"Z:\\many\\sub\\" + name);
    }
    const std::u16string chosen = Choose(u"Z:\\many", [](CDirMenu& menu, CDirMenuObj& top) {
        EXPECT_EQ(top.Items().size(), 35001u);
        const CDirMenuObj& sub = Open(menu, top, 0);
        EXPECT_EQ(sub.Items().size(), CDirMenu::kMaxItems - 35000);
        return sub.Items().back().commandId;
    });
    EXPECT_EQ(chosen.substr(0, 12), u"Z:\\many\\sub\\");
}

}  // namespace
}  // namespace kinsort
