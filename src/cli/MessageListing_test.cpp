#include "cli/MessageListing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cli/CliFixture_test.h"
#include "framework/CopyData.h"
#include "framework/FileDropList.h"

namespace kinsort {
namespace {

class MessageListingTest : public testing::Test {
  protected:
    // What a message prints, in words and as JSON.
    std::string Data(uint64_t code, std::span<const std::byte> data, bool asJson) {
        return Printed(asJson, [&](MessageListing& listing) { EXPECT_EQ(listing.OnData(7, code, data), 1); });
    }
    std::string Text(uint64_t code, std::u16string_view text, bool asJson = false) {
        return Data(code, CopyDataBytes(text), asJson);
    }
    template <typename Act>
    std::string Printed(bool asJson, Act act) {
        fixture_.terminal.output.clear();
        CliContext context(fixture_.services);
        MessageListing listing(context, asJson);
        act(listing);
        jumps_ = listing.TakeJumps();
        return fixture_.terminal.output;
    }

    CliFixture fixture_;
    std::vector<MessageListing::Jump> jumps_;
};

TEST_F(MessageListingTest, TextsAreShownWithTheNameOfTheirCode) {
    EXPECT_EQ(Text(200, u"Z:\\home\\me\\A b"), "folderjump 200: /home/me/A b\n");
    ASSERT_EQ(jumps_.size(), 1u);
    EXPECT_EQ(jumps_[0].path, u"Z:\\home\\me\\A b");
    EXPECT_FALSE(jumps_[0].isFile);
    EXPECT_EQ(Text(403, u"Z:\\a"), "filejump 403: /a\n");
    ASSERT_EQ(jumps_.size(), 1u);
    EXPECT_TRUE(jumps_[0].isFile);
    EXPECT_EQ(Text(901, u"3/Z:\\a"), "favoritejump 901: 3/Z:\\a\n");
    EXPECT_EQ(Text(800, u""), "select 800: \n");
    EXPECT_EQ(Text(77, u"\u3042\x1B[2J\n\u202Ex"), "data 77: \u3042\\x1b[2J\\x0a\\u202ex\n");
    EXPECT_TRUE(jumps_.empty());
    EXPECT_EQ(Text(100, u""), "folderjump 100: \n");
    EXPECT_TRUE(jumps_.empty());

    EXPECT_EQ(
        Text(100, u"Z:\\a\"b", true),
        "{\"kind\": \"data\", \"code\": 100, \"name\": \"folderjump\", \"sender\": 7, \"text\": \"Z:\\\\a\\\"b\", "
        "\"path\": \"/a\\\"b\"}\n");
    EXPECT_EQ(Text(77, u"x\ny", true), "{\"kind\": \"data\", \"code\": 77, \"sender\": 7, \"text\": \"x\\u000ay\"}\n");
}

TEST_F(MessageListingTest, WhatIsNoTextIsShownAsBytes) {
    const std::vector<std::byte> odd = {std::byte{1}, std::byte{0xAB}, std::byte{0}};
    EXPECT_EQ(Data(100, odd, false), "folderjump 100: 3 bytes 01ab00\n");
    EXPECT_TRUE(jumps_.empty());
    EXPECT_EQ(Data(9, {}, false), "data 9: 0 bytes \n");
    const std::vector<std::byte> endless(100, std::byte{0x41});
    const std::string shown = Data(9, endless, false);
    EXPECT_EQ(shown.size(), std::string("data 9: 100 bytes ...\n").size() + 128);
    EXPECT_EQ(Data(9, odd, true), "{\"kind\": \"data\", \"code\": 9, \"sender\": 7, \"bytes\": \"01ab00\"}\n");
}

TEST_F(MessageListingTest, NumbersAreSignedAndItemsAreListed) {
    const auto numbers = [](MessageListing& listing) { EXPECT_EQ(listing.OnNumbers(273, ~uint64_t{0}, -2), 1); };
    EXPECT_EQ(Printed(false, numbers), "numbers 273: -1 -2\n");
    EXPECT_EQ(Printed(true, numbers), "{\"kind\": \"numbers\", \"message\": 273, \"first\": -1, \"second\": -2}\n");

    const std::vector<std::byte> list = BuildFileDropList({u"Z:\\a", u"Z:\\b c"});
    const auto drop = [&list](MessageListing& listing) { listing.OnDrop(list); };
    EXPECT_EQ(Printed(false, drop), "drop: 2 items\n  /a\n  /b c\n");
    EXPECT_EQ(Printed(true, drop), "{\"kind\": \"drop\", \"items\": [{\"path\": \"/a\"}, {\"path\": \"/b c\"}]}\n");
    EXPECT_EQ(Printed(false, [](MessageListing& listing) { listing.OnDrop({}); }), "drop: 0 items\n");

    const std::u16string block = u"1\t1\tZ:\\cur\\\topt\tZ:\\x\tZ:\\tab\t";
    EXPECT_EQ(Text(255, block), "items 255: 1 item\n  /x\n");
    EXPECT_EQ(Text(255, block, true),
              "{\"kind\": \"data\", \"code\": 255, \"name\": \"items\", \"sender\": 7, \"folder\": \"/cur\", "
              "\"option\": \"opt\", \"items\": [{\"path\": \"/x\"}], \"other_tabs\": [{\"path\": \"/tab\"}]}\n");
}

}  // namespace
}  // namespace kinsort
