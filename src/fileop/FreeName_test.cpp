#include "fileop/FreeName.h"

#include <set>

#include <gtest/gtest.h>

namespace kinsort {
namespace {

std::string Repeat(std::string_view piece, size_t count) {
    std::string text;
    for (size_t i = 0; i < count; ++i)
        text += piece;
    return text;
}

std::string FreeNameOf(std::string_view name, bool hasExtension = true, const std::set<std::string>& taken = {}) {
    return FindFreeName(name, hasExtension,
                        [&taken](const std::string& candidate) { return taken.contains(candidate); });
}

TEST(FreeNameTest, TheNumberGoesBeforeTheExtension) {
    struct Case {
        std::string name;
        bool hasExtension;
        std::string expected;
    };
    const Case cases[] = {
        {"photo.jpg", true, "photo (2).jpg"},
        {"archive.tar.gz", true, "archive.tar (2).gz"},
        {"Makefile", true, "Makefile (2)"},
        {".profile", true, ".profile (2)"},
        {".config.json", true, ".config (2).json"},
        {"ends.", true, "ends (2)."},
        {"..a", true, ". (2).a"},
        {"photo (2).jpg", true, "photo (2) (2).jpg"},
        {" .jpg", true, "  (2).jpg"},
        {"写真.jpg", true, "写真 (2).jpg"},
        {"v1.2 final", false, "v1.2 final (2)"},
        {".git", false, ".git (2)"},
        {"x." + Repeat("e", 253), true, "x." + Repeat("e", 249) + " (2)"},
        {"x." + Repeat("e", 220), true, "x (2)." + Repeat("e", 220)},
        {Repeat("n", 251), true, Repeat("n", 251) + " (2)"},
        {Repeat("n", 252), true, Repeat("n", 251) + " (2)"},
        {Repeat("n", 251) + ".jpg", true, Repeat("n", 247) + " (2).jpg"},
        {Repeat("n", 251) + ".jpg", false, Repeat("n", 251) + " (2)"},
        // 85 characters of three bytes: 247 bytes are 82 characters and one byte of the next.
        {Repeat("あ", 83) + ".jpg", true, Repeat("あ", 82) + " (2).jpg"},
        {Repeat("あ", 85), true, Repeat("あ", 83) + " (2)"},
        {Repeat("🗀", 62) + ".jpeg", true, Repeat("🗀", 61) + " (2).jpeg"},
        // Not UTF-8: nothing to keep together.
        {Repeat("\x81", 255), true, Repeat("\x81", 251) + " (2)"},
        {"a" + Repeat("\xff", 254), true, "a" + Repeat("\xff", 250) + " (2)"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(FreeNameOf(c.name, c.hasExtension), c.expected);
        EXPECT_LE(FreeNameOf(c.name, c.hasExtension).size(), kLongestName) << c.name;
    }
}

TEST(FreeNameTest, TakenNamesAreCountedPastAndStillFit) {
    EXPECT_EQ(FreeNameOf("a.txt", true, {"a (2).txt", "a (3).txt", "a (5).txt"}), "a (4).txt");
    // The tenth needs a byte more, and that byte takes a character of three.
    std::set<std::string> taken;
    const std::string name = Repeat("あ", 83) + ".jpeg";
    for (int i = 0; i < 8; ++i)
        EXPECT_TRUE(taken.insert(FreeNameOf(name, true, taken)).second);
    EXPECT_TRUE(taken.contains(Repeat("あ", 82) + " (9).jpeg"));
    EXPECT_EQ(FreeNameOf(name, true, taken), Repeat("あ", 81) + " (10).jpeg");
}

}  // namespace
}  // namespace kinsort
