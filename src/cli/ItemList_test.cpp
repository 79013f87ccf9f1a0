#include "cli/ItemList.h"

#include <gmock/gmock.h>

#include "cli/CliFixture_test.h"
#include "cli/FileUri.h"

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

TEST(NativeOfTyped, UnderstandsAddressesAndTheHomeFolder) {
    const std::pair<std::string, std::string> cases[] = {
        {"a", "a"},
        {"/a b", "/a b"},
        {"~/x", "/home/me/x"},
        {"~", "~"},
        {"~other/x", "~other/x"},
        {"./~/x", "./~/x"},
        {"file:///a%20b/%E3%81%82%ff", "/a b/\xE3\x81\x82\xFF"},
        {"file://localhost/a", "/a"},
        {"file:/a+b", "/a+b"},
        {"file:a", "file:a"},  // a file of that name
        // No local file:
        {"file://server/a", ""},
        {"file:///a%0", ""},
        {"file:///a%zz", ""},
        {"file:///a%00b", ""},
        {"file:///a?x", ""},
        {"file:///a#x", ""},
    };
    for (const auto& [typed, native] : cases)
        EXPECT_EQ(NativeOfTyped(typed, "/home/me"), native) << typed;
    EXPECT_EQ(NativeOfTyped("~/x", ""), "~/x");
}

TEST(FileUri, EveryPathComesBack) {
    std::string path;
    for (int byte = 1; byte < 256; ++byte)
        path += {'/', static_cast<char>(byte)};
    const std::string uri = FileUriOfPath(path);
    EXPECT_EQ(PathOfFileUri(uri), path);
    for (const char c : uri)
        EXPECT_TRUE(c > 0x20 && c < 0x7F) << uri;
    EXPECT_EQ(FileUriOfPath("/a b"), "file:///a%20b");
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

}  // namespace
}  // namespace kinsort
