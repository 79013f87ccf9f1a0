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

// Walks the menu as the test says.
class WalkingView final : public DirMenuView {
  public:
    explicit WalkingView(std::function<uint16_t(CDirMenu&, CDirMenuObj&)> walk) : walk_(std::move(walk)) {}
    uint16_t TrackPopup(CDirMenu& menu, CDirMenuObj& top) override {
        menu.OnInitMenuPopup(top);
        return walk_(menu, top);
    }

  private:
    std::function<uint16_t(CDirMenu&, CDirMenuObj&)> walk_;
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
    MemoryFileSystem files;
};

TEST_F(DirMenuTest, FoldersComeFirstThenFilesWithoutWhatIsHidden) {
    for (const char16_t* root : {u"Z:\\fav", u"Z:\\fav\\", u"Z:\\fav/"}) {
        CDirMenu menu(files, root);
        WalkingView view([](CDirMenu&, CDirMenuObj& top) {
            EXPECT_THAT(Texts(top), ElementsAre("empty>", "Zed>", "A.txt 1", "b.txt 2"));
            return 2;
        });
        EXPECT_EQ(menu.ShowPopup(view), u"Z:\\fav\\b.txt");
    }
    CDirMenu drive(files, u"Z:\\");
    WalkingView view([](CDirMenu&, CDirMenuObj& top) {
        EXPECT_THAT(Texts(top), ElementsAre("fav>", "top.txt 1"));
        return 1;
    });
    EXPECT_EQ(drive.ShowPopup(view), u"Z:\\top.txt");
}

TEST_F(DirMenuTest, SubMenusAreReadWhenTheyOpenAndEmptyOnesAgain) {
    CDirMenu menu(files, u"Z:\\fav");
    WalkingView view([this](CDirMenu& shown, CDirMenuObj& top) {
        const CDirMenuObj& zed = *top.Items()[1].subMenu;
        EXPECT_THAT(Texts(zed), IsEmpty());
        files.AddFile(u"Z:\\fav\\Zed\\late.txt");
        EXPECT_THAT(Texts(Open(shown, top, 1)), ElementsAre("deep>", "late.txt 3"));
        files.AddFile(u"Z:\\fav\\Zed\\later.txt");
        EXPECT_THAT(Texts(Open(shown, top, 1)), ElementsAre("deep>", "late.txt 3")) << "read once is enough";
        EXPECT_THAT(Texts(Open(shown, top, 0)), IsEmpty());
        files.AddFile(u"Z:\\fav\\empty\\new.txt");
        EXPECT_THAT(Texts(Open(shown, top, 0)), ElementsAre("new.txt 4"));
        return Open(shown, zed, 0).Items()[0].commandId;
    });
    EXPECT_EQ(menu.ShowPopup(view), u"Z:\\fav\\Zed\\deep\\x.txt");
}

TEST_F(DirMenuTest, NothingChosenAndNothingThereGiveNothing) {
    for (const uint16_t id : {uint16_t{0}, uint16_t{3}, uint16_t{65535}}) {
        CDirMenu menu(files, u"Z:\\fav");
        WalkingView view([id](CDirMenu&, CDirMenuObj&) { return id; });
        EXPECT_EQ(menu.ShowPopup(view), u"");
    }
    files.DenyFolder(u"Z:\\fav");
    for (const char16_t* root : {u"Z:\\fav", u"Z:\\gone"}) {
        CDirMenu menu(files, root);
        WalkingView view([](CDirMenu&, CDirMenuObj& top) {
            EXPECT_THAT(Texts(top), IsEmpty());
            return 0;
        });
        EXPECT_EQ(menu.ShowPopup(view), u"");
    }
}

TEST_F(DirMenuTest, APopupOffersAsManyFilesAsThereAreCommandIds) {
    for (char16_t i = 0; i < 35000; ++i) {
        const std::u16string name = {static_cast<char16_t>(0x4E00 + i % 500), static_cast<char16_t>(0x4E00 + i / 500)};
        files.AddFile(u"Z:\\many\\" + name);
        files.AddFile(u"Z:\\many\\sub\\" + name);
    }
    CDirMenu menu(files, u"Z:\\many");
    WalkingView view([](CDirMenu& shown, CDirMenuObj& top) {
        EXPECT_EQ(top.Items().size(), 35001u);
        const CDirMenuObj& sub = Open(shown, top, 0);
        EXPECT_EQ(sub.Items().size(), CDirMenu::kMaxItems - 35000);
        return sub.Items().back().commandId;
    });
    EXPECT_EQ(menu.ShowPopup(view).substr(0, 12), u"Z:\\many\\sub\\");
}

}  // namespace
}  // namespace kinsort
