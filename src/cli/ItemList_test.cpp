#include "cli/ItemList.h"

#include <gmock/gmock.h>

#include "cli/CliFixture_test.h"
#include "cli/Texts.h"
#include "text/FileUri.h"

namespace kinsort {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SplitItemList, TellsLinesFromNulEndedItems) {
    using namespace std::string_view_literals;
    EXPECT_THAT(SplitItemList(""), IsEmpty());
    EXPECT_THAT(SplitItemList("\n\n"), IsEmpty());
    EXPECT_THAT(SplitItemList("a"), ElementsAre("a"));
    EXPECT_THAT(SplitItemList("a\n b \n\nc\xFF\n"), ElementsAre("a", " b ", "c\xFF"));
    EXPECT_THAT(SplitItemList("\xEF\xBB\xBF"
                              "a\r\nb\r\n\r\n"),
                ElementsAre("a", "b"));
    EXPECT_THAT(SplitItemList("a\r\nb\n"), ElementsAre("a\r", "b")) << "one CR belongs to its name";
    EXPECT_THAT(SplitItemList("a\nb\r\0\xEF\xBB\xBF"
                              "c"sv),
                ElementsAre("a\nb\r",
                            "\xEF\xBB\xBF"
                            "c"));
    EXPECT_THAT(SplitItemList("\0"sv), IsEmpty());
}

class CollectItemsTest : public testing::Test {
  protected:
    ItemList Collect(const std::vector<std::string>& arguments) {
        std::vector<std::string> all = {"plan", "--to", "/"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        CliContext context(fixture_.services);
        return CollectItems(context, ParseCommandLine(all).line);
    }
    CliFixture fixture_;
};

TEST_F(CollectItemsTest, TakesTheHandOffOnlyWhenNothingIsNamed) {
    EXPECT_EQ(Collect({}).source, ItemSource::kNone);
    fixture_.handedOver = {u"Z:\\usr", u"Z:\\no such thing"};
    const ItemList handed = Collect({});
    EXPECT_EQ(handed.source, ItemSource::kHandedOver);
    EXPECT_THAT(handed.paths, ElementsAre(u"Z:\\usr"));
    ASSERT_EQ(handed.missing.size(), 1U);
    EXPECT_EQ(handed.missing[0].nativePath, "/no such thing");
    EXPECT_EQ(handed.missing[0].why.code(), StatusCode::kNotFound);
    EXPECT_THAT(Collect({"/etc/"}).paths, ElementsAre(u"Z:\\etc\\"));
    fixture_.terminal.files["-"] = "";
    EXPECT_THAT(Collect({"-f", "-"}).paths, IsEmpty()) << "an empty list is a list";
}

TEST_F(CollectItemsTest, KeepsTheOrderAndReportsBadLists) {
    fixture_.terminal.files["list"] = "/etc\n/usr\n";
    EXPECT_THAT(Collect({"--files-from", "list", "/var"}).paths, ElementsAre(u"Z:\\var", u"Z:\\etc", u"Z:\\usr"));
    const ItemList root = Collect({"/"});
    ASSERT_EQ(root.missing.size(), 1U);
    EXPECT_EQ(root.missing[0].why.code(), StatusCode::kInvalid) << "the root has no name to compare";
    EXPECT_EQ(Collect({"-f", "gone"}).source, ItemSource::kFailed);
    EXPECT_EQ(fixture_.terminal.messages,
              "kinsort: --files-from gone: it does not exist; check the name and the folder\n");
}

TEST_F(CollectItemsTest, ReadsAddressesAndTheHomeFolderButLeavesNamesAlone) {
    fixture_.environment["HOME"] = "/home/me";
    CliContext context(fixture_.services);
    EXPECT_EQ(*ResolveTyped(context, "~/x"), u"Z:\\home\\me\\x");
    EXPECT_EQ(*ResolveTyped(context, "FILE:/a%20b"), u"Z:\\a b");
    const std::pair<std::string, std::u16string> names[] = {
        {"file:x", u"file:x"}, {"C:\\x", u"C:\uF05Cx"}, {"~", u"~"}, {"~other", u"~other"}, {"/d/~/x", u"d\\~\\x"}};
    for (const auto& [typed, name] : names)
        EXPECT_TRUE(ResolveTyped(context, typed)->ends_with(u"\\" + name)) << typed;
    EXPECT_EQ(StatusText(ResolveTyped(context, "").status()), "The path is empty. Give a file or folder.");
}

TEST_F(CollectItemsTest, EveryPathComesBackFromItsAddress) {
    CliContext context(fixture_.services);
    std::string path;
    for (int byte = 1; byte < 256; ++byte) {
        if (byte != '/' && byte != '.') path += {'/', static_cast<char>(byte)};
    }
    const std::string uri = FileUriOfPath(path);
    for (const char c : uri)
        EXPECT_TRUE(c > 0x20 && c < 0x7F) << uri;
    EXPECT_EQ(context.NativePath(*ResolveTyped(context, uri)), path);
}

}  // namespace
}  // namespace kinsort
